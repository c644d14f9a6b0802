// The wrapper's own state chunk, kept after the base's chunks. Its content is
// the wrapped plug-in's state exactly as the fake host writes it.
#include "AAXWrapper_Identity.h"
#include "AAXWrapper_Parameters.h"

#include <cstring>

#include "fakehost/FakeHostGuard.h"
#include "logger/CLog.h"
#include "fakehost/IFakeHost.h"

namespace {

// The chunk ID is the product code.
AAX_CTypeID WrapperChunkID()
{
    return kProductID;
}

int32_t BaseChunkCount(const AAX_CEffectParameters& base)
{
    int32_t count = 0;
    base.AAX_CEffectParameters::GetNumberOfChunks(&count);
    return count;
}

}  // namespace

AAX_Result AAXWrapper_Parameters::GetNumberOfChunks(int32_t* oNumChunks) const
{
    if (oNumChunks == nullptr)
        return AAX_ERROR_NULL_ARGUMENT;
    *oNumChunks = BaseChunkCount(*this) + 1;
    return AAX_SUCCESS;
}

AAX_Result AAXWrapper_Parameters::GetChunkIDFromIndex(int32_t iIndex, AAX_CTypeID* oChunkID) const
{
    if (oChunkID == nullptr)
        return AAX_ERROR_NULL_ARGUMENT;
    if (iIndex == BaseChunkCount(*this)) {
        *oChunkID = WrapperChunkID();
        return AAX_SUCCESS;
    }
    return AAX_CEffectParameters::GetChunkIDFromIndex(iIndex, oChunkID);
}

AAX_Result AAXWrapper_Parameters::GetChunkSize(AAX_CTypeID iChunkID, uint32_t* oSize) const
{
    if (iChunkID != WrapperChunkID()) {
        // The parameter chunk saves what the plug-in holds now.
        CallFakeHost("GetChunkSize", [&] { const_cast<AAXWrapper_Parameters*>(this)->SyncHeldValues(); });
        return AAX_CEffectParameters::GetChunkSize(iChunkID, oSize);
    }
    if (oSize == nullptr)
        return AAX_ERROR_NULL_ARGUMENT;
    if (mFakeHost != nullptr && CallFakeHost("GetChunkSize", [&] { TakeStateSnapshot(); }))
        *oSize = static_cast<uint32_t>(mStateSnapshot.size());
    return AAX_SUCCESS;
}

// The host sizes its block by GetChunkSize and fills it by GetChunk; a
// plug-in's state may change in between (IEM's GranularEncoder saves a
// different length while it plays). So the state is taken once, whole, when
// it is measured, and GetChunk hands out exactly that.
void AAXWrapper_Parameters::TakeStateSnapshot() const
{
    SPluginState state = mFakeHost->GetState();
    if (!state.gave)
        MV_LOG("parameters", kLogWarning, "GetChunk", " the plug-in gave no state, an empty one is saved");
    mStateSnapshot.swap(state.bytes);
    mSnapshotTaken = true;
}

AAX_Result AAXWrapper_Parameters::GetChunk(AAX_CTypeID iChunkID, AAX_SPlugInChunk* oChunk) const
{
    if (oChunk == nullptr)
        return AAX_ERROR_NULL_ARGUMENT;
    MV_LOG("parameters", kLogInfo, "GetChunk", " IN ", iChunkID, " size = ", oChunk->fSize);
    if (iChunkID != WrapperChunkID()) {
        CallFakeHost("GetChunk", [&] { const_cast<AAXWrapper_Parameters*>(this)->SyncHeldValues(); });
        return AAX_CEffectParameters::GetChunk(iChunkID, oChunk);
    }
    if (mFakeHost == nullptr)
        return AAX_SUCCESS;
    // The state measured by GetChunkSize; a host that asks without measuring
    // gets one taken now. One larger than the host's block is refused, as the
    // base does for its own chunk, so the host asks again.
    const unsigned int capacity = oChunk->fSize > 0 ? static_cast<unsigned int>(oChunk->fSize) : 0u;
    if (!mSnapshotTaken && !CallFakeHost("GetChunk", [&] { TakeStateSnapshot(); }))
        return AAX_SUCCESS;
    mSnapshotTaken = false;
    std::vector<char> state;
    state.swap(mStateSnapshot);
    if (state.size() > capacity) {
        MV_LOG("parameters", kLogError, "GetChunk", " state of ", state.size(), " bytes does not fit the chunk of ",
               capacity, " bytes");
        return AAX_ERROR_INCORRECT_CHUNK_SIZE;
    }
    if (!state.empty())
        std::memcpy(oChunk->fData, state.data(), state.size());
    // fSize is a signed 32-bit field; the host writes an unsigned count into it.
    oChunk->fSize = static_cast<int32_t>(state.size());
    MV_LOG("parameters", kLogInfo, "GetChunk", " OUT ", iChunkID, " size = ", oChunk->fSize);
    return AAX_SUCCESS;
}

AAX_Result AAXWrapper_Parameters::SetChunk(AAX_CTypeID iChunkID, const AAX_SPlugInChunk* iChunk)
{
    // Silence from here on. For any other chunk the flag stays set until our
    // own chunk has been applied, so the plug-in is never heard half-restored.
    mIsLoadingState.store(true, std::memory_order_relaxed);
    if (iChunk == nullptr) {
        MV_LOG("parameters", kLogError, "SetChunk", " IN ", iChunkID, " without chunk");
        if (iChunkID == WrapperChunkID())
            mIsLoadingState.store(false, std::memory_order_relaxed);
        return AAX_ERROR_NULL_ARGUMENT;
    }
    MV_LOG("parameters", kLogInfo, "SetChunk", " IN ", iChunkID, " size = ", iChunk->fSize);
    if (iChunkID != WrapperChunkID())
        return AAX_CEffectParameters::SetChunk(iChunkID, iChunk);

    if (mFakeHost != nullptr) {
        if (iChunk->fSize < 0) {
            // Would read far past the host's block once made unsigned.
            MV_LOG("parameters", kLogError, "SetChunk", " negative size ", iChunk->fSize, ", state ignored");
        } else {
            // No process call that began before the flag may still be inside
            // the plug-in: wait for them (the audio thread never waits).
            Morvane::CProcessGateClosed closed(mProcessGate);
            CallFakeHost("SetChunk", [&] {
                // A refused block leaves the plug-in, and so its parameters, as they were.
                if (mFakeHost->SetState(iChunk->fData, static_cast<uint32_t>(iChunk->fSize)))
                    ReadParametersFromPlugin();
                else
                    MV_LOG("parameters", kLogError, "SetChunk", " the plug-in's state was refused, nothing restored");
            });
            MV_LOG("parameters", kLogInfo, "SetChunk", " OUT ", iChunkID, " size = ", iChunk->fSize);
        }
    }
    mIsLoadingState.store(false, std::memory_order_relaxed);
    return AAX_SUCCESS;
}
