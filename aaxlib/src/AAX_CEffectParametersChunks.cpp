// The library's default chunk 'elck': every saved parameter's value, written
// and read through AAX_CChunkDataParser.
#include <cstring>

#include "AAX_CEffectParameters.h"
#include "AAX_CString.h"
#include "AAX_IParameter.h"

namespace {

// A parameter's current value in the type the chunk stores it as. The first
// typed getter that answers decides that type; saving, restoring and
// comparing all probe through here so their order can never drift apart.
struct SStoredValue {
    enum EType { kNone, kFloat, kInt32, kBool, kDouble, kString };
    EType type = kNone;
    float floatValue = 0.0f;
    int32_t intValue = 0;
    bool boolValue = false;
    double doubleValue = 0.0;
    AAX_CString stringValue;
};

SStoredValue ReadStoredValue(const AAX_IParameter& param)
{
    SStoredValue v;
    if (param.GetValueAsFloat(&v.floatValue))
        v.type = SStoredValue::kFloat;
    else if (param.GetValueAsInt32(&v.intValue))
        v.type = SStoredValue::kInt32;
    else if (param.GetValueAsBool(&v.boolValue))
        v.type = SStoredValue::kBool;
    else if (param.GetValueAsDouble(&v.doubleValue))
        v.type = SStoredValue::kDouble;
    else if (param.GetValueAsString(&v.stringValue))
        v.type = SStoredValue::kString;
    return v;
}

}  // namespace

AAX_Result AAX_CEffectParameters::GetNumberOfChunks(int32_t* oNumChunks) const
{
    if (oNumChunks == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *oNumChunks = 1;
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetChunkIDFromIndex(int32_t iIndex, AAX_CTypeID* oChunkID) const
{
    if (oChunkID == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    if (iIndex != 0) {
        *oChunkID = 0;
        return AAX_ERROR_INVALID_CHUNK_INDEX;
    }
    *oChunkID = cDefaultChunkID;
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetChunkSize(AAX_CTypeID iChunkID, uint32_t* oSize) const
{
    if (oSize == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    if (iChunkID != cDefaultChunkID) {
        *oSize = 0;
        return AAX_ERROR_INVALID_CHUNK_ID;
    }
    BuildChunkData();
    mChunkSize = mChunkParser.GetChunkDataSize();
    *oSize = static_cast<uint32_t>(mChunkSize);
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetChunk(AAX_CTypeID iChunkID, AAX_SPlugInChunk* oChunk) const
{
    if (iChunkID != cDefaultChunkID) return AAX_ERROR_INVALID_CHUNK_ID;
    if (oChunk == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    BuildChunkData();
    // The host sized the record from GetChunkSize; anything else would overrun it.
    const int32_t size = mChunkParser.GetChunkDataSize();
    if (size == 0 || size != mChunkSize) return AAX_ERROR_INCORRECT_CHUNK_SIZE;

    oChunk->fVersion = mChunkParser.GetChunkVersion();
    std::memset(oChunk->fName, 0, sizeof(oChunk->fName));
    std::strncpy(reinterpret_cast<char*>(oChunk->fName), cDefaultChunkName, sizeof(oChunk->fName) - 1);
    return mChunkParser.GetChunkData(oChunk);
}

void AAX_CEffectParameters::BuildChunkData() const
{
    mChunkParser.Clear();
    for (int32_t i = 0; i < mParameterManager.NumParameters(); ++i) {
        const AAX_IParameter* param = mParameterManager.GetParameter(i);
        if (param == nullptr || IsParameterFilteredOnSave(param->Identifier())) continue;
        const char* id = param->Identifier();
        const SStoredValue v = ReadStoredValue(*param);
        switch (v.type) {
        case SStoredValue::kFloat: mChunkParser.AddDouble(id, static_cast<double>(v.floatValue)); break;
        case SStoredValue::kInt32: mChunkParser.AddInt32(id, v.intValue); break;
        case SStoredValue::kBool: mChunkParser.AddInt32(id, v.boolValue ? 1 : 0); break;
        case SStoredValue::kDouble: mChunkParser.AddDouble(id, v.doubleValue); break;
        case SStoredValue::kString: mChunkParser.AddString(id, v.stringValue); break;
        case SStoredValue::kNone: break;
        }
    }
}

AAX_Result AAX_CEffectParameters::SetChunk(AAX_CTypeID iChunkID, const AAX_SPlugInChunk* iChunk)
{
    if (iChunkID != cDefaultChunkID) return AAX_ERROR_INVALID_CHUNK_ID;
    if (iChunk == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    mChunkParser.LoadChunk(iChunk);

    const int32_t count = mParameterManager.NumParameters();
    if (count < 1) return AAX_SUCCESS;
    for (int32_t i = 0; i < count; ++i) {
        AAX_IParameter* param = mParameterManager.GetParameter(i);
        if (param == nullptr || IsParameterFilteredOnSave(param->Identifier())) continue;
        const char* id = param->Identifier();
        // The setters route every restored value through the normal update path.
        int32_t storedInt = 0;
        double storedDouble = 0.0;
        AAX_CString storedString;
        switch (ReadStoredValue(*param).type) {
        case SStoredValue::kFloat:
            if (mChunkParser.FindDouble(id, &storedDouble)) param->SetValueWithFloat(static_cast<float>(storedDouble));
            break;
        case SStoredValue::kInt32:
            if (mChunkParser.FindInt32(id, &storedInt)) param->SetValueWithInt32(storedInt);
            break;
        case SStoredValue::kBool:
            if (mChunkParser.FindInt32(id, &storedInt)) param->SetValueWithBool(storedInt != 0);
            break;
        case SStoredValue::kDouble:
            if (mChunkParser.FindDouble(id, &storedDouble)) param->SetValueWithDouble(storedDouble);
            break;
        case SStoredValue::kString:
            if (mChunkParser.FindString(id, &storedString)) param->SetValueWithString(storedString);
            break;
        case SStoredValue::kNone: break;
        }
    }
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::CompareActiveChunk(const AAX_SPlugInChunk* iChunkP, AAX_CBoolean* oIsEqual) const
{
    if (oIsEqual == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *oIsEqual = 1;
    if (iChunkP == nullptr || iChunkP->fChunkID != cDefaultChunkID) return AAX_SUCCESS;
    if (mNumChunkedParameters == 0) return AAX_SUCCESS;

    mChunkParser.LoadChunk(iChunkP);
    // A value the chunk does not hold would be left as it is on restore, so
    // it is not a difference.
    for (int32_t i = 0; i < mParameterManager.NumParameters(); ++i) {
        const AAX_IParameter* param = mParameterManager.GetParameter(i);
        if (param == nullptr || IsParameterFilteredOnSave(param->Identifier())) continue;
        const char* id = param->Identifier();
        const SStoredValue v = ReadStoredValue(*param);
        int32_t storedInt = 0;
        double storedDouble = 0.0;
        AAX_CString storedString;
        bool differs = false;
        switch (v.type) {
        case SStoredValue::kFloat:
            differs = mChunkParser.FindDouble(id, &storedDouble) && static_cast<float>(storedDouble) != v.floatValue;
            break;
        case SStoredValue::kInt32:
            differs = mChunkParser.FindInt32(id, &storedInt) && storedInt != v.intValue;
            break;
        case SStoredValue::kBool:
            differs = mChunkParser.FindInt32(id, &storedInt) && (storedInt != 0) != v.boolValue;
            break;
        case SStoredValue::kDouble:
            differs = mChunkParser.FindDouble(id, &storedDouble) && storedDouble != v.doubleValue;
            break;
        case SStoredValue::kString:
            differs = mChunkParser.FindString(id, &storedString) && storedString != v.stringValue;
            break;
        case SStoredValue::kNone: break;
        }
        if (differs) {
            *oIsEqual = 0;
            return AAX_SUCCESS;
        }
    }
    return AAX_SUCCESS;
}
