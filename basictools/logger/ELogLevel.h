// Severity of a log line; a higher value is more severe.
#pragma once

enum ELogLevel : int {
    kLogDebug = 0,
    kLogInfo,
    kLogNotice,
    kLogWarning,
    kLogError,
    kLogExcept,
    kLogAssert
};

constexpr int kLogLevelCount = 7;

// Printed words of the levels, indexed by level value; also the level names
// accepted in log.conf.
inline constexpr const char* DicoLog[kLogLevelCount] = {
    "debug", "info", "notice", "warning", "error", "except", "assert"};
