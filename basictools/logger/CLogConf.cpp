// log.conf loading: category table, output file naming and redirection of
// the standard output stream.
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <limits>
#include <sstream>
#include <vector>

#include "logger/CLog.h"
#include "RegularFile.h"
#include "stlutils.h"

namespace {

constexpr std::size_t kConfLineBuffer = 256;
// A configuration is a few lines; a megabyte is far past any real one.
constexpr std::size_t kMaxConfBytes = 1024 * 1024;

// Only a regular file can be a configuration: a folder, a FIFO or a device
// (which would block or never end) cannot.
bool CanReadConf(const std::string& path)
{
    return Morvane::FileKind(path) == Morvane::EFileKind::kRegular;
}

bool ParseLevelWord(const std::string& word, ELogLevel& level)
{
    for (int i = 0; i < kLogLevelCount; ++i) {
        if (word == DicoLog[i]) {
            level = static_cast<ELogLevel>(i);
            return true;
        }
    }
    return false;
}

}  // namespace

std::string CLog::makeTimeStamp(std::time_t when)
{
    static const char* const kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm cal{};
    if (localtime_r(&when, &cal) == nullptr)
        return std::string();
    // ctime's fixed layout, e.g. "Sun Nov  5 18:16:12 2026\n".
    char text[64];
    std::snprintf(text, sizeof text, "%.3s %.3s%3d %.2d:%.2d:%.2d %d\n", kDays[(cal.tm_wday % 7 + 7) % 7],
                  kMonths[(cal.tm_mon % 12 + 12) % 12], cal.tm_mday, cal.tm_hour, cal.tm_min, cal.tm_sec,
                  1900 + cal.tm_year);

    std::string flat = Morvane::stlutils::replace_all(text, " ", "_");
    flat = Morvane::stlutils::replace_all(flat, ":", "-");
    flat.erase(std::remove(flat.begin(), flat.end(), '\n'), flat.end());

    const std::string::size_type lastUnderscore = flat.rfind('_');
    const std::string year = lastUnderscore == std::string::npos ? std::string() : flat.substr(lastUnderscore + 1);
    std::string rest = flat.size() > 5 ? flat.substr(0, flat.size() - 5) : std::string();
    const std::string::size_type firstUnderscore = rest.find('_');
    rest = firstUnderscore == std::string::npos ? std::string() : rest.substr(firstUnderscore);
    return year + rest;
}

std::string CLog::makeFinalOutputPath(const std::string& configuredName, const std::string& stamp,
                                      const char* home)
{
    if (configuredName.find_first_of("/\\") != std::string::npos)
        return configuredName;
    std::string folder = "~/Desktop/";
    if (home != nullptr)
        folder = std::string(home) + folder.substr(1);
    return folder + "/" + configuredName + "_" + stamp;
}

void CLog::reloadConf(const std::string& path)
{
    std::lock_guard<std::mutex> reload(mReloadMutex);
    auto table = std::make_unique<CategoryTable>();
    {
        std::lock_guard<std::mutex> out(CLogBuffers::OutputMutex());
        if (path.empty()) {
            std::cout << "#### Log conf file empty.\n";
        } else {
            std::cout << std::left << "## Config File : " << path << "\n";
            if (CanReadConf(path)) {
                std::cout << "###################### \n"
                          << "## Log Conf parsing ## \n"
                          << "###################### \n";
                parseConfFile(path, *table);
                std::cout << "###################### \n";
            } else {
                std::cout << "Conf file " << path << " not found.\n";
            }
        }
        openOutput();
        std::cout.flush();
    }
    publishTable(std::move(table));
}

void CLog::parseConfFile(const std::string& path, CategoryTable& table)
{
    std::string text;
    std::string error;
    if (!Morvane::ReadRegularFile(path, kMaxConfBytes, text, error)) {
        std::cout << "## WARNING : configuration not read: " << error << "\n";
        return;
    }
    parseConfText(text, table);
}

void CLog::parseConfText(const std::string& text, CategoryTable& table)
{
    std::istringstream file(text);
    int debugAllFlag = 0;
    char buffer[kConfLineBuffer];
    std::vector<std::string> tokens;
    for (;;) {
        file.getline(buffer, sizeof buffer);
        if (file.bad())
            break;
        if (file.fail()) {
            if (file.eof())
                break;
            // Longer than the buffer: the stream would stay failed and the
            // loop spin. The line is skipped and the parse goes on.
            file.clear();
            file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
            std::cout << "## WARNING : this line is ignored as longer than 255 characters " << buffer << "\n";
            if (file.eof())
                break;
            continue;
        }
        std::string line(buffer);
        line.erase(std::remove_if(line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }),
                   line.end());

        if (line.find_first_not_of("\t ") != std::string::npos && line.compare(0, 2, "//") != 0) {
            tokens.clear();
            Morvane::stlutils::tokenize(line, tokens, "\t ");
            if (tokens.size() != 2) {
                std::cout << "## WARNING : this line is ignored as not well-formed " << line << "\n";
            } else if (tokens[0] == "OutputFile") {
                mOutputFileName = tokens[1];
                std::cout << "## OutputFile : " << tokens[1] << "\n";
            } else if (tokens[0] == "DebugAllFlag") {
                std::cout << "## DebugAllFlag : " << tokens[1] << "\n";
                // Read from the raw line on purpose: a well-formed line starts
                // with the key, so this is 0.
                debugAllFlag = std::atoi(line.c_str());
            } else {
                std::cout << "## Category : " << std::setw(12) << tokens[0] << " level : " << tokens[1] << "\n";
                ELogLevel level = kLogDebug;
                if (debugAllFlag < 1 && !ParseLevelWord(tokens[1], level)) {
                    std::cout << "Log level " << tokens[1] << " not existing.\n";
                    level = kLogError;
                }
                table.emplace(tokens[0], level);
            }
        }
        if (file.eof())
            break;
    }
}

void CLog::openOutput()
{
    std::string finalPath = mOutputFileName;
    if (!finalPath.empty()) {
        const std::time_t start = std::chrono::system_clock::to_time_t(
            std::chrono::time_point_cast<std::chrono::system_clock::duration>(mStartTime));
        finalPath = makeFinalOutputPath(mOutputFileName, makeTimeStamp(start), std::getenv("HOME"));
        mOutputFileName = finalPath;
        std::cout << "## Final Output File : " << finalPath << "\n";
        // The output file is chosen once for the life of the log. A FIFO or
        // a device would block or swallow the log: only a regular file, or a
        // new one.
        if (!mOutputFile.is_open() && Morvane::IsWritableTarget(finalPath))
            mOutputFile.open(finalPath.c_str(), std::ios::out | std::ios::trunc);
    }
    if (mOutputFile.is_open()) {
        std::streambuf* previous = std::cout.rdbuf(mOutputFile.rdbuf());
        if (mConsoleBuffer == nullptr)
            mConsoleBuffer = previous;
        std::cout.clear();
        std::cout << "#### Stdout redirected to file " << finalPath << "\n";
    } else {
        std::cout << "#### Output file not open (" << finalPath << ")\n";
    }
}
