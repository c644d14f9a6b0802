// The VST 2 effect's state: its chunk, behind a zeroed margin of our own.
#include <climits>
#include <cstring>

#include "logger/CLog.h"
#include "vst2/CFakeHostVST2.h"

SPluginState CFakeHostVST2::DoGetState()
{
    SPluginState state;
    if (effect == nullptr)
        return state;
    void* chunk = nullptr;
    VstIntPtr size = Dispatch(effGetChunk, 0, 0, &chunk);
    state.gave = true;
    if (chunk == nullptr || size < 0) {
        MV_LOG("fakehost", kLogWarning, "VST2 - GetState: the plug-in gave no chunk");
        size = 0;
        state.gave = false;
    }
    // AAX chunk sizes are 32-bit signed; a larger state cannot be saved.
    if (size > static_cast<VstIntPtr>(INT32_MAX - kStateMargin)) {
        MV_LOG("fakehost", kLogError, "VST2 - GetState: chunk of ", static_cast<long long>(size),
               " bytes is too large to save");
        size = 0;
        state.gave = false;
    }
    // The margin is part of the saved chunk and zero, so projects never carry
    // stale host memory and plug-ins that read their chunk as text find a
    // terminator.
    state.bytes.assign(static_cast<size_t>(size) + kStateMargin, 0);
    if (size > 0)
        std::memcpy(state.bytes.data(), chunk, static_cast<size_t>(size));
    return state;
}

bool CFakeHostVST2::DoSetState(const void* data, uint32_t size)
{
    if (effect == nullptr)
        return false;
    // A size that does not even cover the margin cannot come from GetState;
    // passing it on would hand the plug-in a negative length.
    if (data == nullptr || size <= kStateMargin) {
        MV_LOG("fakehost", kLogError, "VST2 - SetState refused: size ", size, " does not exceed the margin of ",
               kStateMargin, " bytes");
        return false;
    }
    // The effect takes a writable pointer by the interface; it only reads.
    Dispatch(effSetChunk, 0, static_cast<VstIntPtr>(size - kStateMargin), const_cast<void*>(data));
    return true;
}

bool CFakeHostVST2::DoStateHoldsParameterValues()
{
    return effect != nullptr && (effect->flags & effFlagsProgramChunks) != 0;
}
