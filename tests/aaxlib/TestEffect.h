// A small plug-in data model over the library base, as a front end would
// write one: a master bypass, two floats, a switch and an optional preview.
#pragma once

#include "AAX_CBinaryDisplayDelegate.h"
#include "AAX_CBinaryTaperDelegate.h"
#include "AAX_CEffectParameters.h"
#include "AAX_CLinearTaperDelegate.h"
#include "AAX_CNumberDisplayDelegate.h"
#include "AAX_CParameter.h"

namespace aaxlib_test {

class TestEffect : public AAX_CEffectParameters {
public:
    static AAX_CEffectParameters* Create() { return new TestEffect; }

    bool withBypass = true;
    bool withPreview = false;
    AAX_Result initResult = AAX_SUCCESS;

    AAX_CParameterManager& Manager() { return mParameterManager; }
    AAX_CPacketDispatcher& Dispatcher() { return mPacketDispatcher; }
    const std::set<std::string>& LeftOut() const { return mFilteredParameters; }

protected:
    AAX_Result EffectInit() override
    {
        if (withBypass) {
            mParameterManager.AddParameter(new AAX_CParameter<bool>(
                cDefaultMasterBypassID, AAX_CString("Master Bypass"), false, AAX_CBinaryTaperDelegate<bool>(),
                AAX_CBinaryDisplayDelegate<bool>("bypass", "on"), true));
            mPacketDispatcher.RegisterPacket(cDefaultMasterBypassID, 0);
        }
        mParameterManager.AddParameter(new AAX_CParameter<float>("0", AAX_CString("Volume"), 0.5f,
                                                                 AAX_CLinearTaperDelegate<float, 0>(0.0f, 1.0f),
                                                                 AAX_CNumberDisplayDelegate<float, 2, 0>(), true));
        mParameterManager.AddParameter(new AAX_CParameter<float>("1", AAX_CString("Cutoff"), 20.0f,
                                                                 AAX_CLinearTaperDelegate<float, 0>(20.0f, 20000.0f),
                                                                 AAX_CNumberDisplayDelegate<float, 2, 0>(), true));
        mParameterManager.AddParameter(new AAX_CParameter<bool>("2", AAX_CString("Mono"), true,
                                                                AAX_CBinaryTaperDelegate<bool>(),
                                                                AAX_CBinaryDisplayDelegate<bool>("Off", "On"), true));
        if (withPreview)
            mParameterManager.AddParameter(new AAX_CParameter<bool>(cPreviewID, AAX_CString("Preview"), false,
                                                                    AAX_CBinaryTaperDelegate<bool>(),
                                                                    AAX_CBinaryDisplayDelegate<bool>("Off", "On")));
        mPacketDispatcher.RegisterPacket("0", 1);
        return initResult;
    }
};

}  // namespace aaxlib_test
