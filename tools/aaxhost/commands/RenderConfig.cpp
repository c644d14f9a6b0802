#include "RenderConfig.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace AAXHost {

namespace {

bool ParseDouble(const std::string& s, double& out)
{
    if (s.empty())
        return false;
    char* end = nullptr;
    errno = 0;
    out = std::strtod(s.c_str(), &end);
    return errno == 0 && end && *end == '\0' && std::isfinite(out);
}

}  // namespace

bool ParseParameterSet(const std::string& text, SParameterSet& out, std::string& error)
{
    const size_t eq = text.find('=');
    if (eq == std::string::npos || eq == 0) {
        error = "expected ID=VALUE or ID=VALUE@SECONDS, got \"" + text + "\"";
        return false;
    }
    out = SParameterSet();
    out.id = text.substr(0, eq);
    std::string rest = text.substr(eq + 1);
    const size_t at = rest.find('@');
    if (at != std::string::npos) {
        if (!ParseDouble(rest.substr(at + 1), out.atSeconds) || out.atSeconds < 0.0) {
            error = "bad time in \"" + text + "\"";
            return false;
        }
        rest.resize(at);
    }
    if (!ParseDouble(rest, out.value) || out.value < 0.0 || out.value > 1.0) {
        error = "the value in \"" + text + "\" must be a normalised number from 0 to 1";
        return false;
    }
    return true;
}

bool ParseMeter(const std::string& text, int32_t& numerator, int32_t& denominator, std::string& error)
{
    const size_t slash = text.find('/');
    double n = 0, d = 0;
    if (slash == std::string::npos || !ParseDouble(text.substr(0, slash), n) || !ParseDouble(text.substr(slash + 1), d) ||
        n < 1 || n > 64 || d < 1 || d > 64 || n != std::floor(n) || d != std::floor(d)) {
        error = "expected a meter such as 4/4, got \"" + text + "\"";
        return false;
    }
    numerator = static_cast<int32_t>(n);
    denominator = static_cast<int32_t>(d);
    return true;
}

}  // namespace AAXHost
