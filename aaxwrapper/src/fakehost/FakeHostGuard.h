// Keeps a fake-host failure from crossing into the AAX host. Debug log
// configurations turn failed assertions into exceptions; outside the
// real-time callback they end here as one error line and a neutral answer.
#pragma once

#include <exception>

#include "logger/CLog.h"

template <typename Call>
bool CallFakeHost(const char* operation, Call&& call)
{
    try {
        call();
        return true;
    } catch (const std::exception& e) {
        MV_LOG("fakehost", kLogError, "Exception in ", operation, " - ", e.what());
    }
    return false;
}
