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

// Each channel slot of the buses was linked to its context channel or
// scratch buffer at set-up: only the host's pointers change per buffer.
void CVST3Loader::setProcessingBuffers(float* const* inputs, float* const* outputs)
{
    for (const SChannelLink& link : mInputLinks)
        *link.slot = !inputs ? nullptr : link.contextChannel >= 0 ? inputs[link.contextChannel] : link.scratch;
    for (int32 bus = 0; bus < mProcessData.numOutputs; ++bus)
        mProcessData.outputs[bus].silenceFlags = 0;
    for (const SChannelLink& link : mOutputLinks)
        *link.slot = !outputs ? nullptr : link.contextChannel >= 0 ? outputs[link.contextChannel] : link.scratch;
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
