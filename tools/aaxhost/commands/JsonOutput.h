// Where a command's JSON document goes.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

namespace AAXHost {

// Plug-ins print to standard output (registration lines, log banners). In
// JSON mode that stream is moved to standard error for the whole run, and
// the JSON alone goes to the original standard output.
class CJsonOutput {
public:
    explicit CJsonOutput(bool enabled)
    {
        if (!enabled)
            return;
        std::fflush(stdout);
        const int saved = dup(STDOUT_FILENO);
        if (saved < 0)
            return;
        mOut = fdopen(saved, "w");
        dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    ~CJsonOutput()
    {
        if (mOut)
            std::fclose(mOut);
    }
    void Write(const nlohmann::json& j)
    {
        const std::string text = j.dump(2) + "\n";
        if (mOut) {
            std::fputs(text.c_str(), mOut);
            std::fflush(mOut);
        } else {
            std::cout << text << std::flush;
        }
    }

private:
    FILE* mOut = nullptr;
};

}  // namespace AAXHost
