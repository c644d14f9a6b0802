#include "E2ESupport.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include <gtest/gtest.h>

namespace vst3e2e {

SRunResult RunHost(const std::vector<std::string>& args, const std::vector<std::string>& env)
{
    static int runs = 0;
    const std::string tracePath = TempDir("trace") + "/" + std::to_string(++runs) + ".trace";
    std::vector<std::string> allEnv = {"MRV_VST3_TRACE=" + tracePath};
    allEnv.insert(allEnv.end(), env.begin(), env.end());
    SRunResult run = AAXHostTest::RunHostIn(VST3E2E_WORK_DIR, args, allEnv);
    std::istringstream in(AAXHostTest::ReadWholeFile(tracePath));
    for (std::string line; std::getline(in, line);)
        run.trace.push_back(line);
    return run;
}

void WriteSmf(const std::string& path, const std::vector<std::pair<uint32_t, std::vector<unsigned char>>>& events)
{
    std::vector<AAXHostTest::SBeatEvent> beats;
    for (const auto& e : events)
        beats.push_back({e.first / 480.0, e.second});
    AAXHostTest::WriteMidiEvents(path, std::move(beats));
}

std::vector<SProcessCall> ProcessCalls(const std::vector<std::string>& trace)
{
    std::vector<SProcessCall> calls;
    std::vector<SParamPoint> pending;
    size_t pendingFirst = 0;
    for (size_t i = 0; i < trace.size(); ++i) {
        const char* line = trace[i].c_str();
        SParamPoint p{};
        SNoteEvent n{};
        SProcessCall c{};
        if (std::sscanf(line, "proc.param id=%u value=%lf offset=%d", &p.id, &p.value, &p.offset) == 3) {
            if (pending.empty())
                pendingFirst = i;
            p.line = i;
            pending.push_back(p);
        } else if (std::sscanf(line, "proc.context state=0x%x rate=%lf tempo=%lf sig=%d/%d music=%lf samples=%lld",
                               &c.state, &c.rate, &c.tempo, &c.numerator, &c.denominator, &c.music,
                               &c.samples) == 7) {
            c.firstLine = pending.empty() ? i : pendingFirst;
            c.params.swap(pending);
            calls.push_back(c);
        } else if (!calls.empty() &&
                   std::sscanf(line, "proc.process samples=%d events=%d", &calls.back().frames,
                               &calls.back().events) == 2) {
        } else if (!calls.empty() &&
                   std::sscanf(line, "proc.noteOn ch=%d pitch=%d vel=%lf offset=%d flags=%d id=%d", &n.channel,
                               &n.pitch, &n.velocity, &n.offset, &n.flags, &n.noteId) == 6) {
            n.on = true;
            calls.back().notes.push_back(n);
        } else if (!calls.empty() && std::sscanf(line, "proc.noteOff ch=%d pitch=%d vel=%lf offset=%d", &n.channel,
                                                 &n.pitch, &n.velocity, &n.offset) == 4) {
            calls.back().notes.push_back(n);
        }
    }
    return calls;
}

size_t FindLine(const std::vector<std::string>& trace, const std::string& prefix, size_t from)
{
    for (size_t i = from; i < trace.size(); ++i)
        if (trace[i].compare(0, prefix.size(), prefix) == 0)
            return i;
    return std::string::npos;
}

size_t CountLines(const std::vector<std::string>& trace, const std::string& prefix)
{
    return static_cast<size_t>(std::count_if(trace.begin(), trace.end(), [&](const std::string& l) {
        return l.compare(0, prefix.size(), prefix) == 0;
    }));
}

std::vector<AAXHost::SStateChunk> ReadState(const std::string& path)
{
    std::vector<AAXHost::SStateChunk> chunks;
    std::string error;
    EXPECT_TRUE(AAXHost::ReadStateFile(path, chunks, error)) << error;
    return chunks;
}

AAXHost::SStateChunk* WrapperChunk(std::vector<AAXHost::SStateChunk>& chunks)
{
    // The wrapper chunk's four-character code, as this bundle is built.
    constexpr uint32_t kWrapperChunkID = ('M' << 24) | ('v' << 16) | ('E' << 8) | '3';
    for (auto& c : chunks)
        if (c.id == kWrapperChunkID)
            return &c;
    return nullptr;
}

uint32_t ReadU32(const std::vector<char>& bytes, size_t at)
{
    EXPECT_LE(at + 4, bytes.size()) << "u32 read past the end";
    uint32_t v = 0;
    for (size_t i = 0; i < 4 && at + i < bytes.size(); ++i)
        v |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return v;
}

}  // namespace vst3e2e
