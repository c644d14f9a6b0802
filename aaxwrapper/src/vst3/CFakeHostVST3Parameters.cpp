// The VST 3 plug-in's parameters: description, present values and host
// changes (to the controller at once, to the processor through the queues).
#include "vst3/CFakeHostVST3.h"

#include "logger/CLog.h"
#include "vst3/CVST3Loader.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
// Parameter titles are UTF-16; AAX names are UTF-8. False on a broken
// surrogate pair.
bool utf16ToUtf8(const char16* text, size_t maxLength, std::string& out)
{
    out.clear();
    for (size_t i = 0; i < maxLength && text[i] != 0; ++i) {
        uint32_t c = static_cast<uint16_t>(text[i]);
        if (c >= 0xD800 && c <= 0xDBFF) {
            if (i + 1 >= maxLength)
                return false;
            const uint32_t low = static_cast<uint16_t>(text[i + 1]);
            if (low < 0xDC00 || low > 0xDFFF)
                return false;
            c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
            ++i;
        } else if (c >= 0xDC00 && c <= 0xDFFF) {
            return false;
        }
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return true;
}

}  // namespace

void CFakeHostVST3::ReadParameterIds()
{
    mParamIds.clear();
    mParamHidden.clear();
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
