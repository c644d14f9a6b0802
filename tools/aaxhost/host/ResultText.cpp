#include "ResultText.h"

#include <cstdio>

#include "AAX.h"
#include "ACFBase.h"

namespace AAXHost {

namespace {

const char* ResultName(int32_t r)
{
    switch (r) {
    case AAX_ERROR_INVALID_PARAMETER_ID: return "AAX_ERROR_INVALID_PARAMETER_ID";
    case AAX_ERROR_NULL_OBJECT: return "AAX_ERROR_NULL_OBJECT";
    case AAX_ERROR_INVALID_CHUNK_INDEX: return "AAX_ERROR_INVALID_CHUNK_INDEX";
    case AAX_ERROR_INVALID_CHUNK_ID: return "AAX_ERROR_INVALID_CHUNK_ID";
    case AAX_ERROR_INCORRECT_CHUNK_SIZE: return "AAX_ERROR_INCORRECT_CHUNK_SIZE";
    case AAX_ERROR_UNIMPLEMENTED: return "AAX_ERROR_UNIMPLEMENTED";
    case AAX_ERROR_INVALID_PARAMETER_INDEX: return "AAX_ERROR_INVALID_PARAMETER_INDEX";
    case AAX_ERROR_NOT_INITIALIZED: return "AAX_ERROR_NOT_INITIALIZED";
    case AAX_ERROR_NULL_COMPONENT: return "AAX_ERROR_NULL_COMPONENT";
    case AAX_ERROR_INVALID_FIELD_INDEX: return "AAX_ERROR_INVALID_FIELD_INDEX";
    case AAX_ERROR_MALFORMED_CHUNK: return "AAX_ERROR_MALFORMED_CHUNK";
    case AAX_ERROR_DUPLICATE_EFFECT_ID: return "AAX_ERROR_DUPLICATE_EFFECT_ID";
    case AAX_ERROR_NULL_ARGUMENT: return "AAX_ERROR_NULL_ARGUMENT";
    case AAX_ERROR_INVALID_ARGUMENT: return "AAX_ERROR_INVALID_ARGUMENT";
    case ACF_E_NOINTERFACE: return "ACF_E_NOINTERFACE";
    case ACF_E_POINTER: return "ACF_E_POINTER";
    case ACF_E_UNEXPECTED: return "ACF_E_UNEXPECTED";
    case ACF_E_OUTOFMEMORY: return "ACF_E_OUTOFMEMORY";
    default: return nullptr;
    }
}

}  // namespace

std::string ResultText(int32_t result)
{
    const char* name = ResultName(result);
    char buf[96];
    if (name)
        std::snprintf(buf, sizeof buf, "%d (%s)", result, name);
    else
        std::snprintf(buf, sizeof buf, "%d", result);
    return buf;
}

}  // namespace AAXHost
