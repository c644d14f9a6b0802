// aaxhost validate against plug-ins whose faults are known: each bad citizen
// fails exactly the check meant for it and passes every other; Debian's
// amsynth fails only on its state, which it also fails hosted directly; the
// JSON document and the command line behave.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "TestSupport.h"

using namespace AAXHostTest;

namespace {

using SChecks = std::map<std::string, nlohmann::json>;
bool Passed(const nlohmann::json& check) { return check.value("passed", false); }
std::string Reason(const nlohmann::json& check) { return check.value("reason", ""); }

// name -> the check's record, for every check of a level-5 run.
SChecks Validate(const std::string& bundle, std::vector<std::string> extra = {})
{
    std::vector<std::string> args = {"validate", bundle, "--level", "5", "--json", "--seed", "11", "--timeout", "3"};
    args.insert(args.end(), extra.begin(), extra.end());
    const SRunResult r = RunHost(args, {"DISPLAY="});
    const nlohmann::json j = r.Json();
    SChecks checks;
    if (!j.is_object()) {
        ADD_FAILURE() << "no JSON from validate; stderr:\n" << r.err;
        return checks;
    }
    EXPECT_EQ(j.value("format", ""), "aaxhost-validate-1");
    EXPECT_EQ(r.exitCode, j.value("passed", false) ? 0 : 1);
    for (const auto& c : j["checks"])
        checks[c.value("name", "")] = c;
    return checks;
}

// `fault`, when given, is the verdict the failing check must carry.
void ExpectOnlyFailure(const SChecks& checks, const std::string& failing, const std::string& reasonPart,
                       const std::string& fault = "")
{
    ASSERT_EQ(checks.size(), 8u);
    for (const auto& [name, check] : checks) {
        if (name != failing) {
            EXPECT_TRUE(Passed(check)) << name << " failed: " << Reason(check);
            continue;
        }
        EXPECT_FALSE(Passed(check)) << name << " passed: " << Reason(check);
        EXPECT_NE(Reason(check).find(reasonPart), std::string::npos) << name << ": " << Reason(check);
        if (!fault.empty()) {
            EXPECT_EQ(check.value("fault", ""), fault) << check.dump();
        }
    }
}

struct SBadCase {
    const char* bundle;
    const char* check;
    const char* reason;
    const char* fault;  // the direct twin's verdict, where it is certain
};

class BadCitizen : public ::testing::TestWithParam<SBadCase> {};

TEST_P(BadCitizen, FailsExactlyItsCheck)
{
    const SBadCase& c = GetParam();
    ExpectOnlyFailure(Validate(Bundle(c.bundle, "bad")), c.check, c.reason, c.fault);
}

INSTANTIATE_TEST_SUITE_P(
    Gallery, BadCitizen,
    ::testing::Values(SBadCase{"BadAlloc", "realtime", "BadAlloc.vst 500 allocations, 500 frees", "plug-in"},
                      SBadCase{"BadNaN", "processing", "NaN and 0 infinite output samples at 192000 Hz", "plug-in"},
                      SBadCase{"BadRace", "threads", "NaN", ""},
                      SBadCase{"BadHang", "state", "hung: no call returned for 3.0 s during state: SetChunk", ""}),
    [](const auto& info) { return std::string(info.param.bundle); });

// amsynth writes its preset's empty name so that reading it back swallows
// the next line: its state grows with every save and restore. Hosted
// directly it does the same, so the validator is right to fail it there
// and nowhere else.
TEST(ValidateDebian, AmsynthFailsOnlyItsOwnStateRoundTrip)
{
    const char* library = "/usr/lib/vst/amsynth_vst.so";
    ASSERT_TRUE(std::filesystem::exists(library)) << "run scripts/setup";
    const std::string bundle = StandardBundle("amsynth");
    // Hosted directly (its twin, same seed) amsynth fails the same way, so
    // the failure is the plug-in's.
    const SChecks checks = Validate(bundle);
    ExpectOnlyFailure(checks, "state", "does not save byte for byte", "plug-in");
    const nlohmann::json& direct = checks.at("state")["direct"];
    EXPECT_FALSE(Passed(direct)) << direct.dump();
    EXPECT_NE(Reason(direct).find("does not save byte for byte"), std::string::npos) << direct.dump();

    // --fail-on wrapper lets the run pass; the text names the verdict.
    const SRunResult text =
        RunHost({"validate", bundle, "--only", "state", "--seed", "11", "--fail-on", "wrapper"}, {"DISPLAY="});
    EXPECT_EQ(text.exitCode, 0) << text.out;
    EXPECT_NE(text.out.find("FAIL (plug-in) state"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("hosted directly it fails the same way: "), std::string::npos) << text.out;
}

// A wrapper broken on purpose (its parameter chunk changes with every save;
// see WrapperChunkFault.cpp) around a plug-in that keeps its state: the
// state failure is the wrapper's, hosted directly the plug-in passes, and
// --fail-on wrapper still fails the run.
TEST(ValidateVerdict, BlamesTheWrapperWhenThePluginPassesHostedDirectly)
{
    const std::string bundle = Bundle("Tavrion V2", "faulty");
    ASSERT_TRUE(std::filesystem::exists(bundle));
    const SRunResult r =
        RunHost({"validate", bundle, "--json", "--only", "state", "processing", "--level", "2", "--seed", "3",
                 "--fail-on", "wrapper"},
                {"DISPLAY="});
    const nlohmann::json j = r.Json();
    ASSERT_TRUE(j.is_object()) << r.err;
    EXPECT_EQ(r.exitCode, 1);
    for (const auto& c : j["checks"]) {
        if (c.value("name", "") == "processing") {
            EXPECT_TRUE(c.value("passed", false)) << c.dump();
            EXPECT_FALSE(c.contains("fault")) << "a passing check carries no verdict";
            continue;
        }
        EXPECT_FALSE(c.value("passed", true)) << c.dump();
        EXPECT_EQ(c.value("fault", ""), "wrapper") << c.dump();
        EXPECT_TRUE(c["direct"].value("passed", false)) << c.dump();
    }
    const SRunResult text = RunHost({"validate", bundle, "--only", "state", "--seed", "3"}, {"DISPLAY="});
    EXPECT_NE(text.out.find("FAIL state"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("hosted directly it passes"), std::string::npos) << text.out;
}

TEST(ValidateCommand, ReportsEachCheckAndRepeatsARunFromItsSeed)
{
    const std::string bundle = AAXHOST_DEFAULT_BUNDLE;
    const SRunResult text = RunHost({"validate", bundle, "--level", "2", "--only", "parameters", "state", "--seed", "5"});
    EXPECT_EQ(text.exitCode, 0) << text.out << text.err;
    EXPECT_NE(text.out.find("seed 5 (--seed 5 repeats this run)"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("PASS parameters"), std::string::npos) << text.out;
    EXPECT_NE(text.out.find("PASS state"), std::string::npos) << text.out;
    EXPECT_EQ(text.out.find("processing"), std::string::npos) << "--only ran more than asked:\n" << text.out;
    EXPECT_NE(text.out.find("PASSED: 2 of 2 checks passed"), std::string::npos) << text.out;

    // Same seed, same values: the details agree.
    const auto one = RunHost({"validate", bundle, "--level", "2", "--only", "state", "--json", "--seed", "9"}).Json();
    const auto two = RunHost({"validate", bundle, "--level", "2", "--only", "state", "--json", "--seed", "9"}).Json();
    ASSERT_TRUE(one.is_object() && two.is_object());
    EXPECT_EQ(one["checks"][0]["details"], two["checks"][0]["details"]);
    EXPECT_EQ(one["seed"], 9);

    const SRunResult unknown = RunHost({"validate", bundle, "--only", "colour"});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_NE(unknown.err.find("no check named \"colour\"; the checks are: description load-unload"),
              std::string::npos)
        << unknown.err;
    EXPECT_EQ(RunHost({"validate", bundle, "--level", "11"}).exitCode, 1);
}

// A crash or a leak ends one check, not the run: the others go on, and the
// report names what was being done. A wrapper without its plug-in fails
// its description. MVerb cannot run in the CLASSIC mode
// (it is never resumed there) and crashes in its first process call.
TEST(ValidateCommand, CrashesLeaksAndAMissingPluginFailTheirChecks)
{
    const auto crashed = Validate(Bundle("MVerb"), {"--only", "description", "processing"});
    ASSERT_EQ(crashed.size(), 2u);
    EXPECT_TRUE(Passed(crashed.at("description"))) << Reason(crashed.at("description"));
    EXPECT_FALSE(Passed(crashed.at("processing")));
    EXPECT_NE(Reason(crashed.at("processing")).find("during processing at 44100 Hz, buffers of 1"), std::string::npos)
        << Reason(crashed.at("processing"));

    // A wrapper around nothing would play silence and pass everything else.
    ASSERT_TRUE(std::filesystem::exists(AAXHOST_MISSING_PLUGIN_BUNDLE)) << "the front-end tests build it";
    const auto empty = Validate(AAXHOST_MISSING_PLUGIN_BUNDLE, {"--only", "description"});
    ASSERT_EQ(empty.size(), 1u);
    EXPECT_FALSE(Passed(empty.at("description")));
    EXPECT_NE(Reason(empty.at("description")).find("the wrapped plug-in could not be loaded: no Frontend Missing.vst"),
              std::string::npos)
        << Reason(empty.at("description"));

    const auto leaky = Validate(Bundle("Broken4"), {"--only", "load-unload"});
    ASSERT_EQ(leaky.size(), 1u);
    EXPECT_FALSE(Passed(leaky.at("load-unload")));
    EXPECT_NE(Reason(leaky.at("load-unload")).find("live objects remain"), std::string::npos)
        << Reason(leaky.at("load-unload"));
}

}  // namespace
