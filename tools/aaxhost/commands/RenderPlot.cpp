#include "RenderPlot.h"

#include <cairo.h>
#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace AAXHost {

namespace {

constexpr double kLowestFrequency = 20.0;
constexpr float kFloorDb = -110.0f;

struct SColour {
    double r, g, b;
};

// Dark to bright through blue, magenta and orange: quiet bins stay dark.
SColour SpectrumColour(double t)
{
    static const SColour kStops[] = {{0.0, 0.0, 0.0}, {0.10, 0.10, 0.45}, {0.65, 0.10, 0.50},
                                     {1.0, 0.55, 0.10}, {1.0, 1.0, 0.80}};
    t = std::clamp(t, 0.0, 1.0) * 4.0;
    const int i = std::min(3, static_cast<int>(t));
    const double f = t - i;
    const SColour& a = kStops[i];
    const SColour& b = kStops[i + 1];
    return {a.r + (b.r - a.r) * f, a.g + (b.g - a.g) * f, a.b + (b.b - a.b) * f};
}

// A step for the time axis that gives at most about ten ticks.
double TickStep(double seconds)
{
    static const double kSteps[] = {0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 1800, 3600};
    for (double step : kSteps)
        if (seconds / step <= 10.0)
            return step;
    return 7200.0;
}

void Label(cairo_t* cr, double x, double y, const std::string& text, double size = 12.0)
{
    cairo_set_font_size(cr, size);
    cairo_move_to(cr, x, y);
    cairo_show_text(cr, text.c_str());
}

}  // namespace

struct CRenderPlot::SSpectrum {
    explicit SSpectrum(int columns)
        : ring(kFftSize, 0.0f), window(kFftSize), decibels(static_cast<size_t>(columns) * (kFftSize / 2 + 1), kFloorDb)
    {
        in = fftwf_alloc_real(kFftSize);
        out = fftwf_alloc_complex(kFftSize / 2 + 1);
        plan = fftwf_plan_dft_r2c_1d(kFftSize, in, out, FFTW_ESTIMATE);
        for (int i = 0; i < kFftSize; ++i)
            window[static_cast<size_t>(i)] = static_cast<float>(0.5 - 0.5 * std::cos(2.0 * M_PI * i / kFftSize));
    }
    ~SSpectrum()
    {
        fftwf_destroy_plan(plan);
        fftwf_free(in);
        fftwf_free(out);
    }
    SSpectrum(const SSpectrum&) = delete;
    SSpectrum& operator=(const SSpectrum&) = delete;

    std::vector<float> ring;  // the last kFftSize mono samples, oldest at ringPos
    size_t ringPos = 0;
    std::vector<float> window;
    std::vector<float> decibels;  // column-major, kFftSize / 2 + 1 bins each
    int nextColumn = 0;
    int64_t nextEnd = 0;  // the sample count at which nextColumn's window is complete
    float* in = nullptr;
    fftwf_complex* out = nullptr;
    fftwf_plan plan = nullptr;
};

CRenderPlot::CRenderPlot(int channels, int64_t totalSamples, double sampleRate)
    : mChannels(std::max(channels, 0)),
      mTotal(std::max<int64_t>(totalSamples, 0)),
      mSampleRate(sampleRate > 0.0 ? sampleRate : 48000.0),
      mMin(static_cast<size_t>(mChannels) * PlotColumns(), 0.0f),
      mMax(static_cast<size_t>(mChannels) * PlotColumns(), 0.0f),
      mSeen(static_cast<size_t>(PlotColumns()), false),
      mSpectrum(std::make_unique<SSpectrum>(PlotColumns()))
{
    // Each spectrogram column is centred on its pixel column's middle.
    mSpectrum->nextEnd = static_cast<int64_t>(0.5 * static_cast<double>(mTotal) / PlotColumns()) + kFftSize / 2;
}

CRenderPlot::~CRenderPlot() = default;

void CRenderPlot::Add(const float* const* outputs, int64_t start, int frames)
{
    const int columns = PlotColumns();
    const int64_t total = std::max<int64_t>(mTotal, 1);
    for (int i = 0; i < frames; ++i) {
        const int64_t sample = start + i;
        const int column = static_cast<int>(std::min<int64_t>(columns - 1, sample * columns / total));
        const size_t at = static_cast<size_t>(column);
        const bool first = !mSeen[at];
        mSeen[at] = true;
        for (int c = 0; c < mChannels; ++c) {
            const float v = outputs[c] != nullptr && std::isfinite(outputs[c][i]) ? outputs[c][i] : 0.0f;
            const size_t k = static_cast<size_t>(c) * columns + at;
            mMin[k] = first ? v : std::min(mMin[k], v);
            mMax[k] = first ? v : std::max(mMax[k], v);
        }
        float mono = 0.0f;
        if (mChannels >= 2 && outputs[0] != nullptr && outputs[1] != nullptr)
            mono = 0.5f * (outputs[0][i] + outputs[1][i]);
        AddToSpectrum(std::isfinite(mono) ? mono : 0.0f);
    }
}

void CRenderPlot::AddToSpectrum(float monoSample)
{
    SSpectrum& s = *mSpectrum;
    s.ring[s.ringPos] = monoSample;
    s.ringPos = (s.ringPos + 1) % s.ring.size();
    ++mMonoPosition;
    while (s.nextColumn < PlotColumns() && mMonoPosition >= s.nextEnd)
        ComputeSpectrumColumn();
}

void CRenderPlot::ComputeSpectrumColumn()
{
    SSpectrum& s = *mSpectrum;
    for (int i = 0; i < kFftSize; ++i)
        s.in[i] = s.ring[(s.ringPos + static_cast<size_t>(i)) % s.ring.size()] * s.window[static_cast<size_t>(i)];
    fftwf_execute(s.plan);
    // A full-scale sine reads 0 dB: the Hann window halves the amplitude.
    const float scale = 4.0f / kFftSize;
    const int bins = kFftSize / 2 + 1;
    float* column = s.decibels.data() + static_cast<size_t>(s.nextColumn) * bins;
    for (int b = 0; b < bins; ++b) {
        const float magnitude = std::hypot(s.out[b][0], s.out[b][1]) * scale;
        column[b] = std::max(kFloorDb, 20.0f * std::log10(magnitude + 1e-12f));
    }
    ++s.nextColumn;
    const double centre = (s.nextColumn + 0.5) * static_cast<double>(mTotal) / PlotColumns();
    s.nextEnd = static_cast<int64_t>(centre) + kFftSize / 2;
}

bool CRenderPlot::Write(const std::string& path, const std::string& title, std::vector<SPlotRow>& rows, int& height,
                        std::string& error)
{
    // The last windows reach past the end: they see silence there.
    while (mSpectrum->nextColumn < PlotColumns())
        AddToSpectrum(0.0f);

    height = kTitleHeight + kSpectrogramHeight + kAxisHeight;
    for (const SPlotRow& row : rows)
        height += row.firstChannel == 0 ? kMainHeight : kStemHeight;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, height);
    cairo_t* cr = cairo_create(surface);
    cairo_set_source_rgb(cr, 0.07, 0.08, 0.10);
    cairo_paint(cr);
    cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_source_rgb(cr, 0.9, 0.9, 0.9);
    Label(cr, 10, 20, title, 14.0);

    const int columns = PlotColumns();
    int top = kTitleHeight;
    for (SPlotRow& row : rows) {
        row.top = top;
        row.height = row.firstChannel == 0 ? kMainHeight : kStemHeight;
        const double middle = top + row.height / 2.0;
        const double half = row.height / 2.0 - 3.0;
        cairo_set_source_rgb(cr, 0.12, 0.13, 0.16);
        cairo_rectangle(cr, kLabelWidth, top + 1, columns, row.height - 2);
        cairo_fill(cr);
        cairo_set_source_rgb(cr, 0.3, 0.3, 0.35);
        cairo_set_line_width(cr, 1.0);
        cairo_move_to(cr, kLabelWidth, middle + 0.5);
        cairo_line_to(cr, kWidth, middle + 0.5);
        cairo_stroke(cr);
        static const SColour kChannelColours[] = {{0.35, 0.80, 1.0}, {1.0, 0.62, 0.25}};
        for (int c = 0; c < row.channels && c < 2; ++c) {
            const int channel = row.firstChannel + c;
            if (channel >= mChannels)
                break;
            const SColour& colour = kChannelColours[c];
            cairo_set_source_rgba(cr, colour.r, colour.g, colour.b, c == 0 ? 0.9 : 0.6);
            for (int x = 0; x < columns; ++x) {
                if (!mSeen[static_cast<size_t>(x)])
                    continue;
                const size_t k = static_cast<size_t>(channel) * columns + x;
                const double y0 = middle - std::clamp(static_cast<double>(mMax[k]), -1.0, 1.0) * half;
                const double y1 = middle - std::clamp(static_cast<double>(mMin[k]), -1.0, 1.0) * half;
                cairo_rectangle(cr, kLabelWidth + x, y0, 1.0, std::max(1.0, y1 - y0));
            }
            cairo_fill(cr);
        }
        cairo_set_source_rgb(cr, 0.9, 0.9, 0.9);
        Label(cr, 8, middle + 4, row.name);
        top += row.height;
    }

    // Spectrogram of the main output, log frequency from 20 Hz to Nyquist.
    const int spectrumTop = top;
    const double nyquist = mSampleRate / 2.0;
    const double binWidth = mSampleRate / kFftSize;
    const int bins = kFftSize / 2 + 1;
    cairo_surface_flush(surface);
    unsigned char* pixels = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < kSpectrogramHeight; ++y) {
        const double fraction = 1.0 - (y + 0.5) / kSpectrogramHeight;
        const double frequency = kLowestFrequency * std::pow(nyquist / kLowestFrequency, fraction);
        const int bin = std::clamp(static_cast<int>(std::lround(frequency / binWidth)), 0, bins - 1);
        auto* line = reinterpret_cast<uint32_t*>(pixels + static_cast<size_t>(spectrumTop + y) * stride);
        for (int x = 0; x < columns; ++x) {
            const float db = mSpectrum->decibels[static_cast<size_t>(x) * bins + bin];
            const SColour c = SpectrumColour((db - kFloorDb) / -kFloorDb);
            line[kLabelWidth + x] = (static_cast<uint32_t>(c.r * 255) << 16) | (static_cast<uint32_t>(c.g * 255) << 8) |
                                    static_cast<uint32_t>(c.b * 255);
        }
    }
    cairo_surface_mark_dirty(surface);
    cairo_set_source_rgb(cr, 0.9, 0.9, 0.9);
    Label(cr, 8, spectrumTop + 16, "Spectrum (main)");
    char text[64];
    std::snprintf(text, sizeof text, "%.0f Hz", nyquist);
    Label(cr, 8, spectrumTop + 34, text, 10.0);
    Label(cr, 8, spectrumTop + kSpectrogramHeight - 6, "20 Hz", 10.0);

    // Time axis in seconds.
    const double seconds = static_cast<double>(mTotal) / mSampleRate;
    const int axisTop = spectrumTop + kSpectrogramHeight;
    if (seconds > 0.0) {
        const double step = TickStep(seconds);
        for (double t = 0.0; t <= seconds + 1e-9; t += step) {
            const double x = kLabelWidth + t / seconds * (columns - 1);
            cairo_move_to(cr, x + 0.5, axisTop);
            cairo_line_to(cr, x + 0.5, axisTop + 5);
            std::snprintf(text, sizeof text, step < 1.0 ? "%.2f" : "%.0f", t);
            Label(cr, x + 2, axisTop + 17, text, 10.0);
        }
        cairo_set_line_width(cr, 1.0);
        cairo_stroke(cr);
    }
    Label(cr, 8, axisTop + 17, "seconds", 10.0);

    cairo_destroy(cr);
    const cairo_status_t status = cairo_surface_write_to_png(surface, path.c_str());
    cairo_surface_destroy(surface);
    if (status != CAIRO_STATUS_SUCCESS) {
        error = "cannot write the plot " + path + ": " + cairo_status_to_string(status);
        return false;
    }
    return true;
}

}  // namespace AAXHost
