// The VST 2 effect's parameters: description, present values and host changes.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>

#include "logger/CLog.h"
#include "stlutils.h"
#include "vst2/CFakeHostVST2.h"

namespace {
using Morvane::stlutils::trim;

// More discrete values than this is a continuous control for any surface.
constexpr int64_t kMostSteps = 1024;

// What effGetParameterProperties says of the values; 0 when continuous.
int32_t StepsOf(const VstParameterProperties& p)
{
    if ((p.flags & kVstParameterIsSwitch) != 0)
        return 1;
    if ((p.flags & kVstParameterUsesIntegerMinMax) == 0 || p.maxInteger <= p.minInteger)
        return 0;
    int64_t steps = static_cast<int64_t>(p.maxInteger) - p.minInteger;
    if ((p.flags & kVstParameterUsesIntStep) != 0 && p.stepInteger > 1 && steps % p.stepInteger == 0)
        steps /= p.stepInteger;
    return steps <= kMostSteps ? static_cast<int32_t>(steps) : 0;
}
}  // namespace

int CFakeHostVST2::DoGetParameterCount()
{
    if (effect == nullptr)
        return -1;
    return effect->numParams + (IsStandard() && !ProgramNames().empty() ? 1 : 0);
}

SParameterInfo CFakeHostVST2::DoGetParameterInfo(int index)
{
    SParameterInfo info;
    if (effect == nullptr)
        return info;
    if (IsProgram(index))
        return ProgramInfo();
    MV_COND_ASSERT("fakehost", 0 <= index && index < effect->numParams, "0<=inID && inID<GetParameterCount()",
                   "Bad access to parameters info", " inID = ", index, " GetParameterCount() = ", effect->numParams);
    char name[kTextBufferSize + 1] = {};
    Dispatch(effGetParamName, index, 0, name);
    info.valid = true;
    info.tag = static_cast<uint32_t>(index);
    info.name = name;
    // VST 2 has no defaults: the value the effect holds now stands for one.
    info.defaultIsPresentValue = true;
    if (effect->getParameter != nullptr)
        info.defaultValue = static_cast<double>(effect->getParameter(effect, index));
    if (IsStandard()) {
        // Most effects answer 0 and leave the record alone: continuous.
        VstParameterProperties properties{};
        if (Dispatch(effGetParameterProperties, index, 0, &properties) != 0)
            info.steps = StepsOf(properties);
        char label[kTextBufferSize + 1] = {};
        Dispatch(effGetParamLabel, index, 0, label);
        info.units = trim(label);
    }
    return info;
}

std::optional<double> CFakeHostVST2::DoGetParameterValue(int index)
{
    if (effect != nullptr && IsProgram(index))
        return ProgramValue();
    if (effect == nullptr || effect->getParameter == nullptr || index < 0 || index >= effect->numParams)
        return std::nullopt;
    return static_cast<double>(effect->getParameter(effect, index));
}

void CFakeHostVST2::DoAddInputChangeForProcessing(int index, double value)
{
    MV_LOG("process", kLogDebug, "VST2> AddInputChangeForProcessing... ", index, " ", value);
    if (effect != nullptr && IsProgram(index)) {
        SetProgram(value);
        return;
    }
    if (effect == nullptr || effect->setParameter == nullptr)
        return;
    effect->setParameter(effect, index, static_cast<float>(value));
}

// The effect has one value per parameter, set by the call above.
void CFakeHostVST2::DoAddInputChangeForGUI(int, double) {}

// The effect's display and label of the value it holds, remembered for that
// value: a host asks the text of other values too (automation lanes, the
// values it offers), and VST 2 cannot be asked without setting the value.
std::string CFakeHostVST2::CurrentText(int index, float& value)
{
    value = effect->getParameter(effect, index);
    char display[kTextBufferSize + 1] = {};
    char label[kTextBufferSize + 1] = {};
    Dispatch(effGetParamDisplay, index, 0, display);
    Dispatch(effGetParamLabel, index, 0, label);
    std::string text = trim(display);
    const std::string unit = trim(label);
    if (!text.empty() && !unit.empty())
        text += " " + unit;
    if (text.empty() || !std::isfinite(value))
        return text;
    if (mTextsSeen.size() != static_cast<size_t>(effect->numParams))
        mTextsSeen.resize(static_cast<size_t>(effect->numParams));
    auto& seen = mTextsSeen[static_cast<size_t>(index)];
    if (seen.size() < kMaxTextsSeen || seen.count(value) != 0)
        seen[value] = text;
    return text;
}

std::optional<std::string> CFakeHostVST2::DoGetParameterText(int index, double value)
{
    if (effect != nullptr && IsProgram(index) && std::isfinite(value))
        return mProgramNames[static_cast<size_t>(
            std::lround(std::clamp(value, 0.0, 1.0) * static_cast<double>(mProgramNames.size() - 1)))];
    if (!IsStandard() || effect == nullptr || effect->getParameter == nullptr || index < 0 ||
        index >= effect->numParams)
        return std::nullopt;
    float held = 0.0f;
    const std::string text = CurrentText(index, held);
    if (static_cast<float>(value) == held)
        return text.empty() ? std::nullopt : std::optional<std::string>(text);
    if (mTextsSeen.size() <= static_cast<size_t>(index))
        return std::nullopt;
    const auto& seen = mTextsSeen[static_cast<size_t>(index)];
    const auto found = seen.find(static_cast<float>(value));
    if (found == seen.end())
        return std::nullopt;
    return found->second;
}

// effString2Parameter is not asked: it sets the parameter, and this is a
// question (the host sets the value it gets through the usual change). A
// text exactly as the effect showed it stands for its value; then a bare
// number is the normalised value, as a value without a text of the effect's
// is shown (so that text reads back as itself); then a shown text typed
// without its label.
std::optional<double> CFakeHostVST2::DoGetParameterValueFromText(int index, const std::string& text)
{
    if (effect != nullptr && IsProgram(index))
        return ProgramFromText(text);
    if (!IsStandard() || effect == nullptr || effect->getParameter == nullptr || index < 0 ||
        index >= effect->numParams)
        return std::nullopt;
    const std::string wanted = trim(text.c_str());
    if (wanted.empty())
        return std::nullopt;
    float held = 0.0f;
    CurrentText(index, held);  // the value held now counts as seen
    char label[kTextBufferSize + 1] = {};
    Dispatch(effGetParamLabel, index, 0, label);
    const std::string unit = trim(label);
    const std::map<float, std::string>* seen =
        mTextsSeen.size() > static_cast<size_t>(index) ? &mTextsSeen[static_cast<size_t>(index)] : nullptr;
    if (seen != nullptr)
        for (const auto& [value, shown] : *seen)
            if (shown == wanted)
                return static_cast<double>(value);
    errno = 0;
    char* end = nullptr;
    const double number = std::strtod(wanted.c_str(), &end);
    if (end != wanted.c_str() && errno == 0 && std::isfinite(number) && number >= 0.0 && number <= 1.0) {
        while (*end == ' ')
            ++end;
        if (*end == '\0')
            return number;
    }
    if (seen != nullptr && !unit.empty())
        for (const auto& [value, shown] : *seen)
            if (shown == wanted + " " + unit)
                return static_cast<double>(value);
    return std::nullopt;
}
