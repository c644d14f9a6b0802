// The host side the effect calls into: the static callback and its member
// counterpart.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "AAX_IMIDINode.h"
#include "AAX_IViewContainer.h"
#include "ThreadRole.h"
#include "logger/CLog.h"
#include "vst2/CFakeHostVST2.h"

namespace {
constexpr int kHostVendorTextSize = 64;
}

VstIntPtr CFakeHostVST2::staticHostCallback(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                                            void* ptr, float opt)
{
    switch (opcode) {
    case audioMasterVersion:
        return kVstVersion;
    case audioMasterIdle:
        return 1;
    case audioMasterGetVendorString:
        if (ptr == nullptr)
            return 0;
        std::snprintf(static_cast<char*>(ptr), kHostVendorTextSize, "%s", "Morvane AAX Wrapper");
        return 1;
    default:
        break;
    }
    // Until Init sets `user` (e.g. inside the entry function) there is no
    // host; a STANDARD one being created answers as mainstream hosts do.
    if (effect == nullptr || effect->user == nullptr) {
        if (sCreating != nullptr && sCreating->IsStandard())
            return sCreating->VstCallback(opcode, index, value, ptr, opt);
        return 0;
    }
    return static_cast<CFakeHostVST2*>(effect->user)->VstCallback(opcode, index, value, ptr, opt);
}

VstIntPtr CFakeHostVST2::VstCallback(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt)
{
    if (IsStandard()) {
        bool handled = false;
        const VstIntPtr answer = StandardCallback(opcode, index, value, ptr, opt, handled);
        if (handled)
            return answer;
    }
    switch (opcode) {
    case audioMasterAutomate: {
        MV_LOG("fakehost", kLogDebug, "Plugin asked us to automate parameter ", index, " ", opt);
        // VST 2 lets a plug-in automate from inside its process call, and the
        // host forwards the value at once, whichever thread it is on.
        MV_AUDIO_THREAD_BY_DESIGN("a VST 2 plug-in may automate from its process call");
        if (mEditListener != nullptr)
            mEditListener->OnPluginEdit(static_cast<uint32_t>(index), static_cast<double>(opt));
        return 0;
    }
    case audioMasterGetTime:
        // Other threads get the values of the last buffer, as before.
        if (mTimeStale && pthread_equal(pthread_self(), mProcessThread.load(std::memory_order_relaxed)))
            FillTimeInfo();
        return reinterpret_cast<VstIntPtr>(&timeInfo);
    case audioMasterProcessEvents:
        return ForwardOutputEvents(ptr);
    case audioMasterSizeWindow:
        return SizeWindow(index, value);
    case audioMasterGetSampleRate:
        // The address, not the rate: the answer this host has always given,
        // which existing set-ups depend on. Plug-ins should use effSetSampleRate.
        MV_LOG("fakehost", kLogWarning, "VST2 - audioMasterGetSampleRate ");
        return reinterpret_cast<VstIntPtr>(&timeInfo.sampleRate);
    default:
        MV_LOG("fakehost", kLogDebug, "VST2 - staticHostCallback - .. opcode = ", opcode);
        return 0;
    }
}

// What mainstream hosts answer where this host's classic answers differ.
VstIntPtr CFakeHostVST2::StandardCallback(VstInt32 opcode, VstInt32 index, VstIntPtr, void* ptr, float,
                                          bool& handled)
{
    handled = true;
    switch (opcode) {
    case audioMasterGetSampleRate:
        return static_cast<VstIntPtr>(mSampleRate);
    case audioMasterGetBlockSize:
        return kStandardMaxBlock;
    case audioMasterCurrentId:
        return effect != nullptr ? effect->uniqueID : 0;
    case audioMasterGetProductString:
        if (ptr == nullptr)
            return 0;
        std::snprintf(static_cast<char*>(ptr), kHostVendorTextSize, "%s", "Morvane AAX Wrapper");
        return 1;
    case audioMasterGetVendorVersion:
        return 1;
    case audioMasterIOChanged:
        // Often called from the process call; the main thread reads the new
        // initialDelay at its next wake-up (see DoGetLatency).
        return 1;
    case audioMasterGetCurrentProcessLevel:
        // Offline wins; otherwise the process thread is real time and every
        // other thread is the user's.
        if (mOffline.load(std::memory_order_relaxed))
            return kVstProcessLevelOffline;
        return pthread_equal(pthread_self(), mProcessThread.load(std::memory_order_relaxed)) ? kVstProcessLevelRealtime
                                                                                              : kVstProcessLevelUser;
    case audioMasterCanDo: {
        static const char* const kCanDo[] = {"sendVstEvents", "sendVstMidiEvent", "sendVstTimeInfo",
                                             "receiveVstEvents", "receiveVstMidiEvent", "sizeWindow"};
        if (ptr == nullptr)
            return 0;
        for (const char* text : kCanDo)
            if (std::strcmp(static_cast<const char*>(ptr), text) == 0)
                return 1;
        return 0;
    }
    case audioMasterBeginEdit:
        if (mEditListener != nullptr)
            mEditListener->OnPluginBeginEdit(static_cast<uint32_t>(index));
        return 1;
    case audioMasterEndEdit:
        if (mEditListener != nullptr)
            mEditListener->OnPluginEndEdit(static_cast<uint32_t>(index));
        return 1;
    default:
        handled = false;
        return 0;
    }
}

// Real-time thread: no allocation, packets go straight to the output node.
VstIntPtr CFakeHostVST2::ForwardOutputEvents(void* ptr)
{
    const VstEvents* outgoing = static_cast<const VstEvents*>(ptr);
    if (outgoing == nullptr || outgoing->numEvents < 1)
        return 0;
    AAX_IMIDINode* outputNode = mMidiOut;
    if (outputNode == nullptr)
        return 0;
    for (VstInt32 i = 0; i < outgoing->numEvents; ++i) {
        const VstEvent* event = outgoing->events[i];
        if (event == nullptr)
            continue;
        const VstMidiEvent* midi = reinterpret_cast<const VstMidiEvent*>(event);
        AAX_CMidiPacket packet;
        packet.mTimestamp = static_cast<uint32_t>(midi->deltaFrames);
        packet.mLength = static_cast<uint32_t>(midi->byteSize);
        const int copied = std::min<int>(std::max<VstInt32>(midi->byteSize, 0), 4);
        std::memcpy(packet.mData, midi->midiData, static_cast<size_t>(copied));
        packet.mIsImmediate = 0;
        outputNode->PostMIDIPacket(&packet);
    }
    return 0;
}

VstIntPtr CFakeHostVST2::SizeWindow(VstInt32 width, VstIntPtr height)
{
    MV_LOG("fakehost", kLogInfo, "VST2 - staticHostCallback - audioMasterSizeWindow ", "\n[LOG] ## ", "index",
           " = ", width, "\n[LOG] ## ", "value", " = ", height);
    if (viewContainer != nullptr && width >= 1 && height >= 1) {
        AAX_Point size(static_cast<float>(height), static_cast<float>(width));
        viewContainer->SetViewSize(size);
    }
    return 1;
}

// The field is read at every call, not only after audioMasterIOChanged:
// some plug-ins (DPF's, e.g. ZaMaximX2) set initialDelay inside their
// process call without telling the host. The audio thread may write it
// meanwhile, hence the atomic read.
int32_t CFakeHostVST2::DoGetLatency()
{
    if (effect == nullptr)
        return 0;
    return std::max<int32_t>(0, __atomic_load_n(&effect->initialDelay, __ATOMIC_RELAXED));
}

// effGetTailSize: 0 means the plug-in does not say, 1 that it has no tail.
SPluginTail CFakeHostVST2::DoGetTail()
{
    SPluginTail tail;
    if (effect == nullptr)
        return tail;
    const VstIntPtr answer = Dispatch(effGetTailSize, 0, 0, nullptr);
    if (answer <= 0)
        return tail;
    tail.known = true;
    tail.samples = answer == 1 ? 0u : static_cast<uint32_t>(std::min<VstIntPtr>(answer, INT32_MAX));
    return tail;
}
