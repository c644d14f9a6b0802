#include "logger/CLog.h"

#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iomanip>
#include <iostream>
#include <stdexcept>

#include "DefaultDir.h"

namespace {

bool IsValidLevel(ELogLevel level)
{
    return static_cast<int>(level) >= 0 && static_cast<int>(level) < kLogLevelCount;
}

// Any per-thread value printed as a pointer identifies the thread in a line.
const void* ThreadTag()
{
    return reinterpret_cast<const void*>(pthread_self());
}

}  // namespace

CLog::CLog()
{
    {
        std::lock_guard<std::mutex> lock(CLogBuffers::OutputMutex());
        std::cout.clear();
        std::cout << "#### Log engine initialization." << std::endl;
    }
    mStartTime = std::chrono::time_point_cast<std::chrono::microseconds>(std::chrono::system_clock::now());
    publishTable(std::make_unique<CategoryTable>());
    mBuffers.StartWorkingThread();
    reloadConf(std::string(kDefault_Dir) + "log.conf");
}

CLog::~CLog()
{
    try {
        mBuffers.StopWorkingThread();
        std::lock_guard<std::mutex> lock(CLogBuffers::OutputMutex());
        std::cout << "#### Log engine destruction." << std::endl;
        // std::cout must not keep pointing into the file buffer we are about to destroy.
        if (mConsoleBuffer != nullptr) {
            std::cout.rdbuf(mConsoleBuffer);
            std::cout.clear();
        }
        mOutputFile.close();
    } catch (...) {
        std::terminate();
    }
}

void CLog::publishTable(std::unique_ptr<CategoryTable> table)
{
    int lowest = kLogLevelCount;
    for (const auto& entry : *table)
        lowest = std::min(lowest, static_cast<int>(entry.second));
    // Lowered before the new table is seen, raised only after it is.
    if (lowest < mLowestLevel.load(std::memory_order_relaxed))
        mLowestLevel.store(lowest, std::memory_order_seq_cst);
    mCategories.store(table.get(), std::memory_order_seq_cst);
    mLowestLevel.store(lowest, std::memory_order_seq_cst);
    mTables.push_back(std::move(table));
}

bool CLog::getCategoryLevel(const char* category, ELogLevel& out) const
{
    const CategoryTable* table = mCategories.load(std::memory_order_acquire);
    if (category == nullptr || table == nullptr)
        return false;
    const auto it = table->find(std::string_view(category));
    if (it == table->end())
        return false;
    out = it->second;
    return true;
}

bool CLog::isRecordedInTable(const char* category, ELogLevel level) const
{
    ELogLevel configured = kLogAssert;
    return IsValidLevel(level) && getCategoryLevel(category, configured) && level >= configured;
}

void CLog::composeLine(std::ostream& os, const char* category, ELogLevel level, const char* message,
                       size_t length) const
{
    const auto now = std::chrono::time_point_cast<std::chrono::microseconds>(std::chrono::system_clock::now());
    const long long elapsedMs = static_cast<long long>((now - mStartTime).count() / 1000);
    os << std::left << "[LOG] " << std::setw(6) << elapsedMs << " | " << std::setw(5) << ThreadTag() << " | "
       << std::setw(15) << category << " | " << std::setw(6) << DicoLog[level] << " | ";
    os.write(message, static_cast<std::streamsize>(length));
    os << '\n' << std::flush;
}

void CLog::queueLine(const char* line, size_t length)
{
    const size_t capped = length > static_cast<size_t>(kMaxLineLength) ? kMaxLineLength : length;
    mBuffers.WriteDataInBuffer(line, static_cast<int32_t>(capped));
}

void CLog::recordMessage(const char* category, ELogLevel level, CLogScratch& scratch)
{
    if (!isRecorded(category, level))
        return;
    std::ostream& os = scratch.BeginLine();
    composeLine(os, category, level, scratch.Message().data(), scratch.Message().size());
    queueLine(scratch.Line().data(), scratch.Line().size());
}

std::string CLog::getLogMsg(const char* category, ELogLevel level, const std::ostringstream& stream) const
{
    if (category == nullptr || !IsValidLevel(level))
        return std::string();
    std::ostringstream os;
    const std::string message = stream.str();
    composeLine(os, category, level, message.data(), message.size());
    return os.str();
}

void CLog::checkAndRecordLog(const char* category, ELogLevel level, const std::ostringstream& stream)
{
    if (!isRecorded(category, level))
        return;
    const std::string line = getLogMsg(category, level, stream);
    queueLine(line.data(), line.size());
    if (ILogRecordListener* listener = mListener.load(std::memory_order_acquire))
        listener->onLogRecorded(line);
}

void CLog::assertFailed(const char* category, const char* exprText)
{
    mBuffers.StopWorkingThread();
    ELogLevel configured = kLogAssert;
    if (!getCategoryLevel(category, configured))
        configured = kLogAssert;
    if (configured < kLogAssert)
        throw std::logic_error(exprText);
}
