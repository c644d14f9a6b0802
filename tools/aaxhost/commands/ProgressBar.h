// A one-line progress bar for long renders, shown only on a terminal.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace AAXHost {

class CProgressBar {
public:
    explicit CProgressBar(bool enabled) : mEnabled(enabled) {}
    void Show(int64_t done, int64_t total)
    {
        if (!mEnabled || total <= 0)
            return;
        const int percent = static_cast<int>(done * 100 / total);
        if (percent == mShown)
            return;
        mShown = percent;
        const int width = 40, filled = percent * width / 100;
        std::printf("\r[%s%s] %3d%%", std::string(static_cast<size_t>(filled), '#').c_str(),
                    std::string(static_cast<size_t>(width - filled), '.').c_str(), percent);
        std::fflush(stdout);
    }
    void Finish()
    {
        if (mEnabled && mShown >= 0)
            std::printf("\n");
    }

private:
    bool mEnabled;
    int mShown = -1;
};

}  // namespace AAXHost
