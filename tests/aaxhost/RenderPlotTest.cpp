// render --plot: the picture holds the main output, exactly the stems that
// sound, and the spectrum, at the size the report gives.
#include <gtest/gtest.h>

#include <algorithm>

#include "TestSupport.h"

using namespace AAXHostTest;
using nlohmann::json;

namespace {

// Pixels in [x0, x1) x [y0, y1) brighter than `level` in some colour.
int BrightPixels(const SImage& image, int x0, int x1, int y0, int y1, int level)
{
    int count = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x) {
            const uint32_t p = image.At(x, y);
            count += std::max({(p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF}) > static_cast<uint32_t>(level) ? 1 : 0;
        }
    return count;
}

}  // namespace

TEST(Render, PlotDrawsTheMainOutputTheStemsThatSoundAndTheSpectrum)
{
    const std::string dir = TempDir("plot");
    const SRunResult r = RunHost({"render", AAXHOST_DEFAULT_BUNDLE, "--midi", PROJECT_DEMO_MIDI, "--out",
                                  dir + "/out.wav", "--plot", dir + "/out.png", "--json"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const json report = r.Json();
    const json& channels = report["instances"][0]["channels"];
    std::vector<std::string> sounding = {"Main output"};
    for (int stem = 0; stem < 16; ++stem)
        if (channels[2 + 2 * stem]["peak"].get<double>() > 0.0 || channels[3 + 2 * stem]["peak"].get<double>() > 0.0)
            sounding.push_back("OutputStem_" + std::to_string(stem));
    ASSERT_GE(sounding.size(), 3u) << "the demo song plays on two MIDI channels, so two stems";
    const json& plot = report["plot"];
    EXPECT_EQ(plot["rows"].get<std::vector<std::string>>(), sounding);

    const SImage image = ReadPng(dir + "/out.png");
    const int width = image.width;
    const int height = image.height;
    ASSERT_EQ(width, 1200);
    EXPECT_EQ(width, plot["width"].get<int>());
    EXPECT_EQ(height, plot["height"].get<int>());
    // Title 30, main 150, 70 a stem, spectrum 240, time axis 26.
    ASSERT_EQ(height, 30 + 150 + 70 * static_cast<int>(sounding.size() - 1) + 240 + 26);

    // Every row has a waveform right of the labels, in its own band.
    int top = 30;
    for (size_t row = 0; row < sounding.size(); ++row) {
        const int bandHeight = row == 0 ? 150 : 70;
        EXPECT_GT(BrightPixels(image, 130, width, top, top + bandHeight, 120), 500) << sounding[row];
        top += bandHeight;
    }
    // The spectrum is bright where the song plays (its first half).
    EXPECT_GT(BrightPixels(image, 130, 600, top, top + 240, 200), 2000);
}
