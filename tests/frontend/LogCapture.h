// Turns every log category on at debug level and keeps the recorded lines.
#pragma once

#include <cstdio>
#include <unistd.h>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "logger/CLog.h"

class LogCapture : public ILogRecordListener {
public:
    LogCapture()
    {
        // One file per process: ctest runs several test processes at once.
        mConfPath = ::testing::TempDir() + "frontend_log." + std::to_string(::getpid()) + ".conf";
        {
            std::ofstream conf(mConfPath);
            for (const char* category : {"gui", "parameters", "fakehost", "process", "description", "bundle",
                                         "midi", "warning", "init"})
                conf << category << " debug\n";
        }
        Attach();
    }
    ~LogCapture() override { CSingleton<CLog>::getInstance()->setRecordListener(nullptr); }

    // The wrapper's destructor tears the log down; call again afterwards.
    void Attach()
    {
        CLog* log = CSingleton<CLog>::getInstance();
        log->reloadConf(mConfPath);
        log->setRecordListener(this);
    }

    void onLogRecorded(const std::string& line) override
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mLines.push_back(line);
    }

    // Lines of this category and level whose message contains `text`.
    std::vector<std::string> Find(const std::string& category, const std::string& level,
                                  const std::string& text) const
    {
        std::lock_guard<std::mutex> lock(mMutex);
        std::vector<std::string> found;
        for (const std::string& line : mLines) {
            if (line.find("| " + category + " ") != std::string::npos &&
                line.find("| " + level + " ") != std::string::npos && line.find(text) != std::string::npos)
                found.push_back(line);
        }
        return found;
    }

    void Clear()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mLines.clear();
    }

private:
    std::string mConfPath;
    mutable std::mutex mMutex;
    std::vector<std::string> mLines;
};
