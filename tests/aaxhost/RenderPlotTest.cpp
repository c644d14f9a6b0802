// render --plot: the picture holds the main output, exactly the stems that
// sound, and the spectrum, at the size the report gives.
#include <gtest/gtest.h>

#include <cairo.h>

#include "TestSupport.h"

using namespace AAXHostTest;
using nlohmann::json;

namespace {

// Pixels in [x0, x1) x [y0, y1) brighter than `level` in some colour.
int BrightPixels(cairo_surface_t* image, int x0, int x1, int y0, int y1, int level)
{
    const unsigned char* data = cairo_image_surface_get_data(image);
    const int stride = cairo_image_surface_get_stride(image);
    int count = 0;
    for (int y = y0; y < y1; ++y) {
        const auto* line = reinterpret_cast<const uint32_t*>(data + static_cast<size_t>(y) * stride);
        for (int x = x0; x < x1; ++x) {
            const uint32_t p = line[x];
            const int r = (p >> 16) & 0xFF, g = (p >> 8) & 0xFF, b = p & 0xFF;
            count += std::max({r, g, b}) > level ? 1 : 0;
        }
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

    cairo_surface_t* image = cairo_image_surface_create_from_png((dir + "/out.png").c_str());
    ASSERT_EQ(cairo_surface_status(image), CAIRO_STATUS_SUCCESS);
    const int width = cairo_image_surface_get_width(image);
    const int height = cairo_image_surface_get_height(image);
    EXPECT_EQ(width, 1200);
    EXPECT_EQ(width, plot["width"].get<int>());
    EXPECT_EQ(height, plot["height"].get<int>());
    // Title 30, main 150, 70 a stem, spectrum 240, time axis 26.
    EXPECT_EQ(height, 30 + 150 + 70 * static_cast<int>(sounding.size() - 1) + 240 + 26);

    // Every row has a waveform right of the labels, in its own band.
    int top = 30;
    for (size_t row = 0; row < sounding.size(); ++row) {
        const int bandHeight = row == 0 ? 150 : 70;
        EXPECT_GT(BrightPixels(image, 130, width, top, top + bandHeight, 120), 500) << sounding[row];
        top += bandHeight;
    }
    // The spectrum is bright where the song plays (its first half).
    EXPECT_GT(BrightPixels(image, 130, 600, top, top + 240, 200), 2000);
    cairo_surface_destroy(image);
}
