// A picture of a render (render --plot): the waveform of the main output
// and of every stem that sounds, and a spectrogram of the main output, so
// that people can look before they listen. Gathered while rendering in
// fixed memory (a min/max envelope per pixel column, one FFT per
// spectrogram column), drawn at the end with cairo.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace AAXHost {

struct SPlotRow {
    std::string name;
    int firstChannel = 0;
    int channels = 0;
    int top = 0;     // pixel rows of the drawn band, filled by Write
    int height = 0;
};

class CRenderPlot {
public:
    static constexpr int kWidth = 1200;
    static constexpr int kLabelWidth = 130;
    static constexpr int kTitleHeight = 30;
    static constexpr int kMainHeight = 150;
    static constexpr int kStemHeight = 70;
    static constexpr int kSpectrogramHeight = 240;
    static constexpr int kAxisHeight = 26;
    static constexpr int kFftSize = 2048;

    CRenderPlot(int channels, int64_t totalSamples, double sampleRate);
    ~CRenderPlot();
    CRenderPlot(const CRenderPlot&) = delete;
    CRenderPlot& operator=(const CRenderPlot&) = delete;

    // One buffer of every output channel, starting at sample `start`.
    void Add(const float* const* outputs, int64_t start, int frames);

    // Draws the rows given (the main output first, then the stems that
    // sound) above the spectrogram; their pixel bands are filled in.
    bool Write(const std::string& path, const std::string& title, std::vector<SPlotRow>& rows, int& height,
               std::string& error);

private:
    struct SSpectrum;
    void AddToSpectrum(float monoSample);
    void ComputeSpectrumColumn();
    int PlotColumns() const { return kWidth - kLabelWidth; }

    int mChannels;
    int64_t mTotal;
    double mSampleRate;
    std::vector<float> mMin;   // channel-major, PlotColumns() each
    std::vector<float> mMax;
    std::vector<bool> mSeen;   // per column: any sample landed there
    int64_t mMonoPosition = 0; // samples pushed into the spectrum
    std::unique_ptr<SSpectrum> mSpectrum;
};

}  // namespace AAXHost
