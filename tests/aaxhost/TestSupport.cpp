#include "TestSupport.h"

#include <smf.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include <gtest/gtest.h>

#include "HostRunFiles.h"
#include "WavWriter.h"

namespace AAXHostTest {

nlohmann::json SRunResult::Json() const
{
    return nlohmann::json::parse(out, nullptr, false);
}

SRunResult RunHost(const std::vector<std::string>& args)
{
    static int counter = 0;
    const std::string base = TempDir("run") + "/" + std::to_string(counter++);
    std::string cmd = ShellQuote(AAXHOST_EXE);
    for (const auto& a : args)
        cmd += " " + ShellQuote(a);
    cmd += " >" + ShellQuote(base + ".out") + " 2>" + ShellQuote(base + ".err") + " </dev/null";
    const int status = std::system(cmd.c_str());
    SRunResult r;
    r.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + (WIFSIGNALED(status) ? WTERMSIG(status) : 0);
    r.out = ReadWholeFile(base + ".out");
    r.err = ReadWholeFile(base + ".err");
    return r;
}

std::string TempDir(const std::string& name) { return TestFolder(AAXHOST_TEST_WORK_DIR, name); }

void WriteMidiFile(const std::string& path, const std::vector<SNote>& notes,
                   const std::vector<std::pair<double, std::vector<unsigned char>>>& extra)
{
    smf_t* smf = smf_new();
    if (smf_set_ppqn(smf, 480) != 0)
        ADD_FAILURE() << "smf_set_ppqn failed";
    smf_track_t* track = smf_track_new();
    smf_add_track(smf, track);
    auto add = [&](double beat, std::vector<unsigned char> bytes) {
        smf_event_t* e = smf_event_new_from_pointer(bytes.data(), static_cast<int>(bytes.size()));
        smf_track_add_event_pulses(track, e, static_cast<int>(std::lround(beat * 480)));
    };
    // libsmf wants events added in time order.
    std::vector<std::pair<double, std::vector<unsigned char>>> all = extra;
    for (const auto& n : notes) {
        all.push_back({n.beat, {0x90, static_cast<unsigned char>(n.key), static_cast<unsigned char>(n.velocity)}});
        all.push_back({n.beat + n.length, {0x80, static_cast<unsigned char>(n.key), 0}});
    }
    std::stable_sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& e : all)
        add(e.first, e.second);
    if (smf_save(smf, path.c_str()) != 0)
        ADD_FAILURE() << "cannot write " << path;
    smf_delete(smf);
}

void WriteTestPhrase(const std::string& path)
{
    WriteMidiFile(path,
                  {{0.0, 1.0, 60, 100},
                   {0.013, 0.9, 64, 90},
                   {0.5, 1.5, 67, 127},
                   {1.0, 0.25, 72, 70},
                   {1.77, 1.0, 48, 110},
                   {2.5, 0.5, 55, 64}},
                  {{0.25, {0xB0, 1, 64}}, {1.5, {0xE0, 0x00, 0x50}}, {2.0, {0xE0, 0x00, 0x40}}});
}

std::vector<std::vector<float>> ReadWavChannels(const std::string& path, int* sampleRate)
{
    std::vector<std::vector<float>> channels;
    int rate = 0;
    std::string error;
    AAXHost::ReadWav(path, channels, rate, error);
    if (sampleRate)
        *sampleRate = rate;
    return channels;
}

double MaxDifference(const std::vector<float>& a, const std::vector<float>& b)
{
    if (a.size() != b.size())
        return std::numeric_limits<double>::infinity();
    double d = 0.0;
    for (size_t i = 0; i < a.size(); ++i)
        d = std::max(d, std::fabs(static_cast<double>(a[i]) - b[i]));
    return d;
}

double Peak(const std::vector<float>& a)
{
    double p = 0.0;
    for (float v : a)
        p = std::max(p, std::fabs(static_cast<double>(v)));
    return p;
}

}  // namespace AAXHostTest
