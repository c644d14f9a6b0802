// Sets or clears one environment variable for a scope and puts the old value
// back afterwards, even when a failed assertion leaves the test early.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace TestSupport {

class CScopedEnv {
public:
    // A null value unsets the variable.
    CScopedEnv(const char* name, const char* value) : mName(name)
    {
        if (const char* old = std::getenv(name))
            mOld = old;
        Set(value);
    }
    ~CScopedEnv() { Set(mOld ? mOld->c_str() : nullptr); }
    CScopedEnv(const CScopedEnv&) = delete;
    CScopedEnv& operator=(const CScopedEnv&) = delete;

private:
    void Set(const char* value)
    {
        if (value != nullptr)
            setenv(mName.c_str(), value, 1);
        else
            unsetenv(mName.c_str());
        tzset();  // the C library reads TZ once and caches it
    }

    std::string mName;
    std::optional<std::string> mOld;
};

}  // namespace TestSupport
