// Loading the VST 3 bundle, choosing its audio class, the plug-in's life
// cycle and its description.
#include "vst3/CFakeHostVST3.h"

#include <cstring>
#include <exception>

#include "AAX_CEffectParameters.h"
#include "fakehost/FakeHostFactory.h"
#include "logger/CLog.h"
#include "sharedobject/SharedObject.h"
#include "vst3/CPlugFrame.h"
#include "vst3/CVST3Loader.h"
#include "vst3/CVST3Validator.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
constexpr const char* kAudioModuleClass = "Audio Module Class";
// PLUGIN_API is empty outside Windows.
using FactoryEntryFn = IPluginFactory*();
}  // namespace

std::unique_ptr<IFakeHost> CreateFakeHostVST3(AAX_CEffectParameters& owner, const std::string& path, EHostMode mode)
{
    return std::make_unique<CFakeHostVST3>(owner, path, mode);
}

CFakeHostVST3::CFakeHostVST3(AAX_CEffectParameters& owner, const std::string& path, EHostMode mode)
    : IFakeHost(owner, mode)
{
    // Both class records start zeroed (their constructors clear them).

    ELogLevel bundleLevel = kLogAssert;
    if (CSingleton<CLog>::getInstance()->getCategoryLevel("bundle", bundleLevel) && bundleLevel < kLogInfo)
        Morvane::vst3::RunValidator(path);

    MV_LOG("bundle", kLogInfo, "Load Bundle ", path);
    mModule = std::make_unique<Morvane::SharedObject>();
    if (mModule->OpenBundle(path)) {
        MV_LOG("process", kLogNotice, "Loaded.");
    } else {
        MV_LOG("process", kLogNotice, "Library not found - Path = ", path);
        mLoadError = path.empty() ? std::string("no plug-in file") : path + ": " + mModule->lastError;
    }

    std::function<FactoryEntryFn> getFactory = mModule->GetFunction<FactoryEntryFn>("GetPluginFactory", true);
    if (getFactory) {
        mFactory = getFactory();
    } else {
        MV_LOG_AT("bundle", kLogError, "CFakeHostVST3", "Invalid Module ", path);
        if (mLoadError.empty())
            mLoadError = path + " exports no GetPluginFactory";
    }
    if (!mFactory) {
        if (mLoadError.empty())
            mLoadError = "GetPluginFactory of " + path + " gave no factory";
        return;
    }

    ChooseAudioClass();
    mFactory->addRef();
    mLoaderFactoryRef = true;
}

void CFakeHostVST3::ChooseAudioClass()
{
    // Without an audio class, the last class read stays chosen on purpose.
    const int32 count = mFactory->countClasses();
    for (int32 i = 0; i < count; ++i) {
        if (mFactory->getClassInfo(i, &mClassInfo) != kResultOk)
            continue;
        if (std::strncmp(mClassInfo.category, kAudioModuleClass, PClassInfo::kCategorySize) == 0)
            break;
    }

    IPluginFactory2* factory2 = nullptr;
    if (mFactory->queryInterface(IPluginFactory2::iid, reinterpret_cast<void**>(&factory2)) == kResultOk && factory2) {
        for (int32 i = 0; i < factory2->countClasses(); ++i) {
            PClassInfo2 info;
            if (factory2->getClassInfo2(i, &info) == kResultOk &&
                std::strncmp(info.category, kAudioModuleClass, PClassInfo::kCategorySize) == 0) {
                mClassInfo2 = info;
                break;
            }
        }
        factory2->release();
    } else {
        MV_LOG("fakehost", kLogInfo, "VST3 cast to IPluginFactory2 failed...");
    }
}

CFakeHostVST3::~CFakeHostVST3()
{
    // The editor cannot outlive the controller it came from. A failed
    // assertion may throw; a destructor must not let it through.
    try {
        DoQuitGUI();
    } catch (const std::exception&) {
    }
    delete mVst3Loader;
    mVst3Loader = nullptr;
    if (mFactory && mLoaderFactoryRef)
        mFactory->release();
    if (mFactory) {
        mFactory->release();
        mFactory = nullptr;
    }
    MV_LOG("fakehost", kLogDebug, "~CFakeHostVST3");
    if (mModule)
        mModule->Close();
}

bool CFakeHostVST3::DoInit()
{
    if (mFactory && !mVst3Loader) {
        // The loader gives back one factory reference once it is built: the
        // one taken at construction, or a new one for a later loader.
        if (!mLoaderFactoryRef)
            mFactory->addRef();
        mLoaderFactoryRef = false;
        mVst3Loader = new CVST3Loader(mFactory, mClassInfo.cid, GetHostMode());
        mVst3Loader->setEditListener(mEditListener);
    }
    MV_COND_ASSERT("fakehost", mVst3Loader != nullptr, "mVst3Loader!=0");
    if (!mVst3Loader)
        return false;
    if (!mVst3Loader->getLoadError().empty()) {
        mLoadError = mVst3Loader->getLoadError();
        return false;
    }
    ReadParameterIds();
    return mVst3Loader->getProcessor() != nullptr;
}

void CFakeHostVST3::DoSetup()
{
    if (!mVst3Loader)
        return;
    if (!IsStandard()) {
        // 44100 while there is no AAX controller to ask, as always.
        mVst3Loader->setupProcessing(HostSampleRate(0.0));
        return;
    }
    mVst3Loader->activate(HostSampleRate(44100.0));
}

void CFakeHostVST3::DoApplyPendingSettings()
{
    const double rate = mPendingRate.exchange(0.0);
    if (IsStandard() && mVst3Loader && rate > 0.0)
        mVst3Loader->activate(rate);
}

void CFakeHostVST3::DoSetOffline(bool offline)
{
    if (mVst3Loader)
        mVst3Loader->setOffline(offline);
}

int32_t CFakeHostVST3::DoGetLatency() { return mVst3Loader ? mVst3Loader->getLatency() : 0; }

SPluginTail CFakeHostVST3::DoGetTail()
{
    SPluginTail tail;
    IAudioProcessor* processor = mVst3Loader ? mVst3Loader->getProcessor() : nullptr;
    if (!processor)
        return tail;
    const uint32 samples = processor->getTailSamples();
    tail.known = true;
    tail.infinite = samples == kInfiniteTail;
    tail.samples = tail.infinite ? 0u : samples;
    return tail;
}

std::vector<SOutputRoute> CFakeHostVST3::DoGetOutputRoutes()
{
    return mVst3Loader ? mVst3Loader->getOutputRoutes() : std::vector<SOutputRoute>();
}

void CFakeHostVST3::DoQuit()
{
    MV_LOG("fakehost", kLogInfo, "Quit");
    DoQuitGUI();
    delete mVst3Loader;
    mVst3Loader = nullptr;
}

std::string CFakeHostVST3::DoGetPluginVendor()
{
    if (!mFactory)
        return {};
    PFactoryInfo info;
    if (mFactory->getFactoryInfo(&info) != kResultOk)
        return {};
    return std::string(info.vendor, strnlen(info.vendor, PFactoryInfo::kNameSize));
}

std::string CFakeHostVST3::DoGetPluginVersion()
{
    if (!mFactory)
        return {};
    return std::string(mClassInfo2.version, strnlen(mClassInfo2.version, PClassInfo2::kVersionSize));
}

