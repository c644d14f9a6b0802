// The shape every single-value getter of the host's ACF objects has.
#pragma once

#include "AAX.h"

namespace AAXHost {

// Refuses a null destination, as the AAX interfaces require, else stores value.
template <class TOut, class TValue>
AAX_Result WriteOut(TOut* out, const TValue& value)
{
    if (!out)
        return AAX_ERROR_NULL_ARGUMENT;
    *out = value;
    return AAX_SUCCESS;
}

}  // namespace AAXHost
