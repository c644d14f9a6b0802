#include "E2ESupport.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>

#include "HostRunFiles.h"

namespace vst3e2e {

namespace {

using AAXHostTest::ReadWholeFile;
using AAXHostTest::ShellQuote;

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

void PutU32(std::string& out, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

void PutVarLen(std::string& out, uint32_t v)
{
    uint8_t bytes[5];
    int n = 0;
    bytes[n++] = v & 0x7F;
    while ((v >>= 7) != 0)
        bytes[n++] = static_cast<uint8_t>(0x80 | (v & 0x7F));
    while (n > 0)
        out += static_cast<char>(bytes[--n]);
}

void PutBigEndian(std::string& out, uint32_t v, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i)
        out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

}  // namespace

nlohmann::json SRun::Json() const
{
    return nlohmann::json::parse(out, nullptr, false);
}

std::string TempDir(const std::string& name) { return AAXHostTest::TestFolder(VST3E2E_WORK_DIR, name); }

std::string SynthBundle() { return std::string(VST3E2E_BUNDLE_DIR) + "/MrvTestSynth.aaxplugin"; }

SRun RunHost(const std::vector<std::string>& args, const std::vector<std::string>& env)
{
    static int runs = 0;
    const std::string base = TempDir("run") + "/" + std::to_string(++runs);
    const std::string tracePath = base + ".trace", outPath = base + ".out", errPath = base + ".err";
    std::string command = "env MRV_VST3_TRACE=" + ShellQuote(tracePath);
    for (const auto& e : env)
        command += " " + ShellQuote(e);
    command += " " + ShellQuote(AAXHOST_EXE);
    for (const auto& a : args)
        command += " " + ShellQuote(a);
    command += " >" + ShellQuote(outPath) + " 2>" + ShellQuote(errPath) + " </dev/null";
    const int status = std::system(command.c_str());
    SRun run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = ReadWholeFile(outPath);
    run.err = ReadWholeFile(errPath);
    run.trace = Lines(ReadWholeFile(tracePath));
    return run;
}

void WriteSmf(const std::string& path, std::vector<SMidiEvent> events)
{
    std::stable_sort(events.begin(), events.end(),
                     [](const SMidiEvent& a, const SMidiEvent& b) { return a.tick < b.tick; });
    std::string track;
    uint32_t last = 0;
    for (const auto& e : events) {
        PutVarLen(track, e.tick - last);
        last = e.tick;
        track.append(e.bytes.begin(), e.bytes.end());
    }
    track += std::string("\x00\xFF\x2F\x00", 4);  // end of track
    std::string file = "MThd";
    PutBigEndian(file, 6, 4);
    PutBigEndian(file, 0, 2);    // format 0
    PutBigEndian(file, 1, 2);    // one track
    PutBigEndian(file, 480, 2);  // ticks per quarter note
    file += "MTrk";
    PutBigEndian(file, static_cast<uint32_t>(track.size()), 4);
    file += track;
    std::ofstream(path, std::ios::binary) << file;
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

uint32_t ReadU32(const std::vector<uint8_t>& bytes, size_t at)
{
    if (at + 4 > bytes.size())
        throw std::out_of_range("u32 read past the end");
    return static_cast<uint32_t>(bytes[at]) | static_cast<uint32_t>(bytes[at + 1]) << 8 |
           static_cast<uint32_t>(bytes[at + 2]) << 16 | static_cast<uint32_t>(bytes[at + 3]) << 24;
}

std::vector<SStateChunk> ReadStateFile(const std::string& path)
{
    const std::string text = ReadWholeFile(path);
    const std::vector<uint8_t> bytes(text.begin(), text.end());
    if (bytes.size() < 16 || text.compare(0, 8, "AAXHSTAT") != 0 || ReadU32(bytes, 8) != 1)
        throw std::runtime_error("not an aaxhost state file: " + path);
    std::vector<SStateChunk> chunks(ReadU32(bytes, 12));
    size_t at = 16;
    for (auto& c : chunks) {
        c.id = ReadU32(bytes, at);
        c.version = ReadU32(bytes, at + 4);
        const uint32_t size = ReadU32(bytes, at + 40);
        at += 44;
        if (at + size > bytes.size())
            throw std::runtime_error("state file chunk past the end");
        c.data.assign(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                      bytes.begin() + static_cast<std::ptrdiff_t>(at + size));
        at += size;
    }
    return chunks;
}

void WriteStateFile(const std::string& path, const std::vector<SStateChunk>& chunks)
{
    std::string out = "AAXHSTAT";
    PutU32(out, 1);
    PutU32(out, static_cast<uint32_t>(chunks.size()));
    for (const auto& c : chunks) {
        PutU32(out, c.id);
        PutU32(out, c.version);
        out += std::string(32, '\0');
        PutU32(out, static_cast<uint32_t>(c.data.size()));
        out.append(c.data.begin(), c.data.end());
    }
    std::ofstream(path, std::ios::binary) << out;
}

}  // namespace vst3e2e
