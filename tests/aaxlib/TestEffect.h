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

    bool withPreview = false;
    AAX_Result initResult = AAX_SUCCESS;

    AAX_CPacketDispatcher& Dispatcher() { return mPacketDispatcher; }

protected:
    AAX_Result EffectInit() override
    {
        AddSwitch(cDefaultMasterBypassID, "Master Bypass", false, "bypass", "on");
        mPacketDispatcher.RegisterPacket(cDefaultMasterBypassID, 0);
        AddFloat("0", "Volume", 0.5f, 0.0f, 1.0f);
        AddFloat("1", "Cutoff", 20.0f, 20.0f, 20000.0f);
        AddSwitch("2", "Mono", true, "Off", "On");
        if (withPreview) AddSwitch(cPreviewID, "Preview", false, "Off", "On", false);
        mPacketDispatcher.RegisterPacket("0", 1);
        return initResult;
    }

private:
    void AddFloat(const char* id, const char* name, float def, float lo, float hi)
    {
        mParameterManager.AddParameter(new AAX_CParameter<float>(id, AAX_CString(name), def,
                                                                 AAX_CLinearTaperDelegate<float, 0>(lo, hi),
                                                                 AAX_CNumberDisplayDelegate<float, 2, 0>(), true));
    }
    void AddSwitch(const char* id, const char* name, bool def, const char* off, const char* on, bool automatable = true)
    {
        mParameterManager.AddParameter(new AAX_CParameter<bool>(id, AAX_CString(name), def, AAX_CBinaryTaperDelegate<bool>(),
                                                                AAX_CBinaryDisplayDelegate<bool>(off, on), automatable));
    }
};

}  // namespace aaxlib_test
