// Small host-side doubles of the ACF interfaces the library talks to. They
// count references instead of deleting themselves, so tests can check that
// the plug-in side gives back every reference it took.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "AAX_IAutomationDelegate.h"
#include "AAX_IController.h"
#include "AAX_IDescription.h"
#include "AAX_IEffectParameters.h"
#include "AAX_IHostServices.h"
#include "AAX_ITransport.h"
#include "AAX_IViewContainer.h"

namespace aaxlib_test {

// Reference bookkeeping shared by every double.
struct RefCounter {
    int refs = 0;
    acfUInt32 Add() { return static_cast<acfUInt32>(++refs); }
    acfUInt32 Sub() { return static_cast<acfUInt32>(--refs); }
};

// A double that answers one interface besides IACFUnknown, always as the
// same object, counting the references it hands out.
template <class Interface, const acfIID& kInterfaceID>
class SingleInterfaceDouble : public Interface {
public:
    RefCounter counter;
    ACFRESULT QueryInterface(const acfIID& iid, void** ppOut) override
    {
        *ppOut = nullptr;
        if (iid != kInterfaceID && iid != IID_IACFUnknown) return ACF_E_NOINTERFACE;
        *ppOut = static_cast<Interface*>(this);
        counter.Add();
        return ACF_OK;
    }
    acfUInt32 AddRef() override { return counter.Add(); }
    acfUInt32 Release() override { return counter.Sub(); }
};

// One host object answering the controller, automation and transport
// interfaces of an effect instance, as a real host's controller does.
class HostController final : public AAX_IACFController, public AAX_IACFAutomationDelegate, public AAX_IACFTransport {
public:
    struct Post {
        AAX_CFieldIndex field;
        std::vector<unsigned char> bytes;
    };

    bool answerController = true;
    bool answerAutomation = true;
    bool answerTransport = true;
    // Like a real host: answer set-value requests through the effect.
    AAX_IACFEffectParameters* effect = nullptr;

    RefCounter counter;
    std::vector<Post> posts;
    std::vector<std::string> registered, touches, releases, events;
    std::vector<std::pair<std::string, double>> setRequests, currentValues;

    ACFRESULT QueryInterface(const acfIID& iid, void** ppOut) override
    {
        *ppOut = nullptr;
        if (iid == IID_IAAXControllerV1 && answerController)
            *ppOut = static_cast<AAX_IACFController*>(this);
        else if (iid == IID_IAAXAutomationDelegateV1 && answerAutomation)
            *ppOut = static_cast<AAX_IACFAutomationDelegate*>(this);
        else if (iid == IID_IAAXTransportV1 && answerTransport)
            *ppOut = static_cast<AAX_IACFTransport*>(this);
        else if (iid == IID_IACFUnknown)
            *ppOut = static_cast<AAX_IACFController*>(this);
        if (*ppOut == nullptr) return ACF_E_NOINTERFACE;
        counter.Add();
        return ACF_OK;
    }
    acfUInt32 AddRef() override { return counter.Add(); }
    acfUInt32 Release() override { return counter.Sub(); }

    // Controller
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

    // Automation
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
    AAX_Result PostTouchRequest(AAX_CParamID id) override { touches.emplace_back(id); events.push_back(std::string("touch ") + id); return 0; }
    AAX_Result PostReleaseRequest(AAX_CParamID id) override { releases.emplace_back(id); events.push_back(std::string("release ") + id); return 0; }
    AAX_Result GetTouchState(AAX_CParamID, AAX_CBoolean* touched) override { *touched = 0; return 0; }

    // Transport
    AAX_Result GetCurrentTempo(double* bpm) const override { *bpm = 120.0; return 0; }
    AAX_Result GetCurrentMeter(int32_t* n, int32_t* d) const override { *n = 4; *d = 4; return 0; }
    AAX_Result IsTransportPlaying(bool* playing) const override { *playing = false; return 0; }
    AAX_Result GetCurrentTickPosition(int64_t* t) const override { *t = 0; return 0; }
    AAX_Result GetCurrentLoopPosition(bool* l, int64_t* s, int64_t* e) const override { *l = false; *s = *e = 0; return 0; }
    AAX_Result GetCurrentNativeSampleLocation(int64_t* s) const override { *s = 0; return 0; }
};

// An object that answers nothing but IACFUnknown.
class HostNothing final : public SingleInterfaceDouble<IACFUnknown, IID_IACFUnknown> {};

class HostViewContainer final : public SingleInterfaceDouble<AAX_IACFViewContainer, IID_IAAXViewContainerV1> {
public:
    int nativeView = 0;
    int32_t GetType() override { return AAX_eViewContainer_Type_NSView; }
    void* GetPtr() override { return &nativeView; }
    AAX_Result GetModifiers(uint32_t* m) override { *m = 0; return 0; }
    AAX_Result SetViewSize(AAX_Point&) override { return 0; }
};

// The description family: a collection that hands out effect descriptors,
// which hand out component descriptors and property maps. Everything it
// creates stays alive in the collection so tests can inspect it afterwards.
class HostPropertyMap final : public SingleInterfaceDouble<AAX_IACFPropertyMap, IID_IAAXPropertyMapV1> {
public:
    std::vector<std::pair<int32_t, int32_t>> properties;
    AAX_CBoolean GetProperty(AAX_EProperty p, AAX_CPropertyValue* v) const override
    {
        for (auto& kv : properties)
            if (kv.first == p) {
                *v = kv.second;
                return 1;
            }
        return 0;
    }
    AAX_Result AddProperty(AAX_EProperty p, AAX_CPropertyValue v) override { properties.emplace_back(p, v); return 0; }
    AAX_Result RemoveProperty(AAX_EProperty) override { return 0; }
};

class HostComponentDescriptor final
    : public SingleInterfaceDouble<AAX_IACFComponentDescriptor, IID_IAAXComponentDescriptorV1> {
public:
    std::vector<std::string> calls;
    std::vector<HostPropertyMap*> maps;
    ~HostComponentDescriptor()
    {
        for (auto* m : maps) delete m;
    }
    AAX_Result Clear() override { return Note("Clear"); }
    AAX_Result AddAudioIn(AAX_CFieldIndex i) override { return Note("AudioIn " + std::to_string(i)); }
    AAX_Result AddAudioOut(AAX_CFieldIndex i) override { return Note("AudioOut " + std::to_string(i)); }
    AAX_Result AddAudioBufferLength(AAX_CFieldIndex i) override { return Note("BufferLength " + std::to_string(i)); }
    AAX_Result AddSampleRate(AAX_CFieldIndex i) override { return Note("SampleRate " + std::to_string(i)); }
    AAX_Result AddClock(AAX_CFieldIndex i) override { return Note("Clock " + std::to_string(i)); }
    AAX_Result AddSideChainIn(AAX_CFieldIndex i) override { return Note("SideChainIn " + std::to_string(i)); }
    AAX_Result AddDataInPort(AAX_CFieldIndex i, uint32_t size, AAX_EDataInPortType type) override { return Note("DataInPort " + std::to_string(i) + " " + std::to_string(size) + " " + std::to_string(type)); }
    AAX_Result AddAuxOutputStem(AAX_CFieldIndex i, int32_t format, const char* name) override { return Note("AuxOutputStem " + std::to_string(i) + " " + std::to_string(format) + " " + name); }
    AAX_Result AddPrivateData(AAX_CFieldIndex i, int32_t size, uint32_t options) override { return Note("PrivateData " + std::to_string(i) + " " + std::to_string(size) + " " + std::to_string(options)); }
    AAX_Result AddMIDINode(AAX_CFieldIndex i, AAX_EMIDINodeType type, const char* name, uint32_t mask) override { return Note("MIDINode " + std::to_string(i) + " " + std::to_string(type) + " " + name + " " + std::to_string(mask)); }
    IACFUnknown* NewPropertyMap() override
    {
        maps.push_back(new HostPropertyMap);
        maps.back()->counter.Add();  // the creation reference, handed to the caller
        return maps.back();
    }
    AAX_Result AddProcessProc_Native(AAX_CProcessProc, IACFUnknown* props, AAX_CInstanceInitProc, AAX_CBackgroundProc,
                                     AAX_CSelector*) override { return Note(std::string("ProcessProc ") + (props != nullptr ? "with-properties" : "no-properties")); }

private:
    AAX_Result Note(const std::string& s)
    {
        calls.push_back(s);
        return 0;
    }
};

class HostEffectDescriptor final : public SingleInterfaceDouble<AAX_IACFEffectDescriptor, IID_IAAXEffectDescriptorV1> {
public:
    std::vector<std::string> calls;
    std::vector<HostComponentDescriptor*> components;
    ~HostEffectDescriptor()
    {
        for (auto* c : components) delete c;
    }
    IACFUnknown* NewComponentDescriptor() override { components.push_back(new HostComponentDescriptor); components.back()->counter.Add(); return components.back(); }
    AAX_Result AddComponent(IACFUnknown* c) override { calls.push_back(c != nullptr ? "AddComponent" : "AddComponent null"); return 0; }
    AAX_Result AddName(const char* n) override { calls.push_back(std::string("AddName ") + n); return 0; }
    AAX_Result AddCategory(uint32_t c) override { calls.push_back("AddCategory " + std::to_string(c)); return 0; }
    AAX_Result AddCategoryBypassParameter(uint32_t, AAX_CParamID) override { return 0; }
    AAX_Result AddProcPtr(void*, AAX_CProcPtrID id) override { calls.push_back("AddProcPtr " + std::to_string(id)); return 0; }
    IACFUnknown* NewPropertyMap() override { return nullptr; }
    AAX_Result SetProperties(IACFUnknown*) override { return 0; }
};

class HostCollection final : public AAX_IACFCollection, public IACFPluginDefinition {
public:
    bool answerPluginDefinition = true;
    bool giveDescriptor = true;
    RefCounter counter;
    std::vector<std::string> calls;
    std::vector<HostEffectDescriptor*> effects;
    ~HostCollection()
    {
        for (auto* e : effects) delete e;
    }
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
    IACFUnknown* NewDescriptor() override
    {
        if (!giveDescriptor) return nullptr;
        effects.push_back(new HostEffectDescriptor);
        effects.back()->counter.Add();
        return static_cast<AAX_IACFEffectDescriptor*>(effects.back());
    }
    AAX_Result AddEffect(const char* id, IACFUnknown*) override { calls.push_back(std::string("AddEffect ") + id); return 0; }
    AAX_Result SetManufacturerName(const char* n) override { calls.push_back(std::string("SetManufacturerName ") + n); return 0; }
    AAX_Result AddPackageName(const char* n) override { calls.push_back(std::string("AddPackageName ") + n); return 0; }
    AAX_Result SetPackageVersion(uint32_t v) override { calls.push_back("SetPackageVersion " + std::to_string(v)); return 0; }
    IACFUnknown* NewPropertyMap() override { return nullptr; }
    AAX_Result SetProperties(IACFUnknown*) override { return 0; }
};

class HostServices final : public SingleInterfaceDouble<AAX_IACFHostServices, IID_IAAXHostServicesV1> {
public:
    std::vector<std::string> traces;
    AAX_Result HandleAssertFailure(const char* file, int32_t line, const char* note) const override { const_cast<HostServices*>(this)->traces.push_back(std::string(file) + ":" + std::to_string(line) + " " + note); return 0; }
    AAX_Result Trace(int32_t, const char* message) const override { const_cast<HostServices*>(this)->traces.emplace_back(message); return 0; }
};

}  // namespace aaxlib_test
