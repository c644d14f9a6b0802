// The library's default chunk 'elck': every saved parameter's value, written
// and read through AAX_CChunkDataParser.
#include <cstring>

#include "AAX_CEffectParameters.h"
#include "AAX_CString.h"
#include "AAX_IParameter.h"

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
        float floatValue = 0.0f;
        int32_t intValue = 0;
        bool boolValue = false;
        double doubleValue = 0.0;
        AAX_CString stringValue;
        if (param->GetValueAsFloat(&floatValue))
            mChunkParser.AddDouble(id, static_cast<double>(floatValue));
        else if (param->GetValueAsInt32(&intValue))
            mChunkParser.AddInt32(id, intValue);
        else if (param->GetValueAsBool(&boolValue))
            mChunkParser.AddInt32(id, boolValue ? 1 : 0);
        else if (param->GetValueAsDouble(&doubleValue))
            mChunkParser.AddDouble(id, doubleValue);
        else if (param->GetValueAsString(&stringValue))
            mChunkParser.AddString(id, stringValue);
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
        // Probe the value type in the same order as BuildChunkData; the
        // setters route every restored value through the normal update path.
        float floatValue = 0.0f;
        int32_t intValue = 0;
        bool boolValue = false;
        double doubleValue = 0.0;
        AAX_CString stringValue;
        if (param->GetValueAsFloat(&floatValue)) {
            if (mChunkParser.FindDouble(id, &doubleValue)) param->SetValueWithFloat(static_cast<float>(doubleValue));
        } else if (param->GetValueAsInt32(&intValue)) {
            if (mChunkParser.FindInt32(id, &intValue)) param->SetValueWithInt32(intValue);
        } else if (param->GetValueAsBool(&boolValue)) {
            if (mChunkParser.FindInt32(id, &intValue)) param->SetValueWithBool(intValue != 0);
        } else if (param->GetValueAsDouble(&doubleValue)) {
            if (mChunkParser.FindDouble(id, &doubleValue)) param->SetValueWithDouble(doubleValue);
        } else if (param->GetValueAsString(&stringValue)) {
            if (mChunkParser.FindString(id, &stringValue)) param->SetValueWithString(stringValue);
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
        float floatValue = 0.0f;
        int32_t intValue = 0;
        int32_t storedInt = 0;
        bool boolValue = false;
        double doubleValue = 0.0;
        double storedDouble = 0.0;
        AAX_CString stringValue;
        AAX_CString storedString;
        bool differs = false;
        if (param->GetValueAsFloat(&floatValue))
            differs = mChunkParser.FindDouble(id, &storedDouble) && static_cast<float>(storedDouble) != floatValue;
        else if (param->GetValueAsInt32(&intValue))
            differs = mChunkParser.FindInt32(id, &storedInt) && storedInt != intValue;
        else if (param->GetValueAsBool(&boolValue))
            differs = mChunkParser.FindInt32(id, &storedInt) && (storedInt != 0) != boolValue;
        else if (param->GetValueAsDouble(&doubleValue))
            differs = mChunkParser.FindDouble(id, &storedDouble) && storedDouble != doubleValue;
        else if (param->GetValueAsString(&stringValue))
            differs = mChunkParser.FindString(id, &storedString) && storedString != stringValue;
        if (differs) {
            *oIsEqual = 0;
            return AAX_SUCCESS;
        }
    }
    return AAX_SUCCESS;
}
