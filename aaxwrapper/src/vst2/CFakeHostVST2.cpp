// Loading the VST 2 effect, its life cycle and its description.
#include "vst2/CFakeHostVST2.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>

#include "AAX_CEffectParameters.h"
#include "AAX_IController.h"
#include "fakehost/FakeHostFactory.h"
#include "logger/CLog.h"
#include "vst2/VendorVersion.h"

std::unique_ptr<IFakeHost> CreateFakeHostVST2(AAX_CEffectParameters& owner, const std::string& path, EHostMode mode)
{
    return std::make_unique<CFakeHostVST2>(owner, path, mode);
}

CFakeHostVST2::CFakeHostVST2(AAX_CEffectParameters& owner, const std::string& path, EHostMode mode)
    : IFakeHost(owner, mode)
{
    MV_LOG("bundle", kLogInfo, "HOST> Load library...");
    CVST2PluginLoader::EntryFunction entry = loader.loadLibrary(path.c_str());
    if (!entry) {
        MV_LOG("bundle", kLogError, "VST Plugin main entry not found (", path, ")");
        mLoadError = path.empty() ? std::string("no plug-in file")
                                  : "no VST 2 entry point in " + path + " (" + loader.lastError() + ")";
        return;
    }
    mPath = path;
    // STANDARD creates the effect in Init, once the host's rate is known:
    // plug-ins ask for it from inside their entry function.
    if (IsStandard())
        mEntry = entry;
    else
        CreateEffect(entry);
}

thread_local CFakeHostVST2* CFakeHostVST2::sCreating = nullptr;

void CFakeHostVST2::CreateEffect(const CVST2PluginLoader::EntryFunction& entry)
{
    MV_LOG("bundle", kLogDebug, "HOST> Create effect in progress...");
    sCreating = this;
    AEffect* created = entry(&CFakeHostVST2::staticHostCallback);
    sCreating = nullptr;
    // A record without the magic is not an effect we can talk to.
    if (created != nullptr && created->magic == kEffectMagic && created->dispatcher != nullptr) {
        effect = created;
        MV_LOG("bundle", kLogNotice, "Audio Effect ok");
    } else {
        MV_LOG("bundle", kLogError, "Failed to create effect instance (", mPath, ")");
        mLoadError = "the entry point of " + mPath + " created no VST 2 effect";
    }
}

CFakeHostVST2::~CFakeHostVST2()
{
    MV_LOG("bundle", kLogInfo, "HOST> Unload library...");
    effect = nullptr;
    // Normally freed by Quit; an owner that skipped Quit must not leak it.
    delete midiEvent;
    midiEvent = nullptr;
}

VstIntPtr CFakeHostVST2::Dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt)
{
    // Some plug-ins let C++ exceptions escape their dispatcher; one must not
    // travel on into the AAX host.
    try {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    } catch (const std::exception& failure) {
        MV_LOG("fakehost", kLogError, "VST2 - the plug-in threw on opcode ", opcode, ": ", failure.what());
    } catch (...) {
        MV_LOG("fakehost", kLogError, "VST2 - the plug-in threw on opcode ", opcode);
    }
    return 0;
}

bool CFakeHostVST2::DoInit()
{
    if (IsStandard() && effect == nullptr && mEntry) {
        mSampleRate = HostSampleRate(mSampleRate);
        CreateEffect(mEntry);
        mEntry = nullptr;
    }
    if (effect == nullptr)
        return false;
    MV_LOG("bundle", kLogDebug, "HOST> Create effect done");
    effect->user = this;
    Dispatch(effOpen);
    if (IsStandard()) {
        // Rate and block size before the first resume, as hosts do: plug-ins
        // read them when resumed.
        Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(mSampleRate));
        Dispatch(effSetBlockSize, 0, kStandardMaxBlock);
    }
    Dispatch(effMainsChanged, 0, 1);

    ELogLevel bundleLevel = kLogAssert;
    if (CSingleton<CLog>::getInstance()->getCategoryLevel("bundle", bundleLevel) && bundleLevel == kLogDebug) {
        if (!loader.checkPlatform())
            MV_LOG("fakehost", kLogError, "Platform verification failed! Please check your Compiler Settings!");
        loader.displayPluginsInfo(effect);
    }

    mChannelsFit = effect->numInputs <= kHostInputChannels && effect->numOutputs <= kHostOutputChannels;
    if (!mChannelsFit && IsStandard())
        MakeWideChannels();
    else if (!mChannelsFit)
        MV_LOG("fakehost", kLogError, "VST2 - the plug-in has ", effect->numInputs, " inputs and ",
               effect->numOutputs, " outputs, more than the ", kHostInputChannels, " and ", kHostOutputChannels,
               " the host provides: it will output silence");

    if (IsStandard()) {
        // The plug-in starts on its own initial program.
        MakeEventList();
    } else {
        Dispatch(effSetProgram, 0, 0);
    }
    if (midiEvent == nullptr)
        midiEvent = new VstMidiEvent();
    std::memset(midiEvent, 0, sizeof(VstMidiEvent));
    return true;
}

void CFakeHostVST2::MakeWideChannels()
{
    mScratch.clear();
    mWideInputs.clear();
    mWideOutputs.clear();
    if (effect->numInputs > kMaxWideChannels || effect->numOutputs > kMaxWideChannels) {
        MV_LOG("fakehost", kLogError, "VST2 - the plug-in has ", effect->numInputs, " inputs and ",
               effect->numOutputs, " outputs, more than the ", kMaxWideChannels,
               " a wrapper gives: it will output silence");
        return;
    }
    const int inputs = std::max(effect->numInputs, 0);
    const int outputs = std::max(effect->numOutputs, 0);
    const int extraInputs = std::max(inputs - kHostInputChannels, 0);
    const int extraOutputs = std::max(outputs - kHostOutputChannels, 0);
    MV_LOG("fakehost", kLogNotice, "VST2 - the plug-in has ", inputs, " inputs and ", outputs, " outputs: ",
           extraInputs, " and ", extraOutputs, " beyond the host's get scratch buffers");
    const size_t block = static_cast<size_t>(kStandardMaxBlock);
    mScratch.assign(static_cast<size_t>(extraInputs + extraOutputs) * block, 0.0f);
    // Never empty, so that its size says the channels are made.
    mWideInputs.assign(static_cast<size_t>(std::max(inputs, 1)), nullptr);
    mWideOutputs.assign(static_cast<size_t>(std::max(outputs, 1)), nullptr);
    float* next = mScratch.data();
    for (int c = kHostInputChannels; c < inputs; ++c, next += block)
        mWideInputs[static_cast<size_t>(c)] = next;
    for (int c = kHostOutputChannels; c < outputs; ++c, next += block)
        mWideOutputs[static_cast<size_t>(c)] = next;
}

void CFakeHostVST2::DoSetup()
{
    if (!IsStandard() || effect == nullptr)
        return;
    Configure(HostSampleRate(mSampleRate));
}

void CFakeHostVST2::DoApplyPendingSettings()
{
    const double rate = mPendingRate.exchange(0.0);
    if (IsStandard() && effect != nullptr && rate > 0.0)
        Configure(rate);
}

// Main thread: suspend, tell, resume, with processing held off meanwhile.
void CFakeHostVST2::Configure(double sampleRate)
{
    if (!(sampleRate > 0.0) || sampleRate == mSampleRate)
        return;
    Morvane::CProcessGateClosed closed(mGate);
    MV_LOG("fakehost", kLogInfo, "VST2 - sample rate ", mSampleRate, " -> ", sampleRate);
    mSampleRate = sampleRate;
    Dispatch(effMainsChanged, 0, 0);
    Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRate));
    Dispatch(effSetBlockSize, 0, kStandardMaxBlock);
    Dispatch(effMainsChanged, 0, 1);
}

void CFakeHostVST2::DoQuit()
{
    delete midiEvent;
    midiEvent = nullptr;
    if (effect == nullptr)
        return;
    MV_LOG_AT("fakehost", kLogInfo, "Quit");
    Morvane::CProcessGateClosed closed(mGate);
    Dispatch(effMainsChanged, 0, 0);
    Dispatch(effClose);
    // effClose makes the plug-in free its record: nothing may reach it now.
    effect = nullptr;
    mBlock = nullptr;
    mMidiOut = nullptr;
}

std::string CFakeHostVST2::DoGetPluginVendor()
{
    if (effect == nullptr)
        return std::string();
    char vendor[kTextBufferSize + 1] = {};
    Dispatch(effGetVendorString, 0, 0, vendor);
    return std::string(vendor);
}

std::string CFakeHostVST2::DoGetPluginVersion()
{
    if (effect == nullptr)
        return std::string();
    const VstInt32 version = static_cast<VstInt32>(Dispatch(effGetVendorVersion));
    MV_LOG("fakehost", kLogDebug, "Vendor version = _", version, "_");
    return Morvane::FormatVendorVersion(version);
}

int32_t CFakeHostVST2::DoGetPluginProductUniqueID()
{
    return effect != nullptr ? effect->uniqueID : -1;
}

