// The plug-in's audio buses and where each plays: main buses fill the
// context's channels in order (main pair, then the stems); STANDARD also
// switches the auxiliary output buses on and gives each the next stem.
#include <algorithm>

#include "logger/CLog.h"
#include "vst3/CVST3Loader.h"
#include "vst3/Utf16Text.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
// The context's first stem channel, after the main pair.
constexpr int32 kFirstStemChannel = 2;
}  // namespace

void CVST3Loader::setupBuses()
{
    if (!mComponent)
        return;
    mProcessData.prepare(*mComponent, 0, kSample32);
    mProcessData.processContext = &mProcessContext;

    mInputChannelCount = countMainBusChannels(kInput, mInputMainBusMask);
    routeOutputBuses();
    makeScratchChannels();
    linkChannels();

    if (mComponent->getBusCount(kEvent, kInput) <= 0)
        mInputEvents.reset();
    else if (!mInputEvents)
        mInputEvents = std::make_unique<Morvane::vst3::EventList>(kEventListSize);
    if (mComponent->getBusCount(kEvent, kOutput) <= 0)
        mOutputEvents.reset();
    else if (!mOutputEvents)
        mOutputEvents = std::make_unique<Morvane::vst3::EventList>(kEventListSize);
}

int32 CVST3Loader::countMainBusChannels(BusDirection direction, uint64_t& mask)
{
    mask = 0;
    int32 total = 0;
    if (!mComponent)
        return 0;
    const int32 busCount = mComponent->getBusCount(kAudio, direction);
    for (int32 i = 0; i < busCount; ++i) {
        BusInfo info{};
        if (mComponent->getBusInfo(kAudio, direction, i, info) != kResultOk)
            continue;
        if (info.busType == kMain) {
            total += std::max(info.channelCount, int32{0});
            if (i < 64)
                mask |= uint64_t{1} << i;
            mComponent->activateBus(kAudio, direction, i, true);
        } else if (info.flags & BusInfo::kDefaultActive) {
            mComponent->activateBus(kAudio, direction, i, false);
        }
    }
    return total;
}

// Main buses first, in order, as they always were; then (STANDARD) each
// auxiliary bus from the next free stem on: a stereo bus is one stem, a mono
// bus the left channel of one, a wider bus as many stems as it fills.
// Channels past the last stem play into scratch buffers.
void CVST3Loader::routeOutputBuses()
{
    mOutputChannelCount = countMainBusChannels(kOutput, mOutputMainBusMask);
    mOutputRoutes.clear();
    const int32 busCount = std::max(mComponent->getBusCount(kAudio, kOutput), int32{0});
    std::vector<int32> firstChannel(static_cast<size_t>(busCount), -1);

    int32 next = 0;
    for (int32 bus = 0; bus < busCount; ++bus) {
        BusInfo info{};
        if (mComponent->getBusInfo(kAudio, kOutput, bus, info) != kResultOk || info.busType != kMain)
            continue;
        firstChannel[static_cast<size_t>(bus)] = next;
        noteOutputRoute(bus, info, next);
        next += std::max(info.channelCount, int32{0});
    }
    if (mStandard)
        routeAuxiliaryOutputBuses(firstChannel, next);
    mOutputBusFirstChannel = std::move(firstChannel);
}

void CVST3Loader::routeAuxiliaryOutputBuses(std::vector<int32>& firstChannel, int32 next)
{
    const int32 busCount = static_cast<int32>(firstChannel.size());

    next = std::max(next + (next & 1), kFirstStemChannel);
    for (int32 bus = 0; bus < busCount; ++bus) {
        BusInfo info{};
        if (mComponent->getBusInfo(kAudio, kOutput, bus, info) != kResultOk || info.busType == kMain)
            continue;
        // A bus of no channels, of absurd width, or past every scratch
        // buffer is left switched off.
        if (info.channelCount <= 0 || info.channelCount > kMostBusChannels ||
            next + info.channelCount > kContextOutputs + kMostScratchChannels) {
            MV_LOG("fakehost", kLogWarning, "VST3 - output bus ", bus, " of ", info.channelCount,
                   " channels left switched off");
            continue;
        }
        if (mComponent->activateBus(kAudio, kOutput, bus, true) != kResultOk) {
            MV_LOG("fakehost", kLogWarning, "VST3 - output bus ", bus, " could not be switched on");
            continue;
        }
        firstChannel[static_cast<size_t>(bus)] = next;
        noteOutputRoute(bus, info, next);
        next += info.channelCount + (info.channelCount & 1);
        mOutputChannelCount = next;
    }
}

void CVST3Loader::noteOutputRoute(int32 bus, const BusInfo& info, int32 firstChannel)
{
    SOutputRoute route;
    route.bus = bus;
    route.channels = info.channelCount;
    if (!Morvane::vst3::utf16ToUtf8(info.name, sizeof(info.name) / sizeof(info.name[0]), route.name))
        route.name.clear();
    if (firstChannel < kFirstStemChannel)
        route.stem = SOutputRoute::kMainOutput;
    else if (firstChannel < kContextOutputs)
        route.stem = (firstChannel - kFirstStemChannel) / 2;
    if (route.stem == SOutputRoute::kMainOutput)
        MV_LOG("fakehost", kLogInfo, "VST3 - output bus ", bus, " \"", route.name, "\" (", route.channels,
               route.channels == 1 ? " channel)" : " channels) plays into the main output");
    else if (route.stem >= 0)
        MV_LOG("fakehost", kLogInfo, "VST3 - output bus ", bus, " \"", route.name, "\" (", route.channels,
               route.channels == 1 ? " channel)" : " channels) plays into stem ", route.stem);
    else
        MV_LOG("fakehost", kLogWarning, "VST3 - output bus ", bus, " \"", route.name, "\" (", route.channels,
               route.channels == 1 ? " channel)" : " channels) has no stem left: its output is dropped");
    mOutputRoutes.push_back(std::move(route));
}

void CVST3Loader::makeScratchChannels()
{
    const int32 extraInputs = std::clamp(mInputChannelCount - kContextInputs, 0, kMostScratchChannels);
    const int32 extraOutputs = std::clamp(mOutputChannelCount - kContextOutputs, 0, kMostScratchChannels);
    if (extraInputs > 0 || extraOutputs > 0)
        MV_LOG("fakehost", kLogNotice, "VST3 - buses of ", mInputChannelCount, " inputs and ", mOutputChannelCount,
               " outputs: ", extraInputs, " and ", extraOutputs, " beyond the host's get scratch buffers");
    const size_t block = static_cast<size_t>(mMaxBlock);
    mScratchInputs.assign(static_cast<size_t>(extraInputs) * block, 0.0f);
    mScratchOutputs.assign(static_cast<size_t>(extraOutputs) * block, 0.0f);
    mScratchInputChannels = extraInputs;
    mScratchOutputChannels = extraOutputs;
}

void CVST3Loader::linkChannels()
{
    std::vector<SChannelLink> inputs;
    int32 k = 0;
    for (int32 bus = 0; bus < mProcessData.numInputs; ++bus) {
        AudioBusBuffers& buffers = mProcessData.inputs[bus];
        if (bus >= 64 || !(mInputMainBusMask & (uint64_t{1} << bus))) {
            buffers.silenceFlags = ~uint64_t{0};
            continue;
        }
        for (int32 c = 0; c < buffers.numChannels; ++c, ++k)
            inputs.push_back({&buffers.channelBuffers32[c], k < kContextInputs ? k : -1, scratchChannel(kInput, k)});
    }
    std::vector<SChannelLink> outputs;
    const int32 routed = static_cast<int32>(mOutputBusFirstChannel.size());
    for (int32 bus = 0; bus < mProcessData.numOutputs && bus < routed; ++bus) {
        const int32 first = mOutputBusFirstChannel[static_cast<size_t>(bus)];
        AudioBusBuffers& buffers = mProcessData.outputs[bus];
        for (int32 c = 0; first >= 0 && c < buffers.numChannels; ++c) {
            const int32 index = first + c;
            outputs.push_back(
                {&buffers.channelBuffers32[c], index < kContextOutputs ? index : -1, scratchChannel(kOutput, index)});
        }
    }
    // CLASSIC sets up again under running process calls: links that did not
    // change are left untouched.
    if (inputs != mInputLinks)
        mInputLinks = std::move(inputs);
    if (outputs != mOutputLinks)
        mOutputLinks = std::move(outputs);
}
