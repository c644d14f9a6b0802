// STANDARD: a VST 2 effect's programs as one discrete parameter, "Program",
// after its own parameters; its texts are the program names.
#include <algorithm>
#include <cmath>
#include <vector>

#include "logger/CLog.h"
#include "stlutils.h"
#include "vst2/CFakeHostVST2.h"

namespace {
// More programs than this is a broken count (amsynth lists 3584).
constexpr VstInt32 kMostPrograms = 16384;
// Names are 24 bytes by the interface; effects write longer ones.
constexpr size_t kProgramNameRoom = 256;
}  // namespace

// Read once: the names an effect gives change only with its bank, which
// this list does not follow.
const std::vector<std::string>& CFakeHostVST2::ProgramNames()
{
    if (mProgramsRead || effect == nullptr)
        return mProgramNames;
    mProgramsRead = true;
    const VstInt32 count = effect->numPrograms;
    if (count < 2)
        return mProgramNames;
    if (count > kMostPrograms) {
        MV_LOG("fakehost", kLogWarning, "VST2 effect declares ", count, " programs; no program parameter");
        return mProgramNames;
    }
    bool indexed = false;
    for (VstInt32 p = 0; p < count; ++p) {
        char name[kProgramNameRoom] = {};
        indexed = Dispatch(effGetProgramNameIndexed, p, -1, name) != 0 || indexed;
        name[kProgramNameRoom - 1] = '\0';
        const std::string text = Morvane::stlutils::trim(name);
        mProgramNames.push_back(text.empty() ? std::to_string(p + 1) : text);
    }
    if (!indexed)
        ReadProgramNamesOneByOne();
    return mProgramNames;
}

// An effect that names only its current program (amsynth) is walked through
// every program once, before it processes anything, as hosts list them;
// then it gets back its program, its chunk and its values.
void CFakeHostVST2::ReadProgramNamesOneByOne()
{
    MV_LOG("fakehost", kLogInfo, "VST2 effect names only its current program; reading ", mProgramNames.size(),
           " names one by one");
    const bool chunks = (effect->flags & effFlagsProgramChunks) != 0;
    std::vector<char> chunk;
    VstIntPtr chunkSize = 0;
    std::vector<float> values;
    if (chunks) {
        void* data = nullptr;
        chunkSize = Dispatch(effGetChunk, 0, 0, &data);
        // Zeros past the end, as a saved state has: effects that keep text
        // (amsynth) read their chunk up to a terminator they never counted.
        if (data != nullptr && chunkSize > 0) {
            chunk.assign(static_cast<const char*>(data), static_cast<const char*>(data) + chunkSize);
            chunk.resize(chunk.size() + kStateMargin, '\0');
        }
    }
    // Values too: a bank chunk need not hold the effect's present values
    // (amsynth starts from values no program has).
    if (effect->getParameter != nullptr)
        for (VstInt32 i = 0; i < effect->numParams; ++i)
            values.push_back(effect->getParameter(effect, i));
    const VstIntPtr current = Dispatch(effGetProgram);
    for (size_t p = 0; p < mProgramNames.size(); ++p) {
        Dispatch(effSetProgram, 0, static_cast<VstIntPtr>(p));
        char name[kProgramNameRoom] = {};
        Dispatch(effGetProgramName, 0, 0, name);
        name[kProgramNameRoom - 1] = '\0';
        const std::string text = Morvane::stlutils::trim(name);
        if (!text.empty())
            mProgramNames[p] = text;
    }
    Dispatch(effSetProgram, 0, current);
    if (!chunk.empty())
        Dispatch(effSetChunk, 0, chunkSize, chunk.data());
    if (effect->setParameter != nullptr)
        for (size_t i = 0; i < values.size(); ++i)
            effect->setParameter(effect, static_cast<VstInt32>(i), values[i]);
}

SParameterInfo CFakeHostVST2::ProgramInfo()
{
    SParameterInfo info;
    info.valid = true;
    info.tag = static_cast<uint32_t>(effect->numParams);
    info.name = "Program";
    info.steps = static_cast<int32_t>(mProgramNames.size()) - 1;
    info.program = true;
    info.defaultValue = ProgramValue();
    info.defaultIsPresentValue = true;
    return info;
}

// A program out of the list (an effect's own count off by one) reads as the
// nearest end.
double CFakeHostVST2::ProgramValue()
{
    const auto last = static_cast<VstIntPtr>(mProgramNames.size() - 1);
    const VstIntPtr current = std::clamp<VstIntPtr>(Dispatch(effGetProgram), 0, last);
    return static_cast<double>(current) / static_cast<double>(last);
}

void CFakeHostVST2::SetProgram(double value)
{
    if (!std::isfinite(value))
        return;
    const auto last = static_cast<double>(mProgramNames.size() - 1);
    const auto program = static_cast<VstIntPtr>(std::lround(std::clamp(value, 0.0, 1.0) * last));
    if (program == Dispatch(effGetProgram))
        return;
    MV_LOG("fakehost", kLogInfo, "VST2 program ", program, " (", mProgramNames[static_cast<size_t>(program)], ")");
    Dispatch(effBeginSetProgram);
    Dispatch(effSetProgram, 0, program);
    Dispatch(effEndSetProgram);
}

std::optional<double> CFakeHostVST2::ProgramFromText(const std::string& text)
{
    const std::string wanted = Morvane::stlutils::trim(text.c_str());
    const auto found = std::find(mProgramNames.begin(), mProgramNames.end(), wanted);
    if (wanted.empty() || found == mProgramNames.end())
        return std::nullopt;
    return static_cast<double>(found - mProgramNames.begin()) / static_cast<double>(mProgramNames.size() - 1);
}
