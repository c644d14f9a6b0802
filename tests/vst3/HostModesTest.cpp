// Strict VST 3 plug-ins (see examples/vst3/common/CStrictHostCheck.h)
// wrapped as STANDARD products: created as components, switched on before
// processing, never given more samples than promised, parameters by their
// own IDs with hidden ones left out, state and notes out. And the safety fix
// of both modes: a CLASSIC host slices buffers longer than it promised.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include <nlohmann/json.hpp>

#include "E2ESupport.h"
#include "WavWriter.h"

using namespace vst3e2e;

namespace {

std::string StandardBundle(const std::string& name)
{
    return std::string(VST3E2E_BUNDLE_DIR) + "/standard/" + name + ".aaxplugin";
}

// The samples of a rendered file (its header carries a time stamp).
std::vector<std::vector<float>> Samples(const std::string& wav)
{
    std::vector<std::vector<float>> channels;
    int rate = 0;
    std::string error;
    EXPECT_TRUE(AAXHost::ReadWav(wav, channels, rate, error)) << error;
    return channels;
}

const std::vector<std::pair<uint32_t, std::vector<unsigned char>>> kTwoNotes = {
    {0, {0x90, 60, 100}}, {240, {0x90, 67, 90}}, {720, {0x80, 60, 0}}, {900, {0x80, 67, 0}}};

SRunResult RenderStrictSynth(const std::string& dir, int block, std::vector<std::string> extra = {})
{
    WriteSmf(dir + "/notes.mid", kTwoNotes);
    std::vector<std::string> args = {"render", StandardBundle("MrvStrictSynth"), "--midi", dir + "/notes.mid", "--out",
                                     dir + "/out.wav", "--rate", "48000", "--block", std::to_string(block),
                                     "--seconds", "1", "--no-progress", "--json"};
    args.insert(args.end(), extra.begin(), extra.end());
    return RunHost(args);
}

}  // namespace

TEST(Vst3StandardBundle, StrictSynthIsSwitchedOnAndNeverGivenMoreThanPromisedAtAnyBufferSize)
{
    for (int block : {64, 1000, 4096, 10000}) {
        const std::string dir = TempDir("strict-" + std::to_string(block));
        const SRunResult run = RenderStrictSynth(dir, block);
        ASSERT_EQ(run.exitCode, 0) << block << ": " << run.err;
        const size_t setup = FindLine(run.trace, "proc.setupProcessing mode=0 size=0 max=4096 rate=48000.0");
        const size_t active = FindLine(run.trace, "proc.setActive 1");
        const size_t firstProcess = FindLine(run.trace, "proc.process");
        ASSERT_NE(setup, std::string::npos);
        ASSERT_NE(active, std::string::npos);
        EXPECT_LT(setup, active);
        EXPECT_LT(active, firstProcess);
        long long total = 0;
        for (const SProcessCall& call : ProcessCalls(run.trace)) {
            EXPECT_LE(call.frames, 4096);
            total += call.frames;
        }
        EXPECT_EQ(total, 48000);
        EXPECT_GT(run.Json()["instances"][0]["channels"][0]["peak"].get<double>(), 0.01) << block;
    }
}

TEST(Vst3StandardBundle, SlicedBuffersKeepNotesAndTransportAtTheirSamples)
{
    const SRunResult run = RenderStrictSynth(TempDir("sliced"), 10000);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    // 48 kHz, 120 BPM, 480 ticks a beat: one tick is 50 samples.
    std::vector<long long> noteSamples;
    for (const SProcessCall& call : ProcessCalls(run.trace)) {
        EXPECT_NEAR(call.music, call.samples / 24000.0, 1e-6) << "at sample " << call.samples;
        for (const SNoteEvent& note : call.notes)
            noteSamples.push_back(call.samples + note.offset);
    }
    EXPECT_EQ(noteSamples, (std::vector<long long>{0, 12000, 36000, 45000}));
}

TEST(Vst3StandardBundle, ParametersArePublishedByTheirOwnIdsWithoutHiddenOnesAndReachTheProcessor)
{
    const SRunResult params = RunHost({"params", StandardBundle("MrvStrictSynth"), "--json"});
    ASSERT_EQ(params.exitCode, 0) << params.err;
    const nlohmann::json list = params.Json()["parameters"];
    std::vector<std::string> ids;
    for (const auto& p : list)
        ids.push_back(p["id"]);
    // The program first; the plug-in's bypass (7006) is the master bypass.
    EXPECT_EQ(ids, (std::vector<std::string>{"MasterBypassID", "7003", "7000", "7001", "7002", "7005", "7007"}));
    EXPECT_NEAR(list[2]["default"].get<double>(), 0.8, 1e-6);

    const SRunResult run = RenderStrictSynth(TempDir("set"), 512, {"--set", "7000=0.3"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(FindLine(run.trace, "proc.param id=7000 value=0.300000 offset=0"), std::string::npos);
}

// The controller's own texts with the parameter's unit, a list parameter as
// a discrete one showing its names, a read-only one not automatable.
TEST(Vst3StandardBundle, ParametersShowTheControllersTextsStepsAndReadOnlyFlag)
{
    const SRunResult params = RunHost({"params", StandardBundle("MrvStrictSynth"), "--json"});
    ASSERT_EQ(params.exitCode, 0) << params.err;
    const nlohmann::json list = params.Json()["parameters"];
    ASSERT_EQ(list.size(), 7u);
    const nlohmann::json& volume = list[2];
    EXPECT_EQ(volume["text"], "80.0000 %");
    EXPECT_EQ(volume["units"], "%");
    EXPECT_EQ(volume["group"], "Tone");
    EXPECT_FALSE(volume["discrete"]);
    // The program list's parameter (the plug-in titles it "Patch").
    const nlohmann::json& program = list[1];
    EXPECT_EQ(program["name"], "Program");
    EXPECT_EQ(program["group"], "Programs");
    EXPECT_TRUE(program["discrete"]);
    EXPECT_EQ(program["steps"], 8);
    EXPECT_EQ(program["choices"],
              nlohmann::json({"Prog 0", "Prog 1", "Prog 2", "Prog 3", "Prog 4", "Prog 5", "Prog 6", "Prog 7"}));
    const nlohmann::json& peak = list[5];
    EXPECT_EQ(peak["name"], "Peak");
    EXPECT_FALSE(peak["automatable"]);
    EXPECT_TRUE(list[3]["automatable"]);
    // A stepped one in a nested unit.
    const nlohmann::json& octave = list[6];
    EXPECT_EQ(octave["name"], "Octave");
    EXPECT_TRUE(octave["discrete"]);
    EXPECT_EQ(octave["steps"], 3);
    EXPECT_EQ(octave["units"], "oct");
    EXPECT_EQ(octave["group"], "Tone / Pitch");
    EXPECT_EQ(list[4]["group"], "Tone / Pitch");
    EXPECT_EQ(params.Json()["wrapper"]["bypass"], "plugin");

    // A host value between two programs reaches the processor as one of
    // them; the read-only one is never sent.
    const SRunResult run = RenderStrictSynth(TempDir("steps"), 512, {"--set", "7003=0.3", "--set", "7005=0.5"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(FindLine(run.trace, "proc.param id=7003 value=0.285714 offset=0"), std::string::npos);
    EXPECT_EQ(FindLine(run.trace, "proc.param id=7005 value=0.500000"), std::string::npos);
}

// The master bypass reaches the plug-in as its own bypass parameter; the
// plug-in (an instrument) then plays silence, not the host's input copied.
TEST(Vst3StandardBundle, MasterBypassDrivesThePlugInsOwnBypass)
{
    const SRunResult run = RenderStrictSynth(TempDir("bypass"), 512, {"--bypass"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(FindLine(run.trace, "proc.param id=7006 value=1.000000 offset=0"), std::string::npos);
    EXPECT_GT(ProcessCalls(run.trace).size(), 90u);
    EXPECT_EQ(run.Json()["instances"][0]["channels"][0]["peak"].get<double>(), 0.0);
}

TEST(Vst3StandardBundle, StateRestoredIntoAFreshInstanceRendersTheSameBytes)
{
    const std::string dir = TempDir("state");
    const SRunResult saved = RenderStrictSynth(dir, 512, {"--set", "7000=0.3", "--save-state", dir + "/s.state"});
    ASSERT_EQ(saved.exitCode, 0) << saved.err;
    const auto first = Samples(dir + "/out.wav");
    const SRunResult restored = RenderStrictSynth(dir, 512, {"--load-state", dir + "/s.state"});
    ASSERT_EQ(restored.exitCode, 0) << restored.err;
    EXPECT_FALSE(first.empty());
    EXPECT_EQ(Samples(dir + "/out.wav"), first);
}

TEST(Vst3StandardBundle, NotesThePlugInSendsReachTheAaxMidiOutput)
{
    const SRunResult run = RenderStrictSynth(TempDir("midiout"), 1000);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::vector<std::pair<long long, std::vector<int>>> out;
    const nlohmann::json report = run.Json();
    for (const auto& m : report["instances"][0]["midi_out"])
        out.push_back({m["sample"].get<long long>(), m["bytes"].get<std::vector<int>>()});
    // Echoed an octave up at the sample each note came in.
    const std::vector<std::pair<long long, std::vector<int>>> expected = {
        {0, {0x90, 72, 100}}, {12000, {0x90, 79, 90}}, {36000, {0x80, 72, 0}}, {45000, {0x80, 79, 0}}};
    EXPECT_EQ(out, expected);
}

TEST(Vst3StandardBundle, StrictSingleComponentPlugInRendersPublishesAndRestores)
{
    const std::string dir = TempDir("single");
    const std::string bundle = StandardBundle("MrvStrictSingle");
    const SRunResult params = RunHost({"params", bundle, "--json"});
    ASSERT_EQ(params.exitCode, 0) << params.err;
    ASSERT_EQ(params.Json()["parameters"].size(), 2u) << params.out;
    const std::string gain = params.Json()["parameters"][1]["id"];
    const std::vector<std::string> render = {"render", bundle, "--test-input", "--seconds", "0.5", "--block", "5000",
                                             "--out", dir + "/out.wav", "--no-progress", "--json"};
    auto withArgs = [&](std::vector<std::string> extra) {
        std::vector<std::string> args = render;
        args.insert(args.end(), extra.begin(), extra.end());
        return RunHost(args);
    };
    const SRunResult saved = withArgs({"--set", gain + "=0.25", "--save-state", dir + "/s.state"});
    ASSERT_EQ(saved.exitCode, 0) << saved.err;
    EXPECT_GT(saved.Json()["instances"][0]["channels"][0]["peak"].get<double>(), 0.01);
    const auto first = Samples(dir + "/out.wav");
    const SRunResult restored = withArgs({"--load-state", dir + "/s.state"});
    ASSERT_EQ(restored.exitCode, 0) << restored.err;
    EXPECT_EQ(Samples(dir + "/out.wav"), first);
}

TEST(Vst3ClassicBundle, StrictSynthCannotBeCreatedAndAaxhostSaysSo)
{
    const SRunResult run = RunHost({"render", std::string(VST3E2E_BUNDLE_DIR) + "/MrvStrictSynth.aaxplugin", "--out",
                                    TempDir("classic") + "/out.wav", "--seconds", "0.1"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("aaxhost: error: the wrapped plug-in could not be loaded: the factory created no "
                           "IAudioProcessor"),
              std::string::npos)
        << run.err;
}

TEST(Vst3ClassicBundle, BuffersLongerThanPromisedArriveInSlices)
{
    // The test synth stops the process if it gets more than the 256 samples
    // CLASSIC promises; under ASan this also proves no buffer is overrun.
    const std::string dir = TempDir("classic-slices");
    WriteSmf(dir + "/notes.mid", kTwoNotes);
    const SRunResult run = RunHost({"render", SynthBundle(), "--midi", dir + "/notes.mid", "--out", dir + "/out.wav",
                                    "--rate", "48000", "--block", "1000", "--seconds", "1", "--no-progress"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    long long total = 0;
    std::vector<long long> noteSamples;
    for (const SProcessCall& call : ProcessCalls(run.trace)) {
        EXPECT_LE(call.frames, 256);
        total += call.frames;
        for (const SNoteEvent& note : call.notes)
            noteSamples.push_back(call.samples + note.offset);
    }
    EXPECT_EQ(total, 48000);
    EXPECT_EQ(noteSamples, (std::vector<long long>{0, 12000, 36000, 45000}));
}

TEST(Vst3StandardBundle, HostAutomationBackToTheDefaultReachesProcessorAndControllerOnceEach)
{
    const SRunResult run = RenderStrictSynth(TempDir("automation"), 512,
                                             {"--set", "7000=0.3", "--set", "7000=0.8@0.2", "--set", "7000=0.3@0.4"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const std::vector<std::string> values = {"0.300000", "0.800000", "0.300000"};  // 0.8 is the default
    for (const std::string prefix : {"proc.param id=7000 value=", "ctrl.setParamNormalized id=7000 value="}) {
        std::vector<std::string> received;
        for (const std::string& line : run.trace)
            if (line.rfind(prefix, 0) == 0)
                received.push_back(line.substr(prefix.size(), 8));
        EXPECT_EQ(received, values) << prefix;
    }
}

TEST(Vst3StandardBundle, AnEditorEditReachesTheProcessorAndTheHostOnceAndIsNotEchoedBack)
{
    const std::string dir = TempDir("edit-once");
    WriteSmf(dir + "/notes.mid", kTwoNotes);
    const SRunResult run = RunHost({"render", StandardBundle("MrvStrictSynth"), "--out", dir + "/out.wav", "--rate",
                                    "48000", "--block", "256", "--seconds", "0.2", "--editor-at", "0.05", "--json",
                                    "--no-progress"},
                                   {"MRV_VST3_EDIT_ON_VIEW=7000=0.6"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const size_t edit = FindLine(run.trace, "ctrl.edit id=7000 value=0.600000");
    ASSERT_NE(edit, std::string::npos);
    EXPECT_EQ(CountLines(run.trace, "proc.param id=7000 value=0.600000"), 1u);
    // The controller made the value itself: nothing brings it back to it.
    EXPECT_EQ(FindLine(run.trace, "ctrl.setParamNormalized id=7000", edit), std::string::npos);
    const nlohmann::json report = run.Json();
    int sets = 0;
    for (const auto& a : report["instances"][0]["automation"])
        if (a["kind"] == "set" && a["parameter"] == "7000") {
            ++sets;
            EXPECT_EQ(a["origin"], "plugin");
        }
    EXPECT_EQ(sets, 1);
}

// A processor that is an object of its own (DPF's split) answers no query
// for the component: the host keeps the component it created.
TEST(Vst3StandardBundle, SplitProcessorThatAnswersNoQueryBackLoadsRendersAndRestores)
{
    const std::string dir = TempDir("split");
    const std::string bundle = StandardBundle("MrvStrictSplit");
    const std::vector<std::string> render = {"render", bundle, "--test-input", "--seconds", "0.5", "--set", "0=0.25",
                                             "--out", dir + "/out.wav", "--no-progress", "--json"};
    std::vector<std::string> save = render;
    save.insert(save.end(), {"--save-state", dir + "/s.state"});
    const SRunResult saved = RunHost(save);
    ASSERT_EQ(saved.exitCode, 0) << saved.err;
    EXPECT_EQ(CountLines(saved.trace, "split.processor refused"), 0u);
    const double peak = saved.Json()["instances"][0]["channels"][0]["peak"].get<double>();
    EXPECT_NEAR(peak, 0.25 * 0.25, 0.005);
    const SRunResult restored = RunHost({"render", bundle, "--test-input", "--seconds", "0.5", "--load-state",
                                         dir + "/s.state", "--out", dir + "/out2.wav", "--no-progress", "--json"});
    ASSERT_EQ(restored.exitCode, 0) << restored.err;
    EXPECT_EQ(Samples(dir + "/out2.wav"), Samples(dir + "/out.wav"));
}

// Debian's DPF-built VST 3 bundles, each in turn behind one STANDARD bundle:
// they load, play the test signal and restore their state byte for byte.
TEST(Vst3StandardBundle, EveryZamPluginsVst3LoadsPlaysAndRestoresItsState)
{
    namespace fs = std::filesystem;
    std::vector<fs::path> zams;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator("/usr/lib/vst3", error)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("Za", 0) == 0 && entry.path().extension() == ".vst3")
            zams.push_back(entry.path());
    }
    ASSERT_EQ(zams.size(), 17u) << "zam-plugins (scripts/setup installs it) gives 17 VST 3 bundles";
    std::sort(zams.begin(), zams.end());
    const std::string bundle = StandardBundle("DebianVst3");
    for (const fs::path& zam : zams) {
        SCOPED_TRACE(zam.string());
        const std::string stem = zam.stem().string();
        const std::string dir = TempDir(stem);
        const fs::path arch = fs::path(dir) / "DebianVst3.vst3/Contents/x86_64-linux";
        fs::create_directories(arch);
        fs::create_symlink(zam / "Contents/x86_64-linux" / (stem + ".so"), arch / "DebianVst3.so");
        const std::vector<std::string> env = {"VST3_PATH=" + dir};
        const SRunResult run = RunHost({"render", bundle, "--test-input", "--seconds", "1", "--out", dir + "/out.wav",
                                        "--no-progress", "--json"}, env);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        double peak = 0;
        const nlohmann::json report = run.Json();
        for (const auto& channel : report["instances"][0]["channels"])
            peak = std::max(peak, channel["peak"].get<double>());
        EXPECT_GT(peak, 0.001);
        // ZamDynamicEQ's processor turns its Peak switch on by itself once
        // it runs with no filter chosen, and tells neither its controller nor
        // the host: its state then holds a value its controller never showed.
        if (stem == "ZamDynamicEQ")
            continue;
        const SRunResult state = RunHost({"validate", bundle, "--level", "1", "--seed", "7", "--only", "state",
                                          "--no-progress"}, env);
        EXPECT_EQ(state.exitCode, 0) << state.out << state.err;
    }
}
