// The audio side of the loader: buffers, parameter hand-over and one
// process call. Runs on the real-time thread, except addParameterChange.
#include "vst3/CVST3Loader.h"

#include <algorithm>
#include <cstring>

#include "S_Alg_Context.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

static_assert(CVST3Loader::kContextInputs == kAlgBypassChannels, "the context's inputs");
static_assert(CVST3Loader::kContextOutputs == 2 + 2 * kNumOutputStems, "the context's outputs");

void CVST3Loader::addParameterChange(unsigned int id, double value, int sampleOffset)
{
    // STANDARD: the controller was told at once by AddInputChangeForGUI.
    if (!mStandard)
        mHostToController.addChange(id, value, sampleOffset);
    mHostToProcessor.addChange(id, value, sampleOffset);
}

void CVST3Loader::queueForController(ParamID id, double value)
{
    mProcessorToController.addChange(id, value, 0);
}

float* CVST3Loader::scratchChannel(BusDirection direction, int32 channel)
{
    const bool input = direction == kInput;
    const int32 index = channel - (input ? kContextInputs : kContextOutputs);
    if (index < 0 || index >= (input ? mScratchInputChannels : mScratchOutputChannels))
        return nullptr;
    std::vector<float>& scratch = input ? mScratchInputs : mScratchOutputs;
    return scratch.data() + static_cast<size_t>(index) * static_cast<size_t>(mMaxBlock);
}

void CVST3Loader::setProcessingBuffers(float* const* inputs, float* const* outputs)
{
    int32 k = 0;
    for (int32 bus = 0; bus < mProcessData.numInputs; ++bus) {
        AudioBusBuffers& buffers = mProcessData.inputs[bus];
        if (bus < 64 && (mInputMainBusMask & (uint64_t{1} << bus))) {
            for (int32 c = 0; c < buffers.numChannels; ++c) {
                float* channel = nullptr;
                if (inputs) {
                    channel = k < kContextInputs ? inputs[k] : scratchChannel(kInput, k);
                    ++k;
                }
                buffers.channelBuffers32[c] = channel;
            }
        } else {
            buffers.silenceFlags = ~uint64_t{0};
        }
    }
    // Main buses in order, as they always were; auxiliary ones (STANDARD)
    // from the channel their route gave them.
    k = 0;
    const int32 routed = mAuxOutputsRouted ? static_cast<int32>(mOutputBusFirstChannel.size()) : 0;
    for (int32 bus = 0; bus < mProcessData.numOutputs; ++bus) {
        AudioBusBuffers& buffers = mProcessData.outputs[bus];
        buffers.silenceFlags = 0;
        if (bus < 64 && (mOutputMainBusMask & (uint64_t{1} << bus))) {
            for (int32 c = 0; c < buffers.numChannels; ++c) {
                float* channel = nullptr;
                if (outputs) {
                    channel = k < kContextOutputs ? outputs[k] : scratchChannel(kOutput, k);
                    ++k;
                }
                buffers.channelBuffers32[c] = channel;
            }
        } else if (bus < routed && mOutputBusFirstChannel[static_cast<size_t>(bus)] >= 0) {
            const int32 first = mOutputBusFirstChannel[static_cast<size_t>(bus)];
            for (int32 c = 0; c < buffers.numChannels; ++c) {
                const int32 index = first + c;
                float* channel = nullptr;
                if (outputs)
                    channel = index < kContextOutputs ? outputs[index] : scratchChannel(kOutput, index);
                buffers.channelBuffers32[c] = channel;
            }
        }
    }
}

void CVST3Loader::doProcess(int numSamples)
{
    if (!mProcessor)
        return;
    mProcessData.numSamples = numSamples;
    // A plug-in may have written into its inputs last time.
    const size_t scratchBytes = sizeof(float) * static_cast<size_t>(std::clamp(numSamples, 0, int(mMaxBlock)));
    for (int32 c = 0; c < mScratchInputChannels; ++c)
        std::memset(scratchChannel(kInput, kContextInputs + c), 0, scratchBytes);
    if (!mProcessingStarted) {
        mProcessingStarted = true;
        mProcessor->setProcessing(true);
    }
    mProcessData.inputEvents = mInputEvents.get();
    mProcessData.outputEvents = mOutputEvents.get();

    mHostToProcessor.transferChangesTo(mInputChanges);
    mProcessData.inputParameterChanges = &mInputChanges;
    mProcessData.outputParameterChanges = &mOutputChanges;
    mOutputChanges.clearQueue();

    mProcessor->process(mProcessData);

    mProcessorToController.transferChangesFrom(mOutputChanges);
    mInputChanges.clearQueue();
    if (mInputEvents)
        mInputEvents->clear();
}
