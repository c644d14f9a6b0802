#include "WavWriter.h"

namespace AAXHost {

bool CWavWriter::Open(const std::string& path, int channels, int sampleRate, std::string& error)
{
    Close();
    SF_INFO info{};
    info.channels = channels;
    info.samplerate = sampleRate;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    mFile = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!mFile) {
        error = "cannot write " + path + ": " + sf_strerror(nullptr);
        return false;
    }
    mChannels = channels;
    return true;
}

bool CWavWriter::Write(const float* const* channels, int frames)
{
    if (!mFile || frames <= 0)
        return mFile != nullptr;
    mInterleaved.resize(static_cast<size_t>(frames) * static_cast<size_t>(mChannels));
    for (int i = 0; i < frames; ++i)
        for (int c = 0; c < mChannels; ++c)
            mInterleaved[static_cast<size_t>(i * mChannels + c)] = channels[c][i];
    return sf_writef_float(mFile, mInterleaved.data(), frames) == frames;
}

void CWavWriter::Close()
{
    if (mFile)
        sf_close(mFile);
    mFile = nullptr;
}

bool ReadWav(const std::string& path, std::vector<std::vector<float>>& channels, int& sampleRate, std::string& error)
{
    SF_INFO info{};
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &info);
    if (!f) {
        error = "cannot read " + path + ": " + sf_strerror(nullptr);
        return false;
    }
    std::vector<float> all(static_cast<size_t>(info.frames) * static_cast<size_t>(info.channels));
    const sf_count_t got = sf_readf_float(f, all.data(), info.frames);
    sf_close(f);
    channels.assign(static_cast<size_t>(info.channels), std::vector<float>(static_cast<size_t>(got)));
    for (sf_count_t i = 0; i < got; ++i)
        for (int c = 0; c < info.channels; ++c)
            channels[static_cast<size_t>(c)][static_cast<size_t>(i)] = all[static_cast<size_t>(i * info.channels + c)];
    sampleRate = info.samplerate;
    return true;
}

}  // namespace AAXHost
