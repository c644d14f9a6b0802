#include "HostRunFiles.h"

#include <smf.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace AAXHostTest {

namespace fs = std::filesystem;

namespace {

std::string ShellQuote(const std::string& s)
{
    std::string q = "'";
    for (char c : s)
        q += (c == '\'') ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

}  // namespace

nlohmann::json SRunResult::Json() const { return nlohmann::json::parse(out, nullptr, false); }

SRunResult RunHostIn(const std::string& workRoot, const std::vector<std::string>& args,
                     const std::vector<std::string>& env)
{
    static int counter = 0;
    const std::string base = TestFolder(workRoot, "run") + "/" + std::to_string(counter++);
    std::string cmd = "env";
    for (const auto& e : env)
        cmd += " " + ShellQuote(e);
    cmd += " " + ShellQuote(AAXHOST_EXE);
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

std::string ReadWholeFile(const std::string& path)
{
    std::ifstream f(path, std::ios::binary);
    std::stringstream ss;
    ss << f.rdbuf();
    return ss.str();
}

std::string TestFolder(const std::string& root, const std::string& name)
{
    // Outside a test (a suite's set-up) every process running one of the
    // suite's tests in parallel does the same set-up: the process id keeps
    // their folders apart.
    std::string test = "no-test." + std::to_string(getpid());
    const ::testing::UnitTest* unit = ::testing::UnitTest::GetInstance();
    if (const auto* info = unit->current_test_info())
        test = std::string(info->test_suite_name()) + "." + info->name();
    else if (const auto* suite = unit->current_test_suite())
        test = std::string(suite->name()) + "." + std::to_string(getpid());
    for (char& c : test)
        if (c == '/' || c == ' ')
            c = '_';
    const fs::path dir = fs::path(root) / test / name;
    static std::vector<std::string> cleaned;
    const std::string key = dir.string();
    if (std::find(cleaned.begin(), cleaned.end(), key) == cleaned.end()) {
        fs::remove_all(dir);
        cleaned.push_back(key);
    }
    fs::create_directories(dir);
    return key;
}

void WriteMidiEvents(const std::string& path, std::vector<SBeatEvent> events)
{
    smf_t* smf = smf_new();
    if (smf_set_ppqn(smf, 480) != 0)
        ADD_FAILURE() << "smf_set_ppqn failed";
    smf_track_t* track = smf_track_new();
    smf_add_track(smf, track);
    // libsmf wants events added in time order.
    std::stable_sort(events.begin(), events.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& e : events) {
        smf_event_t* event = smf_event_new_from_pointer(e.second.data(), static_cast<int>(e.second.size()));
        smf_track_add_event_pulses(track, event, static_cast<int>(std::lround(e.first * 480)));
    }
    if (smf_save(smf, path.c_str()) != 0)
        ADD_FAILURE() << "cannot write " << path;
    smf_delete(smf);
}

}  // namespace AAXHostTest
