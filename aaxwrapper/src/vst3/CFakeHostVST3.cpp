// Loading the VST 3 bundle, choosing its audio class, and the queries the
// front end makes about the plug-in and its parameters.
#include "vst3/CFakeHostVST3.h"

#include <cstring>
#include <exception>

#include "AAX_CEffectParameters.h"
#include "AAX_IController.h"
#include "fakehost/FakeHostFactory.h"
#include "ThreadRole.h"
#include "logger/CLog.h"
#include "sharedobject/SharedObject.h"
#include "vst3/CPlugFrame.h"
#include "vst3/CVST3Loader.h"
#include "vst3/CVST3Validator.h"

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

constexpr const char* kAudioModuleClass = "Audio Module Class";
// PLUGIN_API is empty outside Windows.
using FactoryEntryFn = IPluginFactory*();
}  // namespace

IFakeHost* CreateFakeHostVST3(AAX_CEffectParameters& owner, std::string& path, EHostMode mode)
{
    return new CFakeHostVST3(owner, path, mode);
}

CFakeHostVST3::CFakeHostVST3(AAX_CEffectParameters& owner, std::string& path, EHostMode mode)
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
        QuitGUI();
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

bool CFakeHostVST3::Init()
{
    MV_MAIN_THREAD("CFakeHostVST3::Init");
    if (mFactory && !mVst3Loader) {
        // The loader gives back one factory reference once it is built: the
        // one taken at construction, or a new one for a later loader.
        if (!mLoaderFactoryRef)
            mFactory->addRef();
        mLoaderFactoryRef = false;
        mVst3Loader = new CVST3Loader(mFactory, mClassInfo.cid, mEffectParameters, mHostMode);
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

bool CFakeHostVST3::IsParameterPublished(int index)
{
    return index >= 0 && static_cast<size_t>(index) < mParamHidden.size() && !mParamHidden[static_cast<size_t>(index)];
}

bool CFakeHostVST3::GetParameterValue(int index, double& outValue)
{
    if (!mVst3Loader || !mVst3Loader->getController() || index < 0 ||
        static_cast<size_t>(index) >= mParamIds.size())
        return false;
    auto lock = mVst3Loader->lockControllerAccess();
    outValue = mVst3Loader->getController()->getParamNormalized(ParamIdOf(index));
    return true;
}

uint32_t CFakeHostVST3::GetParameterTag(int index)
{
    return ParamIdOf(index);
}

void CFakeHostVST3::Setup()
{
    MV_MAIN_THREAD("CFakeHostVST3::Setup");
    if (!mVst3Loader)
        return;
    if (!IsStandard()) {
        mVst3Loader->setupProcessing();
        return;
    }
    mVst3Loader->activate(HostSampleRate(44100.0));
}

void CFakeHostVST3::ApplyPendingSettings()
{
    MV_MAIN_THREAD("CFakeHostVST3::ApplyPendingSettings");
    const double rate = mPendingRate.exchange(0.0);
    if (IsStandard() && mVst3Loader && rate > 0.0)
        mVst3Loader->activate(rate);
}

void CFakeHostVST3::Quit()
{
    MV_MAIN_THREAD("CFakeHostVST3::Quit");
    MV_LOG("fakehost", kLogInfo, "Quit");
    QuitGUI();
    delete mVst3Loader;
    mVst3Loader = nullptr;
}

std::string CFakeHostVST3::GetPluginVendor()
{
    if (!mFactory)
        return {};
    PFactoryInfo info;
    if (mFactory->getFactoryInfo(&info) != kResultOk)
        return {};
    return std::string(info.vendor, strnlen(info.vendor, PFactoryInfo::kNameSize));
}

std::string CFakeHostVST3::GetPluginVersion()
{
    if (!mFactory)
        return {};
    return std::string(mClassInfo2.version, strnlen(mClassInfo2.version, PClassInfo2::kVersionSize));
}

int CFakeHostVST3::GetParameterCount()
{
    MV_MAIN_THREAD("CFakeHostVST3::GetParameterCount");
    if (!mVst3Loader || !mVst3Loader->getController())
        return -1;
    auto lock = mVst3Loader->lockControllerAccess();
    return mVst3Loader->getController()->getParameterCount();
}

bool CFakeHostVST3::GetParameterInfo(int inParamIndex, std::string& outName, float& outDefault)
{
    MV_MAIN_THREAD("CFakeHostVST3::GetParameterInfo");
    if (!mVst3Loader || !mVst3Loader->getController())
        return false;
    ParameterInfo info{};
    {
        auto lock = mVst3Loader->lockControllerAccess();
        IEditController* controller = mVst3Loader->getController();
        // Some plug-ins index a container unchecked: never ask out of range.
        if (inParamIndex < 0 || inParamIndex >= controller->getParameterCount() ||
            controller->getParameterInfo(inParamIndex, info) != kResultOk)
            return false;
    }
    outDefault = static_cast<float>(info.defaultNormalizedValue);
    if (!utf16ToUtf8(info.title, sizeof(info.title) / sizeof(info.title[0]), outName))
        outName.clear();
    // Only CLASSIC requires identifiers to equal indices; STANDARD maps them.
    if (!IsStandard()) {
        MV_COND_ASSERT("fakehost", inParamIndex == static_cast<int>(info.id), "inParamIndex == info.id",
                       " inParamIndex=", inParamIndex, " info.id=", info.id);
    }
    return (info.flags & (ParameterInfo::kIsReadOnly | ParameterInfo::kIsHidden)) == 0;
}

void CFakeHostVST3::AddInputChangeForProcessing(int index, double value)
{
    MV_MAIN_THREAD("CFakeHostVST3::AddInputChangeForProcessing");
    if (!mVst3Loader || index < 0)
        return;
    mVst3Loader->addParameterChange(ParamIdOf(index), value, 0);
}

void CFakeHostVST3::AddInputChangeForGUI(int index, double value)
{
    MV_MAIN_THREAD("CFakeHostVST3::AddInputChangeForGUI");
    if (!mVst3Loader || !mVst3Loader->getController() || index < 0)
        return;
    auto lock = mVst3Loader->lockControllerAccess();
    mVst3Loader->getController()->setParamNormalized(ParamIdOf(index), value);
}
