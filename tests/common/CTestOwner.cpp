#include "CTestOwner.h"

namespace TestSupport {

void CTestOwner::OnPluginValueMoved(uint32_t tag, double value)
{
    double current = 0.0;
    if (GetParameterNormalizedValue(std::to_string(tag).c_str(), &current) == AAX_SUCCESS && current != value)
        OnPluginEdit(tag, value);
}

}  // namespace TestSupport
