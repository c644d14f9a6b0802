#include "TestSupport.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "WavWriter.h"

namespace AAXHostTest {

void WriteMidiFile(const std::string& path, const std::vector<SNote>& notes, std::vector<SBeatEvent> extra)
{
    for (const auto& n : notes) {
        extra.push_back({n.beat, {0x90, static_cast<unsigned char>(n.key), static_cast<unsigned char>(n.velocity)}});
        extra.push_back({n.beat + n.length, {0x80, static_cast<unsigned char>(n.key), 0}});
    }
    WriteMidiEvents(path, std::move(extra));
}

void WriteTestPhrase(const std::string& path)
{
    WriteMidiFile(path, {{0.0, 1.0, 60, 100}, {0.013, 0.9, 64, 90}, {0.5, 1.5, 67, 127}, {1.0, 0.25, 72, 70},
                         {1.77, 1.0, 48, 110}, {2.5, 0.5, 55, 64}},
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

SImage ReadPng(const std::string& path)
{
    SImage image;
    cairo_surface_t* surface = cairo_image_surface_create_from_png(path.c_str());
    if (cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS) {
        image.width = cairo_image_surface_get_width(surface);
        image.height = cairo_image_surface_get_height(surface);
        const unsigned char* data = cairo_image_surface_get_data(surface);
        const int stride = cairo_image_surface_get_stride(surface);
        for (int y = 0; y < image.height; ++y)
            for (int x = 0; x < image.width; ++x)
                image.pixels.push_back(reinterpret_cast<const uint32_t*>(data + y * stride)[x] & 0xFFFFFF);
    }
    cairo_surface_destroy(surface);
    return image;
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

double Peak(const std::vector<float>& a) { return MaxDifference(a, std::vector<float>(a.size(), 0.0f)); }

}  // namespace AAXHostTest
