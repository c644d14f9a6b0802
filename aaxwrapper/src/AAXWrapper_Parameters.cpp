#include "AAXWrapper_Parameters.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>

#include "AAXWrapper_Identity.h"
#include "AAXWrapper_PluginLocator.h"
#include "AAXWrapper_Status.h"
#include "fakehost/FakeHostFactory.h"
#include "fakehost/FakeHostGuard.h"
#include "fakehost/IFakeHost.h"
#include "PluginTextDisplay.h"
#include "AAX_CBinaryDisplayDelegate.h"
#include "AAX_CBinaryTaperDelegate.h"
#include "AAX_CLinearTaperDelegate.h"
#include "AAX_CNumberDisplayDelegate.h"
#include "AAX_CParameter.h"
#include "AAX_CString.h"
#include "CSingleton.h"
#include "Resources.h"
#include "S_Alg_Context.h"
#include "logger/CLog.h"

namespace {

const char* const kMasterBypassID = "MasterBypassID";

// More values than this is no list a host shows: published continuous.
constexpr int32_t kMostSteps = 1024;

// The nearest of steps + 1 evenly spaced values, as an AAX host reads a
// discrete parameter.
double OnStep(double value, int32_t steps)
{
    if (steps <= 0 || !std::isfinite(value))
        return value;
    return std::round(std::clamp(value, 0.0, 1.0) * steps) / steps;
}

AAXWrapper_Parameters::FakeHostFactory gFakeHostFactoryForTesting = nullptr;

// The tag of a published identifier: decimal digits only, as this wrapper
// writes them, within 32 bits. Every automation point passes here, so it is
// read by hand rather than through strtoul and its locale.
bool ParseTag(const char* id, uint32_t& tag)
{
    if (id == nullptr || *id == '\0')
        return false;
    uint64_t value = 0;
    for (const char* c = id; *c != '\0'; ++c) {
        if (*c < '0' || *c > '9')
            return false;
        value = value * 10 + static_cast<uint64_t>(*c - '0');
        if (value > std::numeric_limits<uint32_t>::max())
            return false;
    }
    tag = static_cast<uint32_t>(value);
    return true;
}

}  // namespace

AAX_IEffectParameters* AAXWrapper_Parameters::Create()
{
    return new AAXWrapper_Parameters;
}

void AAXWrapper_Parameters::SetFakeHostFactoryForTesting(FakeHostFactory factory)
{
    gFakeHostFactoryForTesting = factory;
}

// Live instances, so that the last one to go, not every one, tears the log
// down: another instance's audio thread may still be logging. The lock keeps
// a construction from slipping between the count reaching zero and the log
// going away.
namespace {
std::mutex gInstancesMutex;
int gLiveInstances = 0;
}  // namespace

AAXWrapper_Parameters::AAXWrapper_Parameters()
{
    {
        std::lock_guard<std::mutex> lock(gInstancesMutex);
        ++gLiveInstances;
    }
    std::string confPath;
    if (CSingleton<Morvane::Resources>::getInstance()->GetAbsolutePath("log.conf", confPath)) {
        CSingleton<CLog>::getInstance()->reloadConf(confPath);
        MV_LOG("fakehost", kLogInfo, "Config file : ", confPath);
    }
    LogBundleInfo();

    const std::vector<std::string> candidates =
        Morvane::BuildPluginCandidates(VST_PLUGIN_NAME, VST_PLUGIN_EXTENSION);
    std::string path = Morvane::FindPluginFile(candidates);
    mPluginPath = path;
    LogWherePluginWasFound(path);
    if (path.empty())
        mLoadError = "no " + VST_PLUGIN_NAME + "." + VST_PLUGIN_EXTENSION + " was found in the " +
                     std::to_string(candidates.size()) + " places searched";
    CallFakeHost("CreateFakeHost", [&] { CreateFakeHost(path); });
    if (mFakeHost != nullptr)
        mFakeHost->SetEditListener(this);

    if (mFakeHost == nullptr) {
        MV_LOG("fakehost", kLogError, "Fakehost null.");
        if (mLoadError.empty())
            mLoadError = "no fake host for the extension " + VST_PLUGIN_EXTENSION;
        return;
    }
    // STANDARD waits for EffectInit, where the host's sample rate is known:
    // plug-ins set themselves up for the rate they are created at.
    if (!IsStandard()) {
        LogPluginInfo();
        InitFakeHost();
    }
}

// Where the plug-in came from, and a warning when it is not the bundle's own:
// a bundle missing its Contents/Resources must not silently run another
// plug-in of the same name.
void AAXWrapper_Parameters::LogWherePluginWasFound(const std::string& path) const
{
    if (path.empty())
        return;
    std::string resourcePath;
    const bool own = CSingleton<Morvane::Resources>::getInstance()->GetAbsolutePath(
                         VST_PLUGIN_NAME + "." + VST_PLUGIN_EXTENSION, resourcePath) &&
                     resourcePath == path;
    if (own)
        MV_LOG("fakehost", kLogNotice, "VST file found on ", path);
    else
        MV_LOG("fakehost", kLogWarning, "VST file found on ", path,
               ", outside the bundle's resource folders: the bundle carries no plug-in of its own");
}

void AAXWrapper_Parameters::LogPluginInfo()
{
    // Asked whatever the log keeps: the plug-in sees the same calls either way.
    mPluginVendor = mFakeHost->GetPluginVendor();
    mPluginVersion = mFakeHost->GetPluginVersion();
    const int32_t uniqueID = mFakeHost->GetPluginProductUniqueID();
    MV_LOG("fakehost", kLogNotice, "###########   Plugins Info   ###########");
    MV_LOG("fakehost", kLogNotice, "## Vendor   : ", mPluginVendor);
    MV_LOG("fakehost", kLogNotice, "## Version  : ", mPluginVersion);
    MV_LOG("fakehost", kLogNotice, "## Unique ID: ", uniqueID);
    MV_LOG("fakehost", kLogNotice, "########################################");
}

// A host whose Init failed stays: its later answers are neutral.
void AAXWrapper_Parameters::InitFakeHost()
{
    const bool loaded = mFakeHost->Init();
    if (!loaded && mLoadError.empty()) {
        mLoadError = mFakeHost->GetLoadError();
        if (mLoadError.empty())
            mLoadError = "the plug-in in " + mPluginPath + " could not be created";
    }
    if (loaded)
        mLoadError.clear();
    else
        MV_LOG("fakehost", kLogError, "Wrapped plug-in not loaded: ", mLoadError);
}

bool AAXWrapper_Parameters::IsStandard() const
{
    return kHostMode == EHostMode::kStandard;
}

void AAXWrapper_Parameters::LogBundleInfo() const
{
    MV_LOG("fakehost", kLogNotice, "########################################");
    MV_LOG("fakehost", kLogNotice, "###########   Bundle Info   ############");
    MV_LOG("fakehost", kLogNotice, "########################################");
    MV_LOG("fakehost", kLogNotice, "## Bundle id           : ", BUNDLE_ID);
    MV_LOG("fakehost", kLogNotice, "## AAX Wrapper Version : ", VERSION);
    MV_LOG("fakehost", kLogNotice, "## VST Plugin          : ", VST_PLUGIN_NAME);
    MV_LOG("fakehost", kLogNotice, "## File extension      : ", VST_PLUGIN_EXTENSION);
    MV_LOG("fakehost", kLogNotice, "## AAX Unique ID       : ", static_cast<uint32_t>(kProductID));
    MV_LOG("fakehost", kLogNotice, "## Git Revision        : ", GIT_REVISION);
    MV_LOG("fakehost", kLogNotice, "## Host mode           : ", HOST_MODE);
    MV_LOG("fakehost", kLogNotice, "########################################");
}

void AAXWrapper_Parameters::CreateFakeHost(std::string& path)
{
    if (gFakeHostFactoryForTesting != nullptr) {
        mFakeHost.reset(gFakeHostFactoryForTesting(*this, path));
        return;
    }
    // Case-sensitive on purpose: the extension is also the file suffix.
    if (VST_PLUGIN_EXTENSION == "vst") {
        mFakeHost = CreateFakeHostVST2(*this, path, kHostMode);
    } else if (VST_PLUGIN_EXTENSION == "vst3") {
        mFakeHost = CreateFakeHostVST3(*this, path, kHostMode);
    } else {
        MV_LOG("fakehost", kLogError, "Extension not well defined ", "\n", "[LOG] ## VST_PLUGIN_NAME = ",
               VST_PLUGIN_NAME, "\n", "[LOG] ## file_extension = ", VST_PLUGIN_EXTENSION);
    }
}

AAX_Result AAXWrapper_Parameters::EffectInit()
{
    auto* bypass = new AAX_CParameter<bool>(kMasterBypassID, AAX_CString("Master Bypass"), false,
                                            AAX_CBinaryTaperDelegate<bool>(),
                                            AAX_CBinaryDisplayDelegate<bool>("bypass", "on"), true);
    bypass->SetNumberOfSteps(2);
    bypass->SetType(AAX_eParameterType_Discrete);
    mParameterManager.AddParameter(bypass);
    mPacketDispatcher.RegisterPacket(kMasterBypassID, kAlgField_Bypass);

    if (IsStandard() && mFakeHost != nullptr) {
        InitFakeHost();
        LogPluginInfo();
    }
    if (IsStandard() && !mLoadError.empty()) {
        // A host reports an instance that fails here; one that silently
        // renders nothing would ship unnoticed.
        MV_LOG("fakehost", kLogError, "EffectInit refused: ", mLoadError);
        return AAX_ERROR_UNKNOWN_PLUGIN;
    }
    if (mFakeHost == nullptr)
        return AAX_SUCCESS;

    CallFakeHost("EffectInit", [&] { PublishPluginParameters(); });
    ReportLatency();
    return AAX_SUCCESS;
}

// STANDARD: program choices first, so that a restore chooses the program
// before the values it would otherwise overwrite; then index order.
std::vector<int> AAXWrapper_Parameters::PublishingOrder(const std::vector<SParameterInfo>& infos) const
{
    std::vector<int> order;
    for (size_t i = 0; i < infos.size(); ++i)
        if (IsStandard() && infos[i].program)
            order.push_back(static_cast<int>(i));
    for (size_t i = 0; i < infos.size(); ++i)
        if (!IsStandard() || !infos[i].program)
            order.push_back(static_cast<int>(i));
    return order;
}

// STANDARD: the plug-in's own bypass switch follows the master bypass; the
// real-time callback then leaves bypassed buffers to the plug-in, which
// keeps its latency and tails.
void AAXWrapper_Parameters::AdoptPluginBypass(int index, const SParameterInfo& info)
{
    mBypassIndex = index;
    mBypassTag = info.tag;
    const std::optional<double> current = mFakeHost->GetParameterValue(index);
    mLastValues[static_cast<size_t>(index)].store(current ? *current : 0.0, std::memory_order_relaxed);
    mBypassWay.store(EBypassWay::kPluginBypasses, std::memory_order_relaxed);
    MV_LOG("parameters", kLogInfo, "The master bypass drives the plug-in's own bypass \"", info.name, "\" (",
           info.tag, ")");
}

void AAXWrapper_Parameters::PublishPluginParameters()
{
    const int count = mFakeHost->GetParameterCount();
    mLastValueCount = static_cast<size_t>(std::max(count, 0));
    mLastValues.reset(new std::atomic<double>[mLastValueCount]);
    for (size_t i = 0; i < mLastValueCount; ++i)
        mLastValues[i].store(std::numeric_limits<double>::quiet_NaN(), std::memory_order_relaxed);
    mClassicDefaults.assign(static_cast<size_t>(std::max(count, 0)), 0.0);
    mClassicNames.assign(static_cast<size_t>(std::max(count, 0)), std::string());
    mSteps.assign(static_cast<size_t>(std::max(count, 0)), 0);
    mReadOnly.assign(static_cast<size_t>(std::max(count, 0)), false);
    std::vector<SParameterInfo> infos;
    for (int index = 0; index < count; ++index)
        infos.push_back(mFakeHost->GetParameterInfo(index));
    for (const int index : PublishingOrder(infos)) {
        const SParameterInfo& info = infos[static_cast<size_t>(index)];
        if (IsStandard() && info.bypass && mBypassIndex < 0) {
            AdoptPluginBypass(index, info);
            continue;
        }
        if (IsStandard() && !info.published)
            continue;
        const std::string& name = info.name;
        float value = static_cast<float>(info.defaultValue);
        if (!std::isfinite(value)) {
            MV_LOG("parameters", kLogWarning, "Parameter ", index, " (", name, ") reports a value that is not a number;",
                   " published at 0");
            value = 0.0f;
        }
        // CLASSIC compares a host change with the plug-in's default: fixed
        // where the format has defaults, read again at each change where not.
        mClassicDefaults[static_cast<size_t>(index)] = info.defaultIsPresentValue ? kReadDefaultAgain : value;
        mClassicNames[static_cast<size_t>(index)] = name;
        char id[32];
        if (IsStandard()) {
            const uint32_t tag = info.tag;
            std::snprintf(id, sizeof(id), "%u", tag);
            mIndexByTag[tag] = index;
            // What the plug-in holds now counts as received: restoring the
            // same value later sends nothing.
            if (const std::optional<double> current = mFakeHost->GetParameterValue(index))
                mLastValues[static_cast<size_t>(index)].store(*current, std::memory_order_relaxed);
        } else {
            std::snprintf(id, sizeof(id), "%d", index);
        }
        mPublished.emplace_back(index, id);
        if (IsStandard())
            mNotes.push_back(SParameterNote{id, info.units, info.group});
        AAX_CParameter<float>* parameter = nullptr;
        if (IsStandard()) {
            // The plug-in's texts, steps and read-only flag; its values
            // stay normalised, so sessions and automation keep their meaning.
            // A program list stays a list however long (amsynth: 3584).
            const int32_t steps = info.steps > 0 && (info.steps <= kMostSteps || info.program) ? info.steps : 0;
            mSteps[static_cast<size_t>(index)] = steps;
            mReadOnly[static_cast<size_t>(index)] = !info.automatable;
            value = static_cast<float>(OnStep(value, steps));
            parameter = new AAX_CParameter<float>(id, AAX_CString(name.c_str()), value,
                                                  AAX_CLinearTaperDelegate<float, 0>(0.0f, 1.0f),
                                                  CPluginTextDisplay(*mFakeHost, index), info.automatable);
            if (steps > 0) {
                parameter->SetNumberOfSteps(static_cast<uint32_t>(steps) + 1);
                parameter->SetType(AAX_eParameterType_Discrete);
            } else {
                parameter->SetNumberOfSteps(50);
            }
        } else {
            parameter = new AAX_CParameter<float>(id, AAX_CString(name.c_str()), value,
                                                  AAX_CLinearTaperDelegate<float, 0>(0.0f, 1.0f),
                                                  AAX_CNumberDisplayDelegate<float, 2, 0>(), true);
            parameter->SetNumberOfSteps(50);
        }
        mParameterManager.AddParameter(parameter);
        MV_LOG_AT("parameters", kLogDebug, "EffectInit", " Add Parameter id:", id, " name:", name,
                  " value:", value, " uid=", parameter->Identifier());
    }
    mFakeHost->Setup();
}

AAX_Result AAXWrapper_Parameters::ResetFieldData(AAX_CFieldIndex inFieldIndex, void* oData,
                                                 uint32_t inDataSize) const
{
    MV_LOG("parameters", kLogInfo, "ResetFieldData");
    if (inFieldIndex != kAlgField_PrivateData)
        return AAX_CEffectParameters::ResetFieldData(inFieldIndex, oData, inDataSize);
    // A block too small for the pointer would be overrun: refuse it.
    if (oData == nullptr || inDataSize < sizeof(const AAXWrapper_Parameters*))
        return AAX_ERROR_INVALID_ARGUMENT;
    std::memset(oData, 0, inDataSize);
    const AAXWrapper_Parameters* const self = this;
    std::memcpy(oData, &self, sizeof(self));
    return AAX_SUCCESS;
}

AAX_Result AAXWrapper_Parameters::UpdateParameterNormalizedValue(AAX_CParamID iParameterID, double iValue,
                                                                 AAX_EUpdateSource iSource)
{
    // A NaN or an infinity is no parameter value: it reaches neither the
    // plug-in nor the AAX parameter.
    if (!std::isfinite(iValue)) {
        MV_LOG("parameters", kLogWarning, "UpdateParameterNormalizedValue: ", iParameterID ? iParameterID : "(null)",
               " refused, not a finite value");
        return AAX_ERROR_INVALID_ARGUMENT;
    }
    double held = iValue;
    const bool masterBypass = iParameterID != nullptr && std::strcmp(iParameterID, kMasterBypassID) == 0;
    if (masterBypass && mBypassIndex >= 0)
        CallFakeHost("UpdateParameterNormalizedValue", [&] { ForwardMasterBypass(iValue); });
    if (mFakeHost != nullptr && iParameterID != nullptr && !masterBypass) {
        CallFakeHost("UpdateParameterNormalizedValue", [&] { held = ForwardParameterChange(iParameterID, iValue); });
    }
    return AAX_CEffectParameters::UpdateParameterNormalizedValue(iParameterID, held, iSource);
}

double AAXWrapper_Parameters::ForwardParameterChange(AAX_CParamID iParameterID, double iValue)
{
    if (IsStandard())
        return ForwardChangeOnce(iParameterID, iValue);
    const int index = std::atoi(iParameterID);
    const double currentValue = ClassicDefault(index);
    // -1.0 is the plug-in's way of saying "do not drive this one".
    // Written as !(==) so that a NaN on either side counts as a change.
    if (!(currentValue == iValue) && currentValue != -1.0) {
        MV_LOG_AT("parameters", kLogDebug, "UpdateParameterNormalizedValue", " Update parameter ",
                  index >= 0 && static_cast<size_t>(index) < mClassicNames.size() ? mClassicNames[static_cast<size_t>(index)]
                                                                                    : std::string(),
                  " from ", static_cast<float>(currentValue), " to ", iValue);
        mFakeHost->AddInputChangeForGUI(index, iValue);
        mFakeHost->AddInputChangeForProcessing(index, iValue);
    }
    return iValue;
}

// The switch is on or off; the echo of what the plug-in itself set ends here.
void AAXWrapper_Parameters::ForwardMasterBypass(double value)
{
    const double on = value >= 0.5 ? 1.0 : 0.0;
    std::atomic<double>& last = mLastValues[static_cast<size_t>(mBypassIndex)];
    if (last.load(std::memory_order_relaxed) == on)
        return;
    last.store(on, std::memory_order_relaxed);
    mFakeHost->AddInputChangeForGUI(mBypassIndex, on);
    mFakeHost->AddInputChangeForProcessing(mBypassIndex, on);
}

// The plug-in's bypass as it holds it (after a restore, or its own edit)
// moves the master bypass, without sending it back.
void AAXWrapper_Parameters::ReadPluginBypass()
{
    if (mBypassIndex < 0)
        return;
    const std::optional<double> read = mFakeHost->GetParameterValue(mBypassIndex);
    if (!read || !std::isfinite(*read))
        return;
    const double on = *read >= 0.5 ? 1.0 : 0.0;
    double current = 0.0;
    if (GetParameterNormalizedValue(kMasterBypassID, &current) == AAX_SUCCESS && current == on)
        return;
    mLastValues[static_cast<size_t>(mBypassIndex)].store(on, std::memory_order_relaxed);
    AAX_CEffectParameters::UpdateParameterNormalizedValue(kMasterBypassID, on, AAX_eUpdateSource_Unspecified);
}

// STANDARD: compared with the last value that crossed, never with what the
// plug-in calls its default. Once sent, the value the plug-in holds (a switch
// or a choice snaps the host's value) is what the AAX parameter keeps, so
// that the parameter chunk saves what a restore will find.
double AAXWrapper_Parameters::ForwardChangeOnce(AAX_CParamID iParameterID, double iValue)
{
    uint32_t tag = 0;
    if (!ParseTag(iParameterID, tag))
        return iValue;
    const auto found = mIndexByTag.find(tag);
    if (found == mIndexByTag.end())
        return iValue;
    const int index = found->second;
    if (mReadOnly[static_cast<size_t>(index)]) {
        // Only the plug-in moves it; the host's value does not reach it.
        const std::optional<double> read = mFakeHost->GetParameterValue(index);
        return read && std::isfinite(*read) ? *read : mLastValues[static_cast<size_t>(index)].load();
    }
    // A discrete parameter is sent only its own values.
    iValue = OnStep(iValue, mSteps[static_cast<size_t>(index)]);
    std::atomic<double>& last = mLastValues[static_cast<size_t>(index)];
    const double previous = last.load(std::memory_order_relaxed);
    // The host's echo of a value the plug-in itself just set ends here. The
    // AAX parameters hold single precision, so that is what "same" means.
    if (static_cast<float>(previous) == static_cast<float>(iValue))
        return iValue;
    MV_LOG_AT("parameters", kLogDebug, "UpdateParameterNormalizedValue", " Update parameter ", iParameterID,
              " from ", previous, " to ", iValue);
    last.store(iValue, std::memory_order_relaxed);
    mFakeHost->AddInputChangeForGUI(index, iValue);
    mFakeHost->AddInputChangeForProcessing(index, iValue);
    mHeldValuesStale.store(true, std::memory_order_relaxed);
    const std::optional<double> read = mFakeHost->GetParameterValue(index);
    const double held = HeldOnStep(index, read ? *read : iValue);
    if (!std::isfinite(held) || static_cast<float>(held) == static_cast<float>(iValue))
        return iValue;
    // A value the plug-in only rounds (through its own units and single
    // precision; a step is never that fine) stays the host's when the AAX
    // values are the plug-in's whole state: sent back on a restore, the
    // rounded one would not give the same sound.
    constexpr double kRoundingOnly = 1e-6;
    if (std::fabs(held - iValue) <= kRoundingOnly && !mFakeHost->StateHoldsParameterValues())
        return iValue;
    MV_LOG_AT("parameters", kLogDebug, "UpdateParameterNormalizedValue", " parameter ", iParameterID, " holds ", held,
              " for ", iValue);
    // The host's echo of the held value is then no change.
    last.store(held, std::memory_order_relaxed);
    return held;
}

// After the plug-in's own state was restored: the AAX parameters take the
// plug-in's values, so that a state whose parameter chunk is missing or
// stale cannot leave two different truths behind (nothing goes back to the
// plug-in: the base update only moves the AAX side).
void AAXWrapper_Parameters::ReadParametersFromPlugin()
{
    ReadPluginBypass();
    for (const auto& published : mPublished) {
        const std::optional<double> read = mFakeHost->GetParameterValue(published.first);
        if (!read || !std::isfinite(*read))
            continue;
        const double value = HeldOnStep(published.first, *read);
        double current = 0.0;
        if (GetParameterNormalizedValue(published.second.c_str(), &current) == AAX_SUCCESS &&
            static_cast<float>(current) == static_cast<float>(value))
            continue;
        AAX_CEffectParameters::UpdateParameterNormalizedValue(published.second.c_str(), value,
                                                              AAX_eUpdateSource_Chunk);
        if (IsStandard() && static_cast<size_t>(published.first) < mLastValueCount)
            mLastValues[static_cast<size_t>(published.first)].store(value, std::memory_order_relaxed);
    }
}

// A plug-in whose controls are linked (a position as angles and as
// coordinates) moves other parameters when one is set, and not every one
// says so. Read once per timer call or before the parameter chunk is saved,
// not per change: a plug-in may have thousands of parameters.
void AAXWrapper_Parameters::SyncHeldValues()
{
    if (!IsStandard() || mFakeHost == nullptr || !mHeldValuesStale.exchange(false, std::memory_order_relaxed))
        return;
    constexpr double kRoundingOnly = 1e-6;  // as for the parameter just set
    const bool keepRounding = !mFakeHost->StateHoldsParameterValues();
    ReadPluginBypass();
    for (const auto& published : mPublished) {
        const std::optional<double> read = mFakeHost->GetParameterValue(published.first);
        const double value = read ? HeldOnStep(published.first, *read) : 0.0;
        double current = 0.0;
        if (!read || !std::isfinite(value) ||
            GetParameterNormalizedValue(published.second.c_str(), &current) != AAX_SUCCESS ||
            static_cast<float>(current) == static_cast<float>(value) ||
            (keepRounding && std::fabs(current - value) <= kRoundingOnly))
            continue;
        AAX_CEffectParameters::UpdateParameterNormalizedValue(published.second.c_str(), value,
                                                              AAX_eUpdateSource_Unspecified);
        if (static_cast<size_t>(published.first) < mLastValueCount)
            mLastValues[static_cast<size_t>(published.first)].store(value, std::memory_order_relaxed);
    }
}

namespace {
struct STagText {
    // Unsigned, as parameter identifiers are made; the same text as "%d" for
    // every index and identifier below 2^31.
    explicit STagText(uint32_t tag) { std::snprintf(text, sizeof(text), "%u", static_cast<unsigned>(tag)); }
    char text[32];
};
}  // namespace

bool AAXWrapper_Parameters::IsPluginBypass(uint32_t tag) const
{
    return mBypassIndex >= 0 && tag == mBypassTag;
}

void AAXWrapper_Parameters::OnPluginBeginEdit(uint32_t tag)
{
    TouchParameter(IsPluginBypass(tag) ? kMasterBypassID : STagText(tag).text);
}

void AAXWrapper_Parameters::OnPluginEndEdit(uint32_t tag)
{
    ReleaseParameter(IsPluginBypass(tag) ? kMasterBypassID : STagText(tag).text);
}

void AAXWrapper_Parameters::OnPluginEdit(uint32_t tag, double value)
{
    if (IsPluginBypass(tag)) {
        const double on = value >= 0.5 ? 1.0 : 0.0;
        mLastValues[static_cast<size_t>(mBypassIndex)].store(on, std::memory_order_relaxed);
        SetParameterNormalizedValue(kMasterBypassID, on);
        return;
    }
    // STANDARD: heard first, so that the host's echo of the value is not
    // sent back to the plug-in.
    if (IsStandard()) {
        const auto found = mIndexByTag.find(tag);
        if (found != mIndexByTag.end())
            mLastValues[static_cast<size_t>(found->second)].store(value, std::memory_order_relaxed);
    }
    SetParameterNormalizedValue(STagText(tag).text, value);
}

void AAXWrapper_Parameters::OnPluginValueMoved(uint32_t tag, double value)
{
    if (IsPluginBypass(tag)) {
        OnPluginEdit(tag, value);
        return;
    }
    const STagText id(tag);
    double current = 0.0;
    if (GetParameterNormalizedValue(id.text, &current) != AAX_SUCCESS || current == value)
        return;
    OnPluginEdit(tag, value);
}

// STANDARD: what a discrete AAX parameter shows of the value the plug-in
// holds (on its steps, whatever the plug-in keeps between them).
double AAXWrapper_Parameters::HeldOnStep(int index, double value) const
{
    if (!IsStandard() || index < 0 || static_cast<size_t>(index) >= mSteps.size())
        return value;
    return OnStep(value, mSteps[static_cast<size_t>(index)]);
}

double AAXWrapper_Parameters::ClassicDefault(int index)
{
    const double known = index >= 0 && static_cast<size_t>(index) < mClassicDefaults.size()
                             ? mClassicDefaults[static_cast<size_t>(index)]
                             : kReadDefaultAgain;
    if (known != kReadDefaultAgain)
        return known;
    // Where the default is the present value (VST 2), that value as the
    // plug-in reports it, in single precision as it always was.
    const std::optional<double> present = mFakeHost->GetParameterValue(index);
    return present ? static_cast<double>(static_cast<float>(*present)) : 0.0;
}

AAX_Result AAXWrapper_Parameters::TimerWakeup()
{
    if (mFakeHost != nullptr) {
        mFakeHost->ApplyPendingSettings();
        CallFakeHost("TimerWakeup", [&] { SyncHeldValues(); });
        ReportLatency();
        ReportTail();
    }
    return AAX_CEffectParameters::TimerWakeup();
}

void AAXWrapper_Parameters::ReportLatency()
{
    if (mFakeHost == nullptr || !IsStandard())
        return;
    const int32_t latency = mFakeHost->GetLatency();
    if (latency == mReportedLatency)
        return;
    // Made here, off the audio thread; swapped with the gate closed, so no
    // bypassed buffer is inside the old line when it goes.
    std::unique_ptr<CBypassDelay> line = latency > 0 ? std::make_unique<CBypassDelay>(latency) : nullptr;
    const bool copies = !BypassesItself();
    if (line != nullptr && copies)
        mBypassWay.store(EBypassWay::kDelayedCopy, std::memory_order_relaxed);
    {
        Morvane::CProcessGateClosed closed(mProcessGate);
        mBypassDelay.swap(line);
    }
    if (mBypassDelay == nullptr && copies)
        mBypassWay.store(EBypassWay::kCopy, std::memory_order_relaxed);
    mReportedLatency = latency;
    MV_LOG("fakehost", kLogInfo, "Latency ", latency, " samples");
    if (AAX_IController* controller = Controller())
        controller->SetSignalLatency(latency);
}

void AAXWrapper_Parameters::ReportTail()
{
    if (mFakeHost == nullptr || !IsStandard())
        return;
    const std::string tail = TailText(mFakeHost->GetTail());
    if (tail == mReportedTail)
        return;
    mReportedTail = tail;
    if (tail.empty())
        MV_LOG("fakehost", kLogInfo, "Tail not declared");
    else if (tail == "infinite")
        MV_LOG("fakehost", kLogInfo, "Tail infinite");
    else
        MV_LOG("fakehost", kLogInfo, "Tail ", tail, " samples");
}

AAX_Result AAXWrapper_Parameters::NotificationReceived(AAX_CTypeID inNotificationType, const void* inNotificationData,
                                                       uint32_t inNotificationDataSize)
{
    if (inNotificationType == kWrapperNotificationOffline && mFakeHost != nullptr) {
        // A payload too short for its word reads as real time.
        int32_t word = 0;
        if (inNotificationData != nullptr && inNotificationDataSize >= sizeof(word))
            std::memcpy(&word, inNotificationData, sizeof(word));
        MV_LOG("fakehost", kLogInfo, "Rendering ", word != 0 ? "offline" : "in real time");
        mFakeHost->SetOffline(word != 0);
    }
    return AAX_CEffectParameters::NotificationReceived(inNotificationType, inNotificationData, inNotificationDataSize);
}

namespace {
// A plug-in's own text in a key=value line: a line break would start a key.
std::string OneLine(std::string text)
{
    for (char& c : text)
        if (c == '\n' || c == '\r')
            c = ' ';
    return text;
}

std::string RouteTarget(const SOutputRoute& route)
{
    if (route.stem == SOutputRoute::kMainOutput)
        return "main";
    if (route.stem >= 0)
        return "stem " + std::to_string(route.stem);
    return "dropped";
}
}  // namespace

std::string AAXWrapper_Parameters::TailText(const SPluginTail& tail)
{
    if (!tail.known)
        return std::string();
    return tail.infinite ? std::string("infinite") : std::to_string(tail.samples);
}

std::string AAXWrapper_Parameters::StatusText() const
{
    std::string text = "mode=" + HOST_MODE + "\nloaded=" + (mLoadError.empty() ? "1" : "0") + "\nplugin=" +
                       mPluginPath + "\nerror=" + mLoadError + "\nvendor=" + OneLine(mPluginVendor) +
                       "\nversion=" + OneLine(mPluginVersion) + "\nbypass=" +
                       (BypassesItself() ? "plugin" : "copy") + "\n";
    if (mFakeHost == nullptr)
        return text + "tail=\n";
    text += "tail=" + TailText(mFakeHost->GetTail()) + "\n";
    for (const SOutputRoute& route : mFakeHost->GetOutputRoutes())
        text += "output=" + std::to_string(route.bus) + "|" + std::to_string(route.channels) + "|" +
                RouteTarget(route) + "|" + OneLine(route.name) + "\n";
    return text;
}

namespace {
// A plug-in's own text in one field of a tab-separated line.
std::string OneField(std::string text)
{
    for (char& c : text)
        if (c == '\n' || c == '\r' || c == '\t')
            c = ' ';
    return text;
}
}  // namespace

std::string AAXWrapper_Parameters::ParameterNotesText() const
{
    std::string text;
    for (const SParameterNote& note : mNotes)
        text += note.id + "\t" + OneField(note.units) + "\t" + OneField(note.group) + "\n";
    return text;
}

AAX_Result AAXWrapper_Parameters::GetCustomData(AAX_CTypeID iDataBlockID, uint32_t inDataSize, void* oData,
                                                uint32_t* oDataWritten) const
{
    if (iDataBlockID != kWrapperStatusBlockID && iDataBlockID != kWrapperParameterNotesBlockID)
        return AAX_CEffectParameters::GetCustomData(iDataBlockID, inDataSize, oData, oDataWritten);
    if (oDataWritten == nullptr || (oData == nullptr && inDataSize > 0))
        return AAX_ERROR_NULL_ARGUMENT;
    const std::string text = iDataBlockID == kWrapperStatusBlockID ? StatusText() : ParameterNotesText();
    if (inDataSize < text.size()) {
        *oDataWritten = 0;
        return AAX_ERROR_ARGUMENT_BUFFER_OVERFLOW;
    }
    std::memcpy(oData, text.data(), text.size());
    *oDataWritten = static_cast<uint32_t>(text.size());
    return AAX_SUCCESS;
}

AAXWrapper_Parameters::~AAXWrapper_Parameters()
{
    MV_LOG_AT("parameters", kLogInfo, "~AAXWrapper_Parameters", "");
    if (mFakeHost != nullptr) {
        mFakeHost->Quit();
        MV_LOG_AT("parameters", kLogInfo, "~AAXWrapper_Parameters", " QUIT OK");
        mFakeHost.reset();
        MV_LOG_AT("parameters", kLogInfo, "~AAXWrapper_Parameters", " DELETE  OK");
        MV_LOG_AT("parameters", kLogInfo, "~AAXWrapper_Parameters", " NULL  OK");
    }
    // The last instance tears the log down; the next log call builds it
    // afresh. (A departure from tearing it down with every instance, which
    // left other instances' audio threads logging into a destroyed log.)
    std::lock_guard<std::mutex> lock(gInstancesMutex);
    if (--gLiveInstances == 0)
        CSingleton<CLog>::destroyInstance();
}
