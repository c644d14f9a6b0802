#include "PluginSession.h"

#include "CrashReport.h"
#include "HostDescriptors.h"
#include "HostServices.h"
#include "ResultText.h"

namespace AAXHost {

CPluginSession::~CPluginSession()
{
    if (mStarted) {
        std::string ignored;
        Close(ignored);
    }
    if (mServices)
        mServices->Release();
}

bool CPluginSession::Open(const std::string& bundlePath, std::string& error)
{
    SetPhase("loading the library");
    if (!LoadBundle(bundlePath, mBundle, error))
        return false;
    const SBundleEntryPoints& e = mBundle.entry;

    uint64_t version = 0;
    ACFRESULT r = e.getSDKVersion(&version);
    if (r != ACF_OK) {
        error = "ACFGetSDKVersion failed with " + ResultText(r);
        return false;
    }
    mInfo.sdkVersion = version;

    SetPhase("ACFStartup");
    mServices = new CHostServices;
    r = e.startup(static_cast<AAX_IACFHostServices*>(mServices));
    if (r != ACF_OK) {
        error = "ACFStartup failed with " + ResultText(r);
        return false;
    }
    mStarted = true;

    SetPhase("ACFRegisterPlugin");
    auto* collection = new CHostCollection;
    IACFPluginDefinition* definition = nullptr;
    r = e.registerPlugin(static_cast<AAX_IACFCollection*>(collection), &definition);
    const SPluginInfo described = collection->Info();
    if (definition)
        definition->Release();
    collection->Release();
    if (r != ACF_OK) {
        error = "ACFRegisterPlugin failed with " + ResultText(r);
        return false;
    }
    if (!definition) {
        error = "ACFRegisterPlugin succeeded but handed back no plug-in definition";
        return false;
    }
    const uint64_t sdk = mInfo.sdkVersion;
    mInfo = described;
    mInfo.sdkVersion = sdk;
    if (mInfo.effects.empty()) {
        error = "the plug-in registered no effect";
        return false;
    }
    return true;
}

bool CPluginSession::Close(std::string& error)
{
    if (!mStarted)
        return true;
    mStarted = false;
    SetPhase("ACFShutdown");
    const ACFRESULT r = mBundle.entry.shutdown(static_cast<AAX_IACFHostServices*>(mServices));
    mCanUnload = mBundle.entry.canUnloadNow(static_cast<AAX_IACFHostServices*>(mServices));
    if (r != ACF_OK) {
        error = "ACFShutdown failed with " + ResultText(r);
        return false;
    }
    if (mCanUnload != 0) {
        error = "ACFCanUnloadNow answered " + ResultText(mCanUnload) + " (live plug-in objects remain)";
        return false;
    }
    return true;
}

const SEffectInfo* CPluginSession::FindEffect(const std::string& id, std::string& error) const
{
    for (const auto& effect : mInfo.effects)
        if (id.empty() || effect.effectID == id)
            return &effect;
    error = "no effect with ID " + id;
    return nullptr;
}

}  // namespace AAXHost
