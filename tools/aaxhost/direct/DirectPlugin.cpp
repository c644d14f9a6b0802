#include "DirectPlugin.h"

namespace AAXDirect {

std::unique_ptr<IDirectPlugin> MakeDirectPlugin(const std::string& path)
{
    std::string trimmed = path;
    while (!trimmed.empty() && trimmed.back() == '/')
        trimmed.pop_back();
    const bool vst3 = trimmed.size() > 5 && (trimmed.compare(trimmed.size() - 5, 5, ".vst3") == 0 ||
                                             trimmed.find(".vst3/") != std::string::npos);
    return vst3 ? MakeDirectVst3Plugin() : MakeDirectVst2Plugin();
}

}  // namespace AAXDirect
