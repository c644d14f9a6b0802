// The VST 3 plug-in's parameters: description, present values and host
// changes (to the controller at once, to the processor through the queues).
#include "vst3/CFakeHostVST3.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>

#include "logger/CLog.h"
#include "stlutils.h"
#include "vst3/CVST3Loader.h"
#include "vst3/Utf16Text.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
bool EndsWith(const std::string& text, const std::string& tail)
{
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

using Morvane::stlutils::trim;
using Morvane::vst3::utf16ToUtf8;
using Morvane::vst3::utf8ToUtf16;

}  // namespace

void CFakeHostVST3::ReadParameterIds()
{
    mParamIds.clear();
    mParamHidden.clear();
    mParamUnits.clear();
    mParamFlags.clear();
    mParamUnitIds.clear();
    IEditController* controller = mVst3Loader->getController();
    if (!controller)
        return;
    auto lock = mVst3Loader->lockControllerAccess();
    const int32 count = controller->getParameterCount();
    for (int32 i = 0; i < count; ++i) {
        ParameterInfo info{};
        const bool known = controller->getParameterInfo(i, info) == kResultOk;
        mParamIds.push_back(known ? info.id : static_cast<ParamID>(i));
        mParamHidden.push_back(known && (info.flags & ParameterInfo::kIsHidden) != 0);
        std::string units;
        if (!known || !utf16ToUtf8(info.units, sizeof(info.units) / sizeof(info.units[0]), units))
            units.clear();
        mParamUnits.push_back(trim(units));
        mParamFlags.push_back(known ? info.flags : 0);
        mParamUnitIds.push_back(known ? info.unitId : kRootUnitId);
    }
    if (IsStandard()) {
        ReadGroups();
        ReadProgramList();
    }
}

// CLASSIC: the identifier is the index. STANDARD: the plug-in's own ID.
ParamID CFakeHostVST3::ParamIdOf(int index) const
{
    if (IsStandard() && index >= 0 && static_cast<size_t>(index) < mParamIds.size())
        return mParamIds[static_cast<size_t>(index)];
    return static_cast<ParamID>(index);
}

int CFakeHostVST3::DoGetParameterCount()
{
    if (!mVst3Loader || !mVst3Loader->getController())
        return -1;
    auto lock = mVst3Loader->lockControllerAccess();
    return mVst3Loader->getController()->getParameterCount();
}

SParameterInfo CFakeHostVST3::DoGetParameterInfo(int index)
{
    SParameterInfo out;
    out.tag = ParamIdOf(index);
    // Hidden ones, as read at Init, stay inside the wrapper.
    out.published =
        index >= 0 && static_cast<size_t>(index) < mParamHidden.size() && !mParamHidden[static_cast<size_t>(index)];
    if (!mVst3Loader || !mVst3Loader->getController())
        return out;
    ParameterInfo info{};
    {
        auto lock = mVst3Loader->lockControllerAccess();
        IEditController* controller = mVst3Loader->getController();
        // Some plug-ins index a container unchecked: never ask out of range.
        if (index < 0 || index >= controller->getParameterCount() ||
            controller->getParameterInfo(index, info) != kResultOk)
            return out;
    }
    out.valid = true;
    out.defaultValue = static_cast<double>(static_cast<float>(info.defaultNormalizedValue));
    if (!utf16ToUtf8(info.title, sizeof(info.title) / sizeof(info.title[0]), out.name))
        out.name.clear();
    out.automatable = (info.flags & (ParameterInfo::kIsReadOnly | ParameterInfo::kIsHidden)) == 0;
    out.steps = info.stepCount > 0 ? info.stepCount : 0;
    if (static_cast<size_t>(index) < mParamUnits.size())
        out.units = mParamUnits[static_cast<size_t>(index)];
    if (IsStandard()) {
        out.bypass = (info.flags & ParameterInfo::kIsBypass) != 0;
        if (static_cast<size_t>(index) < mParamGroups.size())
            out.group = mParamGroups[static_cast<size_t>(index)];
        if (IsProgram(index)) {
            out.program = true;
            out.name = "Program";
            out.steps = static_cast<int32_t>(mProgramNames.size()) - 1;
        }
    }
    // Only CLASSIC requires identifiers to equal indices; STANDARD maps them.
    if (!IsStandard()) {
        MV_COND_ASSERT("fakehost", index == static_cast<int>(info.id), "inParamIndex == info.id",
                       " inParamIndex=", index, " info.id=", info.id);
    }
    return out;
}

std::optional<double> CFakeHostVST3::DoGetParameterValue(int index)
{
    if (!mVst3Loader || !mVst3Loader->getController() || index < 0 ||
        static_cast<size_t>(index) >= mParamIds.size())
        return std::nullopt;
    auto lock = mVst3Loader->lockControllerAccess();
    return mVst3Loader->getController()->getParamNormalized(ParamIdOf(index));
}

void CFakeHostVST3::DoAddInputChangeForProcessing(int index, double value)
{
    if (!mVst3Loader || index < 0)
        return;
    mVst3Loader->addParameterChange(ParamIdOf(index), value, 0);
}

void CFakeHostVST3::DoAddInputChangeForGUI(int index, double value)
{
    if (!mVst3Loader || !mVst3Loader->getController() || index < 0)
        return;
    auto lock = mVst3Loader->lockControllerAccess();
    mVst3Loader->getController()->setParamNormalized(ParamIdOf(index), value);
}

// STANDARD: the controller's text, followed by the unit unless it carries it.
std::optional<std::string> CFakeHostVST3::DoGetParameterText(int index, double value)
{
    if (!IsStandard() || !mVst3Loader || !mVst3Loader->getController() || index < 0 ||
        static_cast<size_t>(index) >= mParamIds.size() || !std::isfinite(value))
        return std::nullopt;
    if (IsProgram(index)) {
        const auto last = static_cast<double>(mProgramNames.size() - 1);
        return mProgramNames[static_cast<size_t>(std::lround(std::clamp(value, 0.0, 1.0) * last))];
    }
    String128 text{};
    {
        auto lock = mVst3Loader->lockControllerAccess();
        if (mVst3Loader->getController()->getParamStringByValue(ParamIdOf(index), value, text) != kResultOk)
            return std::nullopt;
    }
    text[127] = 0;
    std::string out;
    if (!utf16ToUtf8(text, 128, out))
        return std::nullopt;
    out = trim(out);
    const std::string& units = mParamUnits[static_cast<size_t>(index)];
    if (out.empty())
        return std::nullopt;
    if (!units.empty() && !EndsWith(out, units))
        out += " " + units;
    return out;
}

// The controller reads the text, with or without its unit; failing that, a
// number (and the unit) is a plain value the controller normalises.
std::optional<double> CFakeHostVST3::DoGetParameterValueFromText(int index, const std::string& text)
{
    if (!IsStandard() || !mVst3Loader || !mVst3Loader->getController() || index < 0 ||
        static_cast<size_t>(index) >= mParamIds.size())
        return std::nullopt;
    const std::string wanted = trim(text);
    if (wanted.empty())
        return std::nullopt;
    if (IsProgram(index)) {
        const auto found = std::find(mProgramNames.begin(), mProgramNames.end(), wanted);
        if (found != mProgramNames.end())
            return static_cast<double>(found - mProgramNames.begin()) / static_cast<double>(mProgramNames.size() - 1);
    }
    const std::string& units = mParamUnits[static_cast<size_t>(index)];
    std::vector<std::string> tries{wanted};
    if (!units.empty() && EndsWith(wanted, units) && wanted.size() > units.size())
        tries.push_back(trim(wanted.substr(0, wanted.size() - units.size())));
    const ParamID id = ParamIdOf(index);
    auto lock = mVst3Loader->lockControllerAccess();
    IEditController* controller = mVst3Loader->getController();
    for (const std::string& attempt : tries) {
        String128 text16{};
        ParamValue value = 0.0;
        if (utf8ToUtf16(attempt, text16) && controller->getParamValueByString(id, text16, value) == kResultOk &&
            std::isfinite(value))
            return std::clamp(value, 0.0, 1.0);
    }
    const std::string& number = tries.back();
    errno = 0;
    char* end = nullptr;
    const double plain = std::strtod(number.c_str(), &end);
    if (end == number.c_str() || *end != '\0' || errno != 0 || !std::isfinite(plain))
        return std::nullopt;
    const ParamValue value = controller->plainParamToNormalized(id, plain);
    if (!std::isfinite(value))
        return std::nullopt;
    return std::clamp(value, 0.0, 1.0);
}
