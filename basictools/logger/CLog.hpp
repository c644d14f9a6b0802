// Member templates of CLog (included by CLog.h).
#pragma once

#include "logger/CLogScratch.h"

template <typename... Parts>
void CLog::buildLog(const char* category, ELogLevel level, const Parts&... parts)
{
    // A listener wants the whole line, uncut: only the string stream keeps it.
    CLogScratch* scratch = mListener.load(std::memory_order_acquire) == nullptr ? CLogScratch::Acquire() : nullptr;
    if (scratch != nullptr) {
        CLogScratchGuard guard(scratch);
        std::ostream& os = scratch->BeginMessage();
        (void)(os << ... << parts);
        recordMessage(category, level, *scratch);
        return;
    }
    std::ostringstream os;
    (void)(os << ... << parts);
    checkAndRecordLog(category, level, os);
}

template <typename... Parts>
void CLog::cond_assert(bool cond, const char* exprText, unsigned line, const char* file,
                       const char* category, const Parts&... parts)
{
    if (cond)
        return;
    const char* expr = exprText != nullptr ? exprText : "";
    buildLog(category, kLogError, "assert fail  => ", expr, "\n", "at file : ", file != nullptr ? file : "",
             " +", line, "\n", parts...);
    assertFailed(category, expr);
}
