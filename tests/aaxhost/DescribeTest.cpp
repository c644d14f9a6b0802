// describe against the real default bundle, and every way loading can fail.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "TestSupport.h"

using namespace AAXHostTest;
using nlohmann::json;
namespace fs = std::filesystem;

TEST(Describe, DefaultBundleHasTheWholeDescriptionInRegistrationOrderAsJsonAndText)
{
    const SRunResult r = RunHost({"describe", AAXHOST_DEFAULT_BUNDLE, "--json"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const json d = r.Json();
    ASSERT_FALSE(d.is_discarded()) << "stdout is not JSON: " << r.out;
    EXPECT_EQ(d["format"], "aaxhost-describe-1");
    EXPECT_EQ(d["sdk_version"], "0x000002000061125C");
    EXPECT_EQ(d["manufacturer"], "Morvane");
    EXPECT_EQ(d["package_names"], json::array({"Tavrion V2"}));
    EXPECT_EQ(d["package_version"], 1);
    EXPECT_EQ(d["can_unload_now"], 0);
    ASSERT_EQ(d["effects"].size(), 1u);

    const json& e = d["effects"][0];
    EXPECT_EQ(e["effect_id"], "com.morvane.aax.tavrionv2");
    EXPECT_EQ(e["names"], json::array({"Tavrion V2"}));
    EXPECT_EQ(e["categories"], json::array({0x800}));
    EXPECT_EQ(e["procedures"], json::parse(R"([{"id":0,"name":"Create_EffectParameters"},
                                               {"id":1,"name":"Create_EffectGUI"}])"));
    ASSERT_EQ(e["components"].size(), 1u);
    const json& c = e["components"][0];

    const json expectedFields = json::parse(R"([
        {"index":5,"call":"AddAudioIn"},
        {"index":6,"call":"AddAudioOut"},
        {"index":7,"call":"AddAudioBufferLength"},
        {"index":2,"call":"AddMIDINode","node_type":0,"channel_mask":65535,"name":"Tavrion V2"},
        {"index":3,"call":"AddMIDINode","node_type":1,"channel_mask":65535,"name":"Tavrion V2"},
        {"index":4,"call":"AddMIDINode","node_type":3,"channel_mask":65535,"name":"Tavrion V2"},
        {"index":1,"call":"AddSampleRate"},
        {"index":0,"call":"AddDataInPort","packet_size":4,"port_type":1},
        {"index":8,"call":"AddPrivateData","data_size":8,"options":0}])");
    EXPECT_EQ(c["fields"], expectedFields);

    ASSERT_EQ(c["stems"].size(), 16u);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(c["stems"][i]["name"], "OutputStem_" + std::to_string(i));
        EXPECT_EQ(c["stems"][i]["format"], 0x10002);
        EXPECT_EQ(c["stems"][i]["channels"], 2);
        EXPECT_EQ(c["stems"][i]["index"], 0);
    }
    // Stems come after the private data and before the property map.
    std::vector<std::string> calls = c["calls"];
    ASSERT_EQ(calls.size(), 9u + 16u + 2u);
    EXPECT_EQ(calls[8], "AddPrivateData");
    for (size_t i = 9; i < 25; ++i)
        EXPECT_EQ(calls[i], "AddAuxOutputStem");
    EXPECT_EQ(calls[25], "NewPropertyMap");
    EXPECT_EQ(calls[26], "AddProcessProc_Native");

    ASSERT_EQ(c["process_procs"].size(), 1u);
    const json& proc = c["process_procs"][0];
    EXPECT_FALSE(proc["instance_init"].get<bool>());
    EXPECT_FALSE(proc["background"].get<bool>());
    std::vector<std::pair<int, int64_t>> props;
    for (const auto& p : proc["properties"])
        props.emplace_back(p["id"].get<int>(), p["value"].get<int64_t>());
    const std::vector<std::pair<int, int64_t>> expectedProps = {
        {11, 0x4D72766E}, {12, 0x54765632}, {60, 1}, {151, 0}, {51, 0x10002}, {52, 0x10002}, {13, 0x54765632}, {58, 0x7FFFFFFF}};
    EXPECT_EQ(props, expectedProps);
    EXPECT_EQ(proc["properties"][0]["fourcc"], "Mrvn");

    const SRunResult text = RunHost({"describe", AAXHOST_DEFAULT_BUNDLE});
    ASSERT_EQ(text.exitCode, 0) << text.err;
    for (const char* part : {"Effect com.morvane.aax.tavrionv2", "[8] AddPrivateData data_size=8",
                             "[2] LocalInput \"Tavrion V2\" mask=0xFFFF", "\"OutputStem_15\" format=0x00010002",
                             "Property PlugInID_Native (13) = 1417041458 'TvV2'", "1 Create_EffectGUI",
                             "ACFCanUnloadNow: 0"})
        EXPECT_NE(text.out.find(part), std::string::npos) << part;
}

TEST(Describe, LoadingAndPluginFailuresExitWithAClearMessage)
{
    const std::string dir = TempDir("describe-failures");
    fs::create_directories(dir + "/Empty.aaxplugin/Contents/x86_64-linux");
    const std::string garbage = dir + "/Garbage.aaxplugin/Contents/x86_64-linux";
    fs::create_directories(garbage);
    std::ofstream(garbage + "/Garbage.so") << "not an ELF file";
    // A real library that is not an AAX plug-in.
    const std::string vst = dir + "/NotAAX.aaxplugin/Contents/x86_64-linux";
    fs::create_directories(vst);
    fs::copy_file("/usr/lib/vst/Kars-vst.so", vst + "/NotAAX.so", fs::copy_options::overwrite_existing);
    const auto broken = [](int mode) { return Bundle("Broken" + std::to_string(mode)); };
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"describe", dir + "/Nowhere.aaxplugin"}, "bundle not found"},
        {{"describe", dir + "/Empty.aaxplugin"}, "no plug-in library in bundle"},
        {{"describe", dir + "/Garbage.aaxplugin"}, "cannot load"},
        {{"describe", dir + "/NotAAX.aaxplugin"}, "missing entry point(s) ACFRegisterPlugin"},
        {{"describe", broken(1)}, "ACFRegisterPlugin failed with -20004"},
        {{"describe", broken(2), "--json"}, "registered no effect"},
        {{"describe", broken(3)}, "ACFStartup failed"},
        {{"describe", broken(4), "--json"}, "ACFCanUnloadNow answered 2"},
        {{"render", broken(2), "--out", dir + "/x.wav"}, "registered no effect"},
    };
    for (const auto& c : cases) {
        const SRunResult r = RunHost(c.first);
        EXPECT_NE(r.exitCode, 0) << c.second;
        EXPECT_LT(r.exitCode, 128) << "crashed: " << r.err;
        EXPECT_NE(r.err.find("aaxhost: error: "), std::string::npos) << r.err;
        EXPECT_NE(r.err.find(c.second), std::string::npos) << r.err;
    }
}
