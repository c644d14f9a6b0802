// Real-time thread: nothing here may allocate, lock or log, except the
// exception path which ends the whole call anyway.
#include "AAXWrapper_AlgorithmProcess.h"

#include <cstring>

#include "AAXWrapper_BypassDelay.h"
#include "AAXWrapper_Parameters.h"
#include "CException.h"
#include "ThreadRole.h"
#include "logger/CLog.h"
#include "fakehost/IFakeHost.h"

namespace {

// The host never hands us a negative length, but a corrupt context must not
// turn into a huge memcpy.
size_t BufferBytes(const S_Alg_Context& context)
{
    if (context.mBufferLength == nullptr || *context.mBufferLength <= 0)
        return 0;
    return static_cast<size_t>(*context.mBufferLength) * sizeof(float);
}

void CopyChannel(const S_Alg_Context& context, int channel, size_t bytes)
{
    const float* in = context.mInputs[channel];
    float* out = context.mOutputs[channel];
    if (in != nullptr && out != nullptr && in != out)
        std::memcpy(out, in, bytes);
}

void PassThrough(const S_Alg_Context& context, size_t bytes)
{
    if (context.mInputs == nullptr || context.mOutputs == nullptr || bytes == 0)
        return;
    // The main pair first, then every pair: the main pair is copied twice by
    // design, and the copy ignores the registered stem formats.
    CopyChannel(context, 0, bytes);
    CopyChannel(context, 1, bytes);
    for (int channel = 0; channel < kAlgBypassChannels; channel += 2) {
        CopyChannel(context, channel, bytes);
        CopyChannel(context, channel + 1, bytes);
    }
}

void Silence(const S_Alg_Context& context, size_t bytes)
{
    if (context.mOutputs == nullptr || bytes == 0)
        return;
    for (int channel = 0; channel < kAlgBypassChannels; ++channel) {
        if (context.mOutputs[channel] != nullptr)
            std::memset(context.mOutputs[channel], 0, bytes);
    }
}

// True when the buffer is done (bypassed); otherwise the plug-in plays it.
bool DelayedBypass(AAXWrapper_Parameters& wrapper, const S_Alg_Context& context, bool bypassed)
{
    const int32_t frames = context.mBufferLength != nullptr ? *context.mBufferLength : 0;
    // The delay line is replaced only with this gate closed.
    if (!wrapper.ProcessGate().TryEnter()) {
        if (bypassed)
            PassThrough(context, BufferBytes(context));
        return bypassed;
    }
    Morvane::CProcessGateLeave leave(wrapper.ProcessGate());
    CBypassDelay* delay = wrapper.BypassDelay();
    if (!bypassed) {
        // Before the plug-in runs: it may write its outputs over the inputs.
        if (delay != nullptr)
            delay->Feed(context, frames);
        return false;
    }
    if (delay != nullptr)
        delay->Run(context, frames);
    else
        PassThrough(context, BufferBytes(context));
    return true;
}

}  // namespace

void AAXWrapper_AlgorithmProcessFunction(S_Alg_Context* const inInstancesBegin[], const void* inInstancesEnd)
{
    MV_REAL_TIME("AAXWrapper_AlgorithmProcessFunction");
    S_Alg_Context* const* const end = static_cast<S_Alg_Context* const*>(inInstancesEnd);
    try {
        for (S_Alg_Context* const* instance = inInstancesBegin; instance < end; ++instance) {
            S_Alg_Context* const context = *instance;
            if (context == nullptr)
                continue;

            AAXWrapper_Parameters* wrapper = nullptr;
            if (context->mPrivateData != nullptr)
                std::memcpy(&wrapper, context->mPrivateData, sizeof(wrapper));
            using EBypassWay = AAXWrapper_Parameters::EBypassWay;
            const EBypassWay way = wrapper != nullptr ? wrapper->BypassWay() : EBypassWay::kCopy;
            // A plug-in that bypasses itself (the master bypass reached it as
            // its own parameter) plays every buffer, keeping latency and tails.
            const bool bypassed =
                way != EBypassWay::kPluginBypasses && context->mBypass != nullptr && *context->mBypass != 0;
            // A plug-in with latency: the bypass plays the input as late as
            // the plug-in would, and so hears every buffer.
            if (way == EBypassWay::kDelayedCopy) {
                if (DelayedBypass(*wrapper, *context, bypassed))
                    continue;
            } else if (bypassed) {
                PassThrough(*context, BufferBytes(*context));
                continue;
            }
            // No private data: nothing to play. Private data without a
            // wrapper in it, or a state being loaded: silence.
            if (wrapper == nullptr) {
                if (context->mPrivateData != nullptr)
                    Silence(*context, BufferBytes(*context));
                continue;
            }
            if (wrapper->IsLoadingState()) {
                Silence(*context, BufferBytes(*context));
                continue;
            }
            IFakeHost* const fakeHost = wrapper->GetFakeHost();
            if (fakeHost == nullptr)
                continue;
            // A restore that started after the flag test above waits for
            // this call; one that has closed the gate meanwhile gets silence.
            if (!wrapper->ProcessGate().TryEnter()) {
                Silence(*context, BufferBytes(*context));
                continue;
            }
            Morvane::CProcessGateLeave leave(wrapper->ProcessGate());
            // The AAX side read once: the fake hosts translate only the block.
            const CProcessBlock block(*context);
            fakeHost->Process(block);
        }
    } catch (const Morvane::CException& e) {
        // Later instances are skipped: the host gets this buffer back as is.
        MV_LOG("process", kLogError, "Exception in Process - ", e.what());
    }
}
