// The description family: what a plug-in tells the host about its effects at
// registration. The AAX_IACF* interfaces are implemented by the host; the
// AAX_I* interfaces are what plug-in code sees (implemented by the AAX_V*
// proxies over the host's objects).
#pragma once

#include "ACFBase.h"
#include "AAX.h"

// A native process procedure: called with a batch of algorithm contexts.
typedef void (*AAX_CProcessProc)(void* const inInstancesBegin[], const void* inInstancesEnd);
// Called once per algorithm instance when it is created (or destroyed).
typedef int32_t (*AAX_CInstanceInitProc)(const void* inInstanceContextPtr, int32_t inAction);
// Called on the host's background thread.
typedef int32_t (*AAX_CBackgroundProc)();

inline constexpr acfIID IID_IAAXCollectionV1 = {0x4D72766E, 0x0101, 0x4141, {0x58, 0x43, 0x6F, 0x6C, 0x6C, 0x65, 0x63, 0x74}};
inline constexpr acfIID IID_IAAXEffectDescriptorV1 = {0x4D72766E, 0x0102, 0x4141, {0x58, 0x45, 0x66, 0x66, 0x44, 0x65, 0x73, 0x63}};
inline constexpr acfIID IID_IAAXComponentDescriptorV1 = {0x4D72766E, 0x0103, 0x4141, {0x58, 0x43, 0x6F, 0x6D, 0x70, 0x44, 0x65, 0x73}};
inline constexpr acfIID IID_IAAXPropertyMapV1 = {0x4D72766E, 0x0104, 0x4141, {0x58, 0x50, 0x72, 0x6F, 0x70, 0x4D, 0x61, 0x70}};

// ---- Host side -------------------------------------------------------------

class AAX_IACFPropertyMap : public IACFUnknown {
public:
    virtual AAX_CBoolean GetProperty(AAX_EProperty inProperty, AAX_CPropertyValue* outValue) const = 0;
    virtual AAX_Result AddProperty(AAX_EProperty inProperty, AAX_CPropertyValue inValue) = 0;
    virtual AAX_Result RemoveProperty(AAX_EProperty inProperty) = 0;

protected:
    ~AAX_IACFPropertyMap() = default;
};

class AAX_IACFComponentDescriptor : public IACFUnknown {
public:
    virtual AAX_Result Clear() = 0;
    virtual AAX_Result AddAudioIn(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddAudioOut(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddAudioBufferLength(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddSampleRate(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddClock(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddSideChainIn(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddDataInPort(AAX_CFieldIndex inFieldIndex, uint32_t inPacketSize, AAX_EDataInPortType inPortType) = 0;
    virtual AAX_Result AddAuxOutputStem(AAX_CFieldIndex inFieldIndex, int32_t inStemFormat, const char* inNameUTF8) = 0;
    virtual AAX_Result AddPrivateData(AAX_CFieldIndex inFieldIndex, int32_t inDataSize, uint32_t inOptions) = 0;
    virtual AAX_Result AddMIDINode(AAX_CFieldIndex inFieldIndex, AAX_EMIDINodeType inNodeType, const char* inNodeName, uint32_t inChannelMask) = 0;
    // Returns a new property map (one reference, owned by the caller).
    virtual IACFUnknown* NewPropertyMap() = 0;
    virtual AAX_Result AddProcessProc_Native(AAX_CProcessProc inProcessProc, IACFUnknown* inProperties,
                                             AAX_CInstanceInitProc inInstanceInitProc,
                                             AAX_CBackgroundProc inBackgroundProc, AAX_CSelector* outProcID) = 0;

protected:
    ~AAX_IACFComponentDescriptor() = default;
};

class AAX_IACFEffectDescriptor : public IACFUnknown {
public:
    // Returns a new component descriptor (one reference, owned by the caller).
    virtual IACFUnknown* NewComponentDescriptor() = 0;
    virtual AAX_Result AddComponent(IACFUnknown* inComponentDescriptor) = 0;
    virtual AAX_Result AddName(const char* inPlugInName) = 0;
    virtual AAX_Result AddCategory(uint32_t inCategory) = 0;
    virtual AAX_Result AddCategoryBypassParameter(uint32_t inCategory, AAX_CParamID inParamID) = 0;
    virtual AAX_Result AddProcPtr(void* inProcPtr, AAX_CProcPtrID inProcID) = 0;
    virtual IACFUnknown* NewPropertyMap() = 0;
    virtual AAX_Result SetProperties(IACFUnknown* inProperties) = 0;

protected:
    ~AAX_IACFEffectDescriptor() = default;
};

class AAX_IACFCollection : public IACFUnknown {
public:
    // Returns a new effect descriptor (one reference, owned by the caller).
    virtual IACFUnknown* NewDescriptor() = 0;
    virtual AAX_Result AddEffect(const char* inEffectID, IACFUnknown* inEffectDescriptor) = 0;
    virtual AAX_Result SetManufacturerName(const char* inPackageName) = 0;
    virtual AAX_Result AddPackageName(const char* inPackageName) = 0;
    virtual AAX_Result SetPackageVersion(uint32_t inVersion) = 0;
    virtual IACFUnknown* NewPropertyMap() = 0;
    virtual AAX_Result SetProperties(IACFUnknown* inProperties) = 0;

protected:
    ~AAX_IACFCollection() = default;
};

// ---- Plug-in side ----------------------------------------------------------

class AAX_IPropertyMap {
public:
    virtual ~AAX_IPropertyMap() = default;
    virtual AAX_CBoolean GetProperty(AAX_EProperty inProperty, AAX_CPropertyValue* outValue) const = 0;
    virtual AAX_Result AddProperty(AAX_EProperty inProperty, AAX_CPropertyValue inValue) = 0;
    virtual AAX_Result RemoveProperty(AAX_EProperty inProperty) = 0;
    virtual IACFUnknown* GetIUnknown() const = 0;
};

class AAX_IComponentDescriptor {
public:
    virtual ~AAX_IComponentDescriptor() = default;
    virtual AAX_Result Clear() = 0;
    virtual AAX_Result AddAudioIn(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddAudioOut(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddAudioBufferLength(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddSampleRate(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddClock(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddSideChainIn(AAX_CFieldIndex inFieldIndex) = 0;
    virtual AAX_Result AddDataInPort(AAX_CFieldIndex inFieldIndex, uint32_t inPacketSize, AAX_EDataInPortType inPortType = AAX_eDataInPortType_Buffered) = 0;
    virtual AAX_Result AddAuxOutputStem(AAX_CFieldIndex inFieldIndex, int32_t inStemFormat, const char* inNameUTF8) = 0;
    virtual AAX_Result AddPrivateData(AAX_CFieldIndex inFieldIndex, int32_t inDataSize, uint32_t inOptions = 0) = 0;
    virtual AAX_Result AddMIDINode(AAX_CFieldIndex inFieldIndex, AAX_EMIDINodeType inNodeType, const char* inNodeName, uint32_t inChannelMask) = 0;
    // The returned map is owned by this descriptor.
    virtual AAX_IPropertyMap* NewPropertyMap() = 0;
    virtual AAX_Result AddProcessProc_Native(AAX_CProcessProc inProcessProc, AAX_IPropertyMap* inProperties = nullptr,
                                             AAX_CInstanceInitProc inInstanceInitProc = nullptr,
                                             AAX_CBackgroundProc inBackgroundProc = nullptr,
                                             AAX_CSelector* outProcID = nullptr) = 0;
    virtual IACFUnknown* GetIUnknown() const = 0;

    // Typed convenience for process procedures taking their own context type.
    template <typename TContext>
    AAX_Result AddProcessProc_Native(void (*inProcessProc)(TContext* const inInstancesBegin[], const void* inInstancesEnd),
                                     AAX_IPropertyMap* inProperties = nullptr,
                                     AAX_CInstanceInitProc inInstanceInitProc = nullptr,
                                     AAX_CBackgroundProc inBackgroundProc = nullptr)
    {
        return AddProcessProc_Native(reinterpret_cast<AAX_CProcessProc>(inProcessProc), inProperties,
                                     inInstanceInitProc, inBackgroundProc, nullptr);
    }
};

class AAX_IEffectDescriptor {
public:
    virtual ~AAX_IEffectDescriptor() = default;
    // The returned descriptor is owned by this effect descriptor.
    virtual AAX_IComponentDescriptor* NewComponentDescriptor() = 0;
    virtual AAX_Result AddComponent(AAX_IComponentDescriptor* inComponentDescriptor) = 0;
    virtual AAX_Result AddName(const char* inPlugInName) = 0;
    virtual AAX_Result AddCategory(uint32_t inCategory) = 0;
    virtual AAX_Result AddCategoryBypassParameter(uint32_t inCategory, AAX_CParamID inParamID) = 0;
    virtual AAX_Result AddProcPtr(void* inProcPtr, AAX_CProcPtrID inProcID) = 0;
    virtual AAX_IPropertyMap* NewPropertyMap() = 0;
    virtual AAX_Result SetProperties(AAX_IPropertyMap* inProperties) = 0;
    virtual IACFUnknown* GetIUnknown() const = 0;
};

class AAX_ICollection {
public:
    virtual ~AAX_ICollection() = default;
    // The returned descriptor is owned by this collection.
    virtual AAX_IEffectDescriptor* NewDescriptor() = 0;
    virtual AAX_Result AddEffect(const char* inEffectID, AAX_IEffectDescriptor* inEffectDescriptor) = 0;
    virtual AAX_Result SetManufacturerName(const char* inPackageName) = 0;
    virtual AAX_Result AddPackageName(const char* inPackageName) = 0;
    virtual AAX_Result SetPackageVersion(uint32_t inVersion) = 0;
    virtual AAX_IPropertyMap* NewPropertyMap() = 0;
    virtual AAX_Result SetProperties(AAX_IPropertyMap* inProperties) = 0;
    virtual IACFUnknown* GetIUnknown() const = 0;
};
