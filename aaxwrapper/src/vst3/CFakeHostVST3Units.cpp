// STANDARD: the VST 3 plug-in's units as the groups its parameters are
// filed under, and the program list behind its program-change parameter.
// Read once with the parameter IDs, with the controller lock held.
#include <map>
#include <utility>

#include "logger/CLog.h"
#include "stlutils.h"
#include "vst3/CFakeHostVST3.h"
#include "vst3/CVST3Loader.h"
#include "vst3/Utf16Text.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
// A unit nested deeper than this is a loop in the plug-in's answers.
constexpr int kDeepestUnit = 16;
// More programs than this is a broken count.
constexpr int32 kMostPrograms = 16384;

std::string Text(const String128 text)
{
    std::string out;
    if (!Morvane::vst3::utf16ToUtf8(text, 128, out))
        out.clear();
    return Morvane::stlutils::trim(out);
}

struct SUnit {
    std::string name;
    UnitID parent = kNoParentUnitId;
};
}  // namespace

void CFakeHostVST3::ReadGroups()
{
    mParamGroups.assign(mParamUnitIds.size(), std::string());
    IUnitInfo* units = mVst3Loader->getUnitInfo();
    if (units == nullptr)
        return;
    std::map<UnitID, SUnit> byId;
    const int32 count = units->getUnitCount();
    for (int32 u = 0; u < count && u < 10000; ++u) {
        UnitInfo info{};
        if (units->getUnitInfo(u, info) == kResultOk)
            byId[info.id] = SUnit{Text(info.name), info.parentUnitId};
    }
    // The root unit is the plug-in itself: no group. Nested ones read as a path.
    for (size_t i = 0; i < mParamUnitIds.size(); ++i) {
        std::string path;
        UnitID id = mParamUnitIds[i];
        for (int depth = 0; id != kRootUnitId && depth < kDeepestUnit; ++depth) {
            const auto found = byId.find(id);
            if (found == byId.end())
                break;
            if (!found->second.name.empty())
                path = path.empty() ? found->second.name : found->second.name + " / " + path;
            id = found->second.parent;
        }
        mParamGroups[i] = std::move(path);
    }
}

// The first program-change parameter whose unit has a program list of at
// least two programs becomes the one "Program"; others stay as they are.
void CFakeHostVST3::ReadProgramList()
{
    mProgramIndex = -1;
    mProgramNames.clear();
    IUnitInfo* units = mVst3Loader->getUnitInfo();
    if (units == nullptr)
        return;
    std::map<UnitID, ProgramListID> listOfUnit;
    for (int32 u = 0, n = units->getUnitCount(); u < n && u < 10000; ++u) {
        UnitInfo info{};
        if (units->getUnitInfo(u, info) == kResultOk && info.programListId != kNoProgramListId)
            listOfUnit[info.id] = info.programListId;
    }
    for (size_t i = 0; i < mParamFlags.size() && mProgramIndex < 0; ++i) {
        if ((mParamFlags[i] & ParameterInfo::kIsProgramChange) == 0)
            continue;
        const auto list = listOfUnit.find(mParamUnitIds[i]);
        if (list == listOfUnit.end())
            continue;
        int32 programs = 0;
        for (int32 l = 0, n = units->getProgramListCount(); l < n && l < 10000; ++l) {
            ProgramListInfo info{};
            if (units->getProgramListInfo(l, info) == kResultOk && info.id == list->second)
                programs = info.programCount;
        }
        if (programs < 2 || programs > kMostPrograms) {
            MV_LOG("fakehost", kLogWarning, "VST3 program list ", list->second, " has ", programs,
                   " programs; its parameter is published as the plug-in describes it");
            continue;
        }
        for (int32 p = 0; p < programs; ++p) {
            String128 name{};
            std::string text;
            if (units->getProgramName(list->second, p, name) == kResultOk) {
                name[127] = 0;
                text = Text(name);
            }
            mProgramNames.push_back(text.empty() ? std::to_string(p + 1) : text);
        }
        mProgramIndex = static_cast<int>(i);
    }
}
