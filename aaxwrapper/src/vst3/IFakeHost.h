// The one abstract VST host through which the AAX front end drives the
// wrapped plug-in, whatever its format.
#pragma once

#include <cstdint>
#include <string>

class AAX_CEffectParameters;
class AAX_IViewContainer;
struct S_Alg_Context;

// Catalogue of hosting failure texts, kept in this order.
extern const char* const _DicoException[11];

class IFakeHost {
public:
    explicit IFakeHost(AAX_CEffectParameters& owner) : mEffectParameters(owner) {}
    virtual ~IFakeHost() = default;

    virtual void Init() = 0;
    virtual void Setup() = 0;
    virtual void Quit() = 0;
    virtual std::string GetPluginVendor() = 0;
    virtual std::string GetPluginVersion() = 0;
    virtual int32_t GetPluginProductUniqueID() = 0;
    virtual int GetParameterCount() = 0;
    virtual bool GetParameterInfo(int inParamIndex, std::string& outName, float& outDefault) = 0;
    // Real-time thread.
    virtual void Process(S_Alg_Context* context) = 0;
    virtual void AddInputChangeForProcessing(int index, double value) = 0;
    virtual void AddInputChangeForGUI(int index, double value) = 0;
    virtual void QuitGUI() = 0;
    virtual void CreateGUI(AAX_IViewContainer* container) = 0;
    virtual void GetViewSize(float& outWidth, float& outHeight) = 0;
    virtual int32_t TimerWakeup() { return 0; }
    virtual void GetState(unsigned int* outSize, void* outpData) = 0;
    virtual void SetState(unsigned int inSize, void* inpData) = 0;

protected:
    AAX_CEffectParameters& mEffectParameters;
};
