// Writes 32-bit float WAV files one buffer at a time.
#pragma once

#include <sndfile.h>

#include <string>
#include <vector>

namespace AAXHost {

class CWavWriter {
public:
    CWavWriter() = default;
    ~CWavWriter() { Close(); }
    CWavWriter(const CWavWriter&) = delete;
    CWavWriter& operator=(const CWavWriter&) = delete;

    bool Open(const std::string& path, int channels, int sampleRate, std::string& error);
    // channels[c] points at frames samples of channel c.
    bool Write(const float* const* channels, int frames);
    void Close();

private:
    SNDFILE* mFile = nullptr;
    int mChannels = 0;
    std::vector<float> mInterleaved;
};

// Reads a whole WAV file as per-channel sample arrays.
bool ReadWav(const std::string& path, std::vector<std::vector<float>>& channels, int& sampleRate, std::string& error);

}  // namespace AAXHost
