#include "DirectRender.h"

#include <algorithm>
#include <cmath>

#include "AAX_ITransport.h"
#include "DirectPlugin.h"
#include "TestSignal.h"

namespace AAXDirect {

namespace {

// What the wrapper's bundles expose: a stereo main output and sixteen stems,
// fed from as many inputs.
constexpr int kRenderedInputs = 32;
constexpr int kRenderedOutputs = 34;

}  // namespace

bool RenderDirect(const SDirectRenderConfig& config, const AAXHost::CMidiSchedule& schedule,
                  SDirectRenderResult& result, std::string& error)
{
    std::unique_ptr<IDirectPlugin> plugin = MakeDirectVst2Plugin();
    SDirectSetup setup;
    setup.path = config.libraryPath;
    setup.sampleRate = config.sampleRate;
    setup.maxBlock = config.standardHost ? 4096 : std::max(config.blockSize, 1);
    setup.standard = config.standardHost;
    setup.oneEventPerCall = config.oneEventPerCall;
    if (!plugin->Open(setup, error))
        return false;
    for (int i = 0; i < plugin->ParameterCount(); ++i)
        result.initialParameters.push_back(static_cast<float>(plugin->GetParameter(i)));
    for (const auto& p : config.parametersAtStart)
        plugin->SetParameter(p.first, p.second);
    if (!config.chunkAtStart.empty() && !plugin->LoadState(config.chunkAtStart, error))
        return false;
    plugin->Start();

    const int inputs = std::max(plugin->InputChannels(), kRenderedInputs);
    const int outputs = std::max(plugin->OutputChannels(), kRenderedOutputs);
    result.outputs.assign(static_cast<size_t>(outputs), std::vector<float>(static_cast<size_t>(config.totalSamples)));
    std::vector<AAX_CMidiPacket> packets;
    for (const AAXHost::SBlock& b : AAXHost::PlanBlocks(config.totalSamples, config.blockSize)) {
        size_t first = 0, count = 0;
        schedule.EventsInBlock(b.start, b.frames, first, count);
        packets.clear();
        for (size_t i = 0; i < count; ++i) {
            const AAXHost::SMidiEvent& e = schedule.Events()[first + i];
            AAX_CMidiPacket p{};
            p.mTimestamp = static_cast<uint32_t>(e.sample - b.start);
            p.mLength = 3;
            for (int k = 0; k < 4; ++k)
                p.mData[k] = e.data[k];
            packets.push_back(p);
        }
        SDirectTransport transport;
        transport.tempo = config.tempo;
        transport.samplePosition = b.start;
        // As the AAX transport gives it: whole ticks.
        const double quarters = static_cast<double>(b.start) / config.sampleRate * config.tempo / 60.0;
        transport.quarterNotes =
            static_cast<double>(std::llround(quarters * kAAX_TicksPerQuarter)) / kAAX_TicksPerQuarter;
        for (int c = 0; c < inputs; ++c) {
            float* in = plugin->Input(c);
            for (int s = 0; s < b.frames; ++s)
                in[s] = config.testInput ? AAXHost::TestInputSample(c, b.start + s, config.sampleRate) : 0.0f;
        }
        plugin->Prepare(packets.data(), packets.size(), transport, b.frames);
        plugin->Process(b.frames);
        for (int c = 0; c < outputs; ++c)
            std::copy(plugin->Output(c), plugin->Output(c) + b.frames,
                      result.outputs[static_cast<size_t>(c)].begin() + b.start);
    }
    result.latency = plugin->Latency();
    std::string ignored;
    plugin->SaveState(result.chunkAtEnd, ignored);
    return true;
}

}  // namespace AAXDirect
