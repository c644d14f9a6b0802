// The audio side of the loader: buffers, parameter hand-over and one
// process call. Runs on the real-time thread, except addParameterChange.
#include "vst3/CVST3Loader.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

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

void CVST3Loader::setProcessingBuffers(float* const* inputs, float* const* outputs)
{
    int32 k = 0;
    for (int32 bus = 0; bus < mProcessData.numInputs; ++bus) {
        AudioBusBuffers& buffers = mProcessData.inputs[bus];
        if (bus < 64 && (mInputMainBusMask & (uint64_t{1} << bus))) {
            for (int32 c = 0; c < buffers.numChannels; ++c)
                buffers.channelBuffers32[c] = inputs ? inputs[k++] : nullptr;
        } else {
            buffers.silenceFlags = ~uint64_t{0};
        }
    }
    k = 0;
    for (int32 bus = 0; bus < mProcessData.numOutputs; ++bus) {
        AudioBusBuffers& buffers = mProcessData.outputs[bus];
        buffers.silenceFlags = 0;
        if (bus < 64 && (mOutputMainBusMask & (uint64_t{1} << bus))) {
            for (int32 c = 0; c < buffers.numChannels; ++c)
                buffers.channelBuffers32[c] = outputs ? outputs[k++] : nullptr;
        }
    }
}

void CVST3Loader::doProcess(int numSamples)
{
    if (!mProcessor)
        return;
    mProcessData.numSamples = numSamples;
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
