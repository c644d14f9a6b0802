// Small host-side doubles of the ACF interfaces the library talks to. They
// count references instead of deleting themselves, so tests can check that
// the plug-in side gives back every reference it took.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "AAX_IAutomationDelegate.h"
#include "AAX_IController.h"
#include "AAX_IDescription.h"
#include "AAX_IEffectParameters.h"

namespace aaxlib_test {

struct RefCounter {
    int refs = 0;
    acfUInt32 Add() { return static_cast<acfUInt32>(++refs); }
    acfUInt32 Sub() { return static_cast<acfUInt32>(--refs); }
};

// One host object answering the controller and automation
// interfaces of an effect instance (no transport: nothing here reads it);
// with answerInterfaces off it answers nothing but IACFUnknown.
class HostController final : public AAX_IACFController, public AAX_IACFAutomationDelegate {
public:
    struct Post {
        AAX_CFieldIndex field;
        std::vector<unsigned char> bytes;
    };
    bool answerInterfaces = true;
    // Like a real host: answer set-value requests through the effect.
    AAX_IACFEffectParameters* effect = nullptr;
    RefCounter counter;
    std::vector<Post> posts;
    std::vector<std::string> registered, events;
    std::vector<std::pair<std::string, double>> setRequests, currentValues;

    ACFRESULT QueryInterface(const acfIID& iid, void** ppOut) override
    {
        *ppOut = nullptr;
        if (iid == IID_IACFUnknown || (answerInterfaces && iid == IID_IAAXControllerV1))
            *ppOut = static_cast<AAX_IACFController*>(this);
        else if (answerInterfaces && iid == IID_IAAXAutomationDelegateV1)
            *ppOut = static_cast<AAX_IACFAutomationDelegate*>(this);
        if (*ppOut == nullptr) return ACF_E_NOINTERFACE;
        counter.Add();
        return ACF_OK;
    }
    acfUInt32 AddRef() override { return counter.Add(); }
    acfUInt32 Release() override { return counter.Sub(); }

    AAX_Result GetEffectID(char* out, uint32_t size) const override { if (size > 0) out[0] = '\0'; return 0; }
    AAX_Result GetSampleRate(AAX_CSampleRate* rate) const override { *rate = 48000.0f; return 0; }
    AAX_Result GetInputStemFormat(int32_t* f) const override { *f = AAX_eStemFormat_Stereo; return 0; }
    AAX_Result GetOutputStemFormat(int32_t* f) const override { *f = AAX_eStemFormat_Stereo; return 0; }
    AAX_Result GetSignalLatency(int32_t* s) const override { *s = 0; return 0; }
    AAX_Result SetSignalLatency(int32_t) override { return 0; }
    AAX_Result PostPacket(AAX_CFieldIndex field, const void* data, uint32_t size) override
    {
        const auto* bytes = static_cast<const unsigned char*>(data);
        posts.push_back({field, std::vector<unsigned char>(bytes, bytes + size)});
        return 0;
    }
    AAX_Result SendNotification(AAX_CTypeID, const void*, uint32_t) override { return 0; }

    AAX_Result RegisterParameter(AAX_CParamID id) override { registered.emplace_back(id); return 0; }
    AAX_Result UnregisterParameter(AAX_CParamID) override { return 0; }
    AAX_Result PostSetValueRequest(AAX_CParamID id, double value) const override
    {
        auto* self = const_cast<HostController*>(this);
        self->setRequests.emplace_back(id, value);
        self->events.push_back(std::string("set ") + id);
        if (effect != nullptr) effect->UpdateParameterNormalizedValue(id, value, AAX_eUpdateSource_Parameter);
        return 0;
    }
    AAX_Result PostCurrentValue(AAX_CParamID id, double value) const override { const_cast<HostController*>(this)->currentValues.emplace_back(id, value); return 0; }
    AAX_Result PostTouchRequest(AAX_CParamID id) override { events.push_back(std::string("touch ") + id); return 0; }
    AAX_Result PostReleaseRequest(AAX_CParamID id) override { events.push_back(std::string("release ") + id); return 0; }
    AAX_Result GetTouchState(AAX_CParamID, AAX_CBoolean* touched) override { *touched = 0; return 0; }
};

// A collection that refuses to hand out descriptors: registration failure
// paths only (a full description is checked against the real bundle).
class HostCollection final : public AAX_IACFCollection, public IACFPluginDefinition {
public:
    bool answerPluginDefinition = true;
    RefCounter counter;
    ACFRESULT QueryInterface(const acfIID& iid, void** ppOut) override
    {
        *ppOut = nullptr;
        if (iid == IID_IAAXCollectionV1 || iid == IID_IACFUnknown)
            *ppOut = static_cast<AAX_IACFCollection*>(this);
        else if (iid == IID_IACFPluginDefinition && answerPluginDefinition)
            *ppOut = static_cast<IACFPluginDefinition*>(this);
        if (*ppOut == nullptr) return ACF_E_NOINTERFACE;
        counter.Add();
        return ACF_OK;
    }
    acfUInt32 AddRef() override { return counter.Add(); }
    acfUInt32 Release() override { return counter.Sub(); }
    IACFUnknown* NewDescriptor() override { return nullptr; }
    AAX_Result AddEffect(const char*, IACFUnknown*) override { return 0; }
    AAX_Result SetManufacturerName(const char*) override { return 0; }
    AAX_Result AddPackageName(const char*) override { return 0; }
    AAX_Result SetPackageVersion(uint32_t) override { return 0; }
    IACFUnknown* NewPropertyMap() override { return nullptr; }
    AAX_Result SetProperties(IACFUnknown*) override { return 0; }
};

}  // namespace aaxlib_test
