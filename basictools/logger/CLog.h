// The plug-in's diagnostics log: category/level filtering, line formatting and
// queueing into per-thread rings (CLogBuffers), configured by log.conf.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "CSingleton.h"
#include "logger/CLogBuffers.h"
#include "logger/ELogLevel.h"

class CLogScratch;

// Receives every recorded line, uncut, after it was queued.
class ILogRecordListener {
public:
    virtual ~ILogRecordListener() = default;
    virtual void onLogRecorded(const std::string& line) = 0;
};

class CLog {
public:
    static constexpr int32_t kMaxLineLength = 9999;
    using CategoryTable = std::map<std::string, ELogLevel, std::less<>>;

    CLog();
    virtual ~CLog();
    CLog(const CLog&) = delete;
    CLog& operator=(const CLog&) = delete;

    // Formats every part (no separator), then filters and records the line.
    template <typename... Parts>
    void buildLog(const char* category, ELogLevel level, const Parts&... parts);

    // On a false condition: records the failure at "error", flushes the writer,
    // and throws std::logic_error(exprText) when the category is configured
    // below "assert".
    template <typename... Parts>
    void cond_assert(bool cond, const char* exprText, unsigned line, const char* file,
                     const char* category, const Parts&... parts);

    // Neither allocates: safe to call before formatting on the audio thread.
    // The level test is inline: a line below every category's level (the
    // usual debug line) then costs a load and a compare.
    bool isRecorded(const char* category, ELogLevel level) const
    {
        return static_cast<int>(level) >= mLowestLevel.load(std::memory_order_relaxed) &&
               isRecordedInTable(category, level);
    }
    bool getCategoryLevel(const char* category, ELogLevel& out) const;

    void checkAndRecordLog(const char* category, ELogLevel level, const std::ostringstream& stream);
    std::string getLogMsg(const char* category, ELogLevel level, const std::ostringstream& stream) const;

    void reloadConf(const std::string& path);

    void setRecordListener(ILogRecordListener* listener) { mListener.store(listener); }
    const std::string& getOutputFileName() const { return mOutputFileName; }
    CLogBuffers& getBuffers() { return mBuffers; }
    std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds> getStartTime() const
    {
        return mStartTime;
    }

    // The configuration parser on text already read: the category table it
    // yields and the output file it names (the fuzzer's way in; reloadConf
    // reads the file and calls it).
    void parseConfText(const std::string& text, CategoryTable& table);

    // Output-file naming, exposed so that it can be checked for a given time.
    static std::string makeTimeStamp(std::time_t when);
    static std::string makeFinalOutputPath(const std::string& configuredName, const std::string& stamp,
                                           const char* home);

private:
    void parseConfFile(const std::string& path, CategoryTable& table);
    void openOutput();
    void recordMessage(const char* category, ELogLevel level, CLogScratch& scratch);
    void composeLine(std::ostream& os, const char* category, ELogLevel level, const char* message,
                     size_t length) const;
    void queueLine(const char* line, size_t length);
    void assertFailed(const char* category, const char* exprText);
    void publishTable(std::unique_ptr<CategoryTable> table);
    bool isRecordedInTable(const char* category, ELogLevel level) const;

    CLogBuffers mBuffers;
    std::atomic<ILogRecordListener*> mListener{nullptr};
    // Readers follow the atomic pointer without a lock; every table ever
    // published stays alive until the log is destroyed.
    std::atomic<const CategoryTable*> mCategories{nullptr};
    // The lowest level any category records (kLogLevelCount: none), so that
    // the common "too low for every category" test skips the table lookup.
    // Never above the level of the table a reader sees.
    std::atomic<int> mLowestLevel{kLogLevelCount};
    std::vector<std::unique_ptr<CategoryTable>> mTables;
    std::mutex mReloadMutex;
    std::string mOutputFileName;
    std::ofstream mOutputFile;
    std::streambuf* mConsoleBuffer = nullptr;
    std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds> mStartTime;
};

// Start of "<file basename>:<line>" prefixes.
constexpr const char* MvLogBaseName(const char* path)
{
    const char* base = path;
    for (const char* p = path; *p != '\0'; ++p)
        if (*p == '/' || *p == '\\')
            base = p + 1;
    return base;
}

// Tests the category and level first, so a filtered-out line costs nothing.
#define MV_LOG(category, level, ...)                                              \
    do {                                                                          \
        CLog* mvLog_ = CSingleton<CLog>::getInstance();                           \
        if (mvLog_->isRecorded((category), (level)))                              \
            mvLog_->buildLog((category), (level), ##__VA_ARGS__);                 \
    } while (0)

#define MV_LOG_AT(category, level, function, ...)                                 \
    do {                                                                          \
        CLog* mvLog_ = CSingleton<CLog>::getInstance();                           \
        if (mvLog_->isRecorded((category), (level)))                              \
            mvLog_->buildLog((category), (level), MvLogBaseName(__FILE__), ":",   \
                             static_cast<unsigned>(__LINE__), " [ ", (function),  \
                             " ] ", ##__VA_ARGS__);                               \
    } while (0)

#define MV_COND_ASSERT(category, condition, exprText, ...)                        \
    CSingleton<CLog>::getInstance()->cond_assert(static_cast<bool>(condition),    \
                                                 (exprText), __LINE__, __FILE__,  \
                                                 (category), ##__VA_ARGS__)

#include "logger/CLog.hpp"
