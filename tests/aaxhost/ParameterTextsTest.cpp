// STANDARD: the AAX parameters show what the plug-in shows (its text and
// unit), are discrete where the plug-in's values are, and are not
// automatable where the plug-in says read-only; CLASSIC keeps the number.
// Our probe answers as real VST 2 plug-ins do (a switch, a five-way choice,
// its own texts, two programs); Debian's plug-ins are the real thing, each hosted as it is
// installed (a missing package skips its case).
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

#include "TestSupport.h"

using namespace AAXHostTest;

namespace {

// Parameters by AAX identifier, as `aaxhost params --json` lists them.
std::map<std::string, nlohmann::json> Params(const std::string& bundle)
{
    const SRunResult r = RunHost({"params", bundle, "--json"}, {"DISPLAY=:4242"});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    std::map<std::string, nlohmann::json> byId;
    const nlohmann::json doc = r.Json();
    if (r.exitCode == 0 && doc.contains("parameters"))
        for (const auto& p : doc["parameters"])
            byId[p["id"].get<std::string>()] = p;
    return byId;
}

}  // namespace

TEST(ParameterTexts, Vst2SwitchesAndChoicesAreDiscreteAndShowThePlugInsWords)
{
    auto p = Params(Bundle("standard/Probe"));
    ASSERT_EQ(p.size(), 6u);
    // A continuous control: the plug-in's display and label.
    EXPECT_EQ(p["0"]["text"], "0.500 u");
    EXPECT_EQ(p["0"]["units"], "u");
    // Its two programs: one more parameter, after its own, shown by name.
    EXPECT_EQ(p["4"]["name"], "Program");
    EXPECT_TRUE(p["4"]["discrete"]);
    EXPECT_EQ(p["4"]["choices"], nlohmann::json({"Probe A", "Probe B"}));
    EXPECT_EQ(p["0"]["steps"], 50);
    EXPECT_FALSE(p["0"]["discrete"]);
    // Five integer values; the present one shown by its name, the others by
    // the number until the plug-in has held them.
    EXPECT_TRUE(p["2"]["discrete"]);
    EXPECT_EQ(p["2"]["steps"], 5);
    EXPECT_EQ(p["2"]["text"], "Mode 3");
    EXPECT_EQ(p["2"]["choices"], nlohmann::json({"0.00", "0.25", "0.50", "Mode 3", "1.00"}));
    EXPECT_TRUE(p["3"]["discrete"]);
    EXPECT_EQ(p["3"]["steps"], 2);
    EXPECT_EQ(p["3"]["text"], "Off");
    EXPECT_EQ(p["3"]["default_text"], "Off");

    // Set between two values, a choice lands on the nearest, and the texts
    // the plug-in showed on the way convert both ways (validate's round
    // trips); the probe itself keeps whatever it is given.
    const SRunResult run =
        RunHost({"validate", Bundle("standard/Probe"), "--level", "5", "--seed", "3", "--only", "parameters",
                 "--no-progress", "--json"});
    ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_GT(run.Json()["checks"][0]["details"]["text_round_trips"].get<int>(), 0) << run.out;
}

TEST(ParameterTexts, ClassicKeepsTheNumberAndFiftySteps)
{
    auto p = Params(Bundle("Probe"));
    ASSERT_EQ(p.size(), 5u);
    for (const char* id : {"0", "1", "2", "3"}) {
        EXPECT_EQ(p[id]["steps"], 50) << id;
        EXPECT_FALSE(p[id]["discrete"]) << id;
        EXPECT_TRUE(p[id]["automatable"]) << id;
    }
    EXPECT_EQ(p["2"]["text"], "0.75");
    EXPECT_EQ(p["3"]["text"], "0.00");
}

TEST(ParameterTexts, DebianPlugInsShowTheirOwnTextsAndUnits)
{
    if (std::filesystem::exists(Bundle("standard/amsynth"))) {
        auto p = Params(Bundle("standard/amsynth"));
        EXPECT_EQ(p["0"]["name"], "amp_attack");
        EXPECT_EQ(p["0"]["text"], "0.0005 s");
        // Its presets, named only one at a time (effGetProgramName): one
        // list, its present program by name; its values stay as they were.
        EXPECT_EQ(p["41"]["name"], "Program");
        EXPECT_TRUE(p["41"]["discrete"]);
        EXPECT_EQ(p["41"]["steps"], 3584);
        const std::string program = p["41"]["text"];
        EXPECT_NE(program.find_first_not_of("0123456789"), std::string::npos) << program;
        // CLASSIC (program 0 there): the bare number, no unit.
        auto classic = Params(Bundle("amsynth"));
        EXPECT_EQ(classic.count("41"), 0u);
        const std::string number = classic["0"]["text"];
        EXPECT_EQ(number.size(), 4u) << number;
        EXPECT_EQ(number.find(' '), std::string::npos) << number;
    }
    if (std::filesystem::exists(Bundle("standard/LspCompressor"))) {
        auto p = Params(Bundle("standard/LspCompressor"));
        EXPECT_EQ(p["0"]["name"], "bypass");
        EXPECT_TRUE(p["0"]["discrete"]);
        EXPECT_EQ(p["0"]["steps"], 2);
        EXPECT_EQ(p["0"]["text"], "off");
        EXPECT_EQ(p["1"]["text"], "0.00 dB");
        EXPECT_EQ(p["6"]["name"], "scm");
        EXPECT_EQ(p["6"]["text"], "RMS");
    }
    if (std::filesystem::exists(Bundle("standard/ZaMaximX2"))) {
        // DPF's VST 3: the text, then the unit from the parameter's info;
        // its meters are read-only.
        auto p = Params(Bundle("standard/ZaMaximX2"));
        EXPECT_EQ(p["4"]["name"], "Release");
        EXPECT_EQ(p["4"]["text"], "25.000000 ms");
        EXPECT_TRUE(p["4"]["automatable"]);
        EXPECT_EQ(p["7"]["name"], "Gain Reduction");
        EXPECT_FALSE(p["7"]["automatable"]);
    }
}
