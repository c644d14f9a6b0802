// Host-side description objects: the collection handed to ACFRegisterPlugin
// and the effect and component descriptors it gives out. They record every
// call so that the host can print and use the description afterwards.
#pragma once

#include <string>
#include <vector>

#include "AAX_IDescription.h"
#include "PluginDescription.h"
#include "RefCount.h"

namespace AAXHost {

inline constexpr acfIID IID_CHostComponentDescriptor = {0x68737441, 0x0002, 0x4858, {0x43, 0x6F, 0x6D, 0x70, 0x44, 0x65, 0x73, 0x00}};
inline constexpr acfIID IID_CHostEffectDescriptor = {0x68737441, 0x0003, 0x4858, {0x45, 0x66, 0x66, 0x44, 0x65, 0x73, 0x63, 0x00}};

class CHostComponentDescriptor final : public CHostUnknown<AAX_IACFComponentDescriptor> {
public:
    AAX_Result Clear() override;
    AAX_Result AddAudioIn(AAX_CFieldIndex index) override;
    AAX_Result AddAudioOut(AAX_CFieldIndex index) override;
    AAX_Result AddAudioBufferLength(AAX_CFieldIndex index) override;
    AAX_Result AddSampleRate(AAX_CFieldIndex index) override;
    AAX_Result AddClock(AAX_CFieldIndex index) override;
    AAX_Result AddSideChainIn(AAX_CFieldIndex index) override;
    AAX_Result AddDataInPort(AAX_CFieldIndex index, uint32_t packetSize, AAX_EDataInPortType portType) override;
    AAX_Result AddAuxOutputStem(AAX_CFieldIndex index, int32_t stemFormat, const char* name) override;
    AAX_Result AddPrivateData(AAX_CFieldIndex index, int32_t dataSize, uint32_t options) override;
    AAX_Result AddMIDINode(AAX_CFieldIndex index, AAX_EMIDINodeType type, const char* name, uint32_t channelMask) override;
    IACFUnknown* NewPropertyMap() override;
    AAX_Result AddProcessProc_Native(AAX_CProcessProc proc, IACFUnknown* properties, AAX_CInstanceInitProc initProc,
                                     AAX_CBackgroundProc backgroundProc, AAX_CSelector* outProcID) override;

    const SComponentInfo& Info() const { return mInfo; }

private:
    ~CHostComponentDescriptor() override = default;
    ACFRESULT AnswerQuery(const acfIID& iid, void** out) override;
    AAX_Result Record(const char* call, AAX_CFieldIndex index, std::vector<std::pair<std::string, int64_t>> args = {},
                      const char* name = nullptr);

    SComponentInfo mInfo;
};

class CHostEffectDescriptor final : public CHostUnknown<AAX_IACFEffectDescriptor> {
public:
    IACFUnknown* NewComponentDescriptor() override;
    AAX_Result AddComponent(IACFUnknown* component) override;
    AAX_Result AddName(const char* name) override;
    AAX_Result AddCategory(uint32_t category) override;
    AAX_Result AddCategoryBypassParameter(uint32_t category, AAX_CParamID id) override;
    AAX_Result AddProcPtr(void* proc, AAX_CProcPtrID id) override;
    IACFUnknown* NewPropertyMap() override;
    AAX_Result SetProperties(IACFUnknown* properties) override;

    // The description with the components as they stand now.
    SEffectInfo Info() const;

private:
    ~CHostEffectDescriptor() override;
    ACFRESULT AnswerQuery(const acfIID& iid, void** out) override;

    SEffectInfo mInfo;  // without components
    std::vector<CHostComponentDescriptor*> mComponents;  // one reference each
};

class CHostCollection final : public CHostUnknown<AAX_IACFCollection, IACFPluginDefinition> {
public:
    CHostCollection() = default;
    IACFUnknown* NewDescriptor() override;
    AAX_Result AddEffect(const char* effectID, IACFUnknown* descriptor) override;
    AAX_Result SetManufacturerName(const char* name) override;
    AAX_Result AddPackageName(const char* name) override;
    AAX_Result SetPackageVersion(uint32_t version) override;
    IACFUnknown* NewPropertyMap() override;
    AAX_Result SetProperties(IACFUnknown* properties) override;

    SPluginInfo Info() const;

private:
    ~CHostCollection() override;
    ACFRESULT AnswerQuery(const acfIID& iid, void** out) override;

    SPluginInfo mInfo;  // without effects
    std::vector<std::pair<std::string, CHostEffectDescriptor*>> mEffects;  // one reference each
};

}  // namespace AAXHost
