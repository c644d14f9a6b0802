#include "RenderReport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace AAXHost {

double SChannelStats::Rms() const
{
    return samples > 0 ? std::sqrt(sumSquares / static_cast<double>(samples)) : 0.0;
}

void SChannelStats::Add(const float* data, int frames)
{
    // Most channels of most buffers are silent: a vectorised test of the
    // bits settles them (a negative zero takes the full pass).
    uint32_t bits = 0;
#pragma omp simd reduction(| : bits)
    for (int i = 0; i < frames; ++i) {
        uint32_t word;
        std::memcpy(&word, &data[i], sizeof word);
        bits |= word;
    }
    if (bits == 0) {
        samples += frames;
        return;
    }
    // One pass the compiler vectorises; a block holding a NaN or an infinity
    // (its sum is then not finite) is counted again sample by sample.
    float blockPeak = 0.0f;
    double blockSquares = 0.0;
    int64_t blockDenormals = 0;
#pragma omp simd reduction(max : blockPeak) reduction(+ : blockSquares, blockDenormals)
    for (int i = 0; i < frames; ++i) {
        const float magnitude = std::fabs(data[i]);
        blockPeak = magnitude > blockPeak ? magnitude : blockPeak;
        blockSquares += static_cast<double>(data[i]) * data[i];
        // '&', not '&&': a branch would stop the vectoriser.
        blockDenormals += (magnitude != 0.0f) & (magnitude < std::numeric_limits<float>::min());
    }
    if (!std::isfinite(blockSquares) || !(blockPeak <= std::numeric_limits<float>::max())) {
        AddWithNonFinite(data, frames);
        return;
    }
    peak = std::max(peak, static_cast<double>(blockPeak));
    sumSquares += blockSquares;
    denormals += blockDenormals;
    samples += frames;
}

void SChannelStats::AddWithNonFinite(const float* data, int frames)
{
    float blockPeak = 0.0f;
    double blockSquares = 0.0;
    for (int i = 0; i < frames; ++i) {
        const float v = data[i];
        const float magnitude = std::fabs(v);
        if (!(magnitude <= std::numeric_limits<float>::max())) {
            ++(std::isnan(v) ? nans : infinities);
            continue;
        }
        if (magnitude != 0.0f && magnitude < std::numeric_limits<float>::min())
            ++denormals;
        blockPeak = std::max(blockPeak, magnitude);
        blockSquares += static_cast<double>(v) * v;
    }
    peak = std::max(peak, static_cast<double>(blockPeak));
    sumSquares += blockSquares;
    samples += frames;
}

bool RenderOutputIsFinite(const SRenderReport& report)
{
    for (const auto& inst : report.instances)
        for (const auto& c : inst.channels)
            if (!c.Finite())
                return false;
    return true;
}

nlohmann::json RenderReportToJson(const SRenderReport& report)
{
    using nlohmann::json;
    json instances = json::array();
    for (const auto& inst : report.instances) {
        json channels = json::array();
        for (const auto& c : inst.channels)
            channels.push_back({{"peak", c.peak}, {"rms", c.Rms()}, {"nan", c.nans}, {"inf", c.infinities},
                                {"denormal", c.denormals}});
        json midiOut = json::array();
        for (const auto& m : inst.midiOut) {
            json bytes = json::array();
            for (uint32_t b = 0; b < std::min<uint32_t>(m.packet.mLength, 4); ++b)
                bytes.push_back(m.packet.mData[b]);
            midiOut.push_back({{"sample", m.samplePosition}, {"bytes", bytes}});
        }
        json automation = json::array();
        for (const auto& a : inst.automation)
            automation.push_back({{"kind", a.kind}, {"parameter", a.parameterID}, {"value", a.value},
                                  {"sample", a.samplePosition}, {"origin", a.fromHost ? "host" : "plugin"}});
        instances.push_back({{"files", inst.files}, {"channels", channels}, {"midi_in", inst.midiIn},
                             {"midi_out", midiOut}, {"automation", automation}, {"latency", inst.latency},
                             {"latencies", inst.latencies}});
    }
    json plot = nullptr;
    if (!report.plot.file.empty())
        plot = {{"file", report.plot.file}, {"width", report.plot.width}, {"height", report.plot.height},
                {"rows", report.plot.rows}};
    return {{"format", "aaxhost-render-1"},
            {"sample_rate", report.sampleRate},
            {"block_size", report.blockSize},
            {"samples", report.totalSamples},
            {"seconds", report.sampleRate > 0 ? static_cast<double>(report.totalSamples) / report.sampleRate : 0.0},
            {"wall_seconds", report.wallSeconds},
            {"process_calls", report.processCalls},
            {"latency_compensated", report.latencyCompensated},
            {"tail_seconds", report.tailSeconds},
            {"tail_source", report.tailSource},
            {"instances_per_call", report.instances.size()},
            {"instances", instances},
            {"plot", plot}};
}

void PrintRenderReport(std::ostream& out, const SRenderReport& report)
{
    char line[160];
    std::snprintf(line, sizeof line, "Rendered %lld samples (%.3f s) at %.0f Hz in blocks of %d, %.3f s wall time\n",
                  static_cast<long long>(report.totalSamples),
                  report.sampleRate > 0 ? static_cast<double>(report.totalSamples) / report.sampleRate : 0.0,
                  report.sampleRate, report.blockSize, report.wallSeconds);
    out << line;
    if (!report.tailSource.empty()) {
        std::snprintf(line, sizeof line, "Tail after the last MIDI event: %.3f s (%s)\n", report.tailSeconds,
                      report.tailSource.c_str());
        out << line;
    }
    for (size_t i = 0; i < report.instances.size(); ++i) {
        const SInstanceReport& inst = report.instances[i];
        size_t requests = 0;
        for (const auto& a : inst.automation)
            requests += (a.kind != "register" && a.kind != "unregister") ? 1 : 0;
        out << "Instance " << i << ": " << inst.midiIn << " MIDI events in, " << inst.midiOut.size()
            << " out, " << requests << " automation requests\n";
        for (size_t c = 0; c < inst.channels.size(); ++c) {
            const SChannelStats& s = inst.channels[c];
            // Silent stems would only bury the channels that matter.
            if (c >= 2 && s.peak == 0.0 && s.Finite() && s.denormals == 0)
                continue;
            std::snprintf(line, sizeof line, "  channel %2zu  peak %8.2f dBFS  rms %8.2f dBFS", c,
                          s.peak > 0 ? 20.0 * std::log10(s.peak) : -INFINITY,
                          s.Rms() > 0 ? 20.0 * std::log10(s.Rms()) : -INFINITY);
            out << line;
            if (!s.Finite() || s.denormals > 0)
                out << "  NaN " << s.nans << "  Inf " << s.infinities << "  denormal " << s.denormals;
            out << "\n";
        }
        for (const auto& f : inst.files)
            out << "  wrote " << f << "\n";
    }
    if (!report.plot.file.empty())
        out << "Plotted " << report.plot.rows.size() << " waveform rows and the spectrum into " << report.plot.file
            << " (" << report.plot.width << " x " << report.plot.height << ")\n";
}

}  // namespace AAXHost
