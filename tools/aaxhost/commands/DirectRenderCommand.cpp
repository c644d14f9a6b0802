#include "DirectRenderCommand.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "DirectPlugin.h"
#include "JsonOutput.h"
#include "MidiSchedule.h"
#include "PluginSession.h"
#include "TestSignal.h"
#include "WavWriter.h"
#include "WrapperStatus.h"

namespace AAXHost {

namespace {

int Fail(const std::string& what)
{
    std::fprintf(stderr, "aaxhost: error: %s\n", what.c_str());
    return 1;
}

bool IsWrapperBundle(const std::string& path)
{
    std::string p = path;
    while (p.size() > 1 && p.back() == '/')
        p.pop_back();
    return p.size() > 10 && p.compare(p.size() - 10, 10, ".aaxplugin") == 0;
}

// A wrapper bundle names the plug-in it hosts in its status block.
bool ResolvePlugin(const std::string& given, std::string& plugin, std::string& error)
{
    if (!IsWrapperBundle(given)) {
        plugin = given;
        return true;
    }
    CPluginSession session;
    if (!session.Open(given, error))
        return false;
    const SWrapperStatus status = ProbeWrapperStatus(session);
    std::string closeError;
    session.Close(closeError);
    if (!status.present || status.plugin.empty()) {
        error = "the bundle names no wrapped plug-in";
        return false;
    }
    plugin = status.plugin;
    return true;
}

struct SChannelLevel {
    double peak = 0.0, sumSquares = 0.0;
    uint64_t nan = 0, inf = 0;
};

}  // namespace

int RunDirectRender(const SDirectRenderRequest& request)
{
    CJsonOutput jsonOut(request.json);
    std::string plugin, error;
    if (!ResolvePlugin(request.plugin, plugin, error))
        return Fail(error);
    CMidiSchedule schedule;
    if (!request.midiPath.empty() && !schedule.LoadSmf(request.midiPath, request.sampleRate, 0.0, error))
        return Fail(error);
    if (!(request.seconds > 0.0 && request.seconds <= 3600.0) || request.blockSize < 1 || request.blockSize > 4096)
        return Fail("--seconds must be from 0 to 3600 and --block from 1 to 4096");

    std::unique_ptr<AAXDirect::IDirectPlugin> direct = AAXDirect::MakeDirectPlugin(plugin);
    AAXDirect::SDirectSetup setup;
    setup.path = plugin;
    setup.sampleRate = request.sampleRate;
    setup.maxBlock = request.blockSize;
    if (!direct->Open(setup, error))
        return Fail("the plug-in could not be hosted directly: " + error);
    direct->Start();

    const int64_t total = static_cast<int64_t>(std::llround(request.seconds * request.sampleRate));
    std::vector<SChannelLevel> levels(static_cast<size_t>(direct->OutputChannels()));
    std::vector<AAX_CMidiPacket> packets;
    AAXDirect::SDirectTransport transport;
    // The main pair, to set beside a wrapped render of the same input.
    CWavWriter out;
    const int outChannels = std::min(2, direct->OutputChannels());
    if (!request.outPath.empty() &&
        (outChannels < 1 || !out.Open(request.outPath, outChannels, static_cast<int>(request.sampleRate), error)))
        return Fail(outChannels < 1 ? std::string("the plug-in has no outputs to write") : error);
    for (const SBlock& block : PlanBlocks(total, request.blockSize)) {
        for (int c = 0; c < direct->InputChannels(); ++c) {
            float* in = direct->Input(c);
            for (int32_t i = 0; i < block.frames; ++i)
                in[i] = request.testInput ? TestInputSample(c, block.start + i, request.sampleRate) : 0.0f;
        }
        schedule.PacketsForBlock(block.start, block.frames, packets);
        transport.samplePosition = block.start;
        transport.quarterNotes = static_cast<double>(block.start) / request.sampleRate * transport.tempo / 60.0;
        direct->Prepare(packets.data(), packets.size(), transport, block.frames);
        direct->Process(block.frames);
        if (!request.outPath.empty()) {
            const float* pair[2] = {direct->Output(0), direct->Output(outChannels > 1 ? 1 : 0)};
            if (!out.Write(pair, block.frames))
                return Fail("cannot write " + request.outPath);
        }
        for (size_t c = 0; c < levels.size(); ++c) {
            const float* out = direct->Output(static_cast<int>(c));
            SChannelLevel& level = levels[c];
            for (int32_t i = 0; i < block.frames; ++i) {
                const float s = out[i];
                if (std::isnan(s))
                    ++level.nan;
                else if (std::isinf(s))
                    ++level.inf;
                else {
                    level.peak = std::max(level.peak, static_cast<double>(std::fabs(s)));
                    level.sumSquares += static_cast<double>(s) * s;
                }
            }
        }
    }
    const int32_t latency = direct->Latency();
    direct.reset();

    nlohmann::json channels = nlohmann::json::array();
    for (const SChannelLevel& l : levels)
        channels.push_back({{"peak", l.peak},
                            {"rms", total > 0 ? std::sqrt(l.sumSquares / static_cast<double>(total)) : 0.0},
                            {"nan", l.nan},
                            {"inf", l.inf}});
    if (request.json) {
        jsonOut.Write({{"format", "aaxhost-render-direct-1"},
                       {"plugin", plugin},
                       {"sample_rate", request.sampleRate},
                       {"samples", total},
                       {"latency", latency},
                       {"channels", channels}});
        return 0;
    }
    std::printf("%s hosted directly: %lld samples at %g Hz, %zu output channels, latency %d samples\n",
                plugin.c_str(), static_cast<long long>(total), request.sampleRate, levels.size(),
                static_cast<int>(latency));
    for (size_t c = 0; c < levels.size(); ++c) {
        const SChannelLevel& l = levels[c];
        if (l.peak <= 0.0 && l.nan == 0 && l.inf == 0)
            continue;
        std::printf("  channel %zu  peak %8.2f dBFS  NaN %llu  infinite %llu\n", c, 20.0 * std::log10(l.peak),
                    static_cast<unsigned long long>(l.nan), static_cast<unsigned long long>(l.inf));
    }
    return 0;
}

}  // namespace AAXHost
