// Plug-in side proxy of a host algorithm component description.
#pragma once

#include <memory>
#include <vector>

#include "AAX_IDescription.h"
#include "AAX_VPropertyMap.h"

class AAX_VComponentDescriptor : public AAX_IComponentDescriptor {
public:
    explicit AAX_VComponentDescriptor(IACFUnknown* pUnknown);
    ~AAX_VComponentDescriptor() override;
    AAX_VComponentDescriptor(const AAX_VComponentDescriptor&) = delete;
    AAX_VComponentDescriptor& operator=(const AAX_VComponentDescriptor&) = delete;

    using AAX_IComponentDescriptor::AddProcessProc_Native;

    bool IsValid() const { return mIComponentDescriptor != nullptr; }
    AAX_Result Clear() override;
    AAX_Result AddAudioIn(AAX_CFieldIndex inFieldIndex) override;
    AAX_Result AddAudioOut(AAX_CFieldIndex inFieldIndex) override;
    AAX_Result AddAudioBufferLength(AAX_CFieldIndex inFieldIndex) override;
    AAX_Result AddSampleRate(AAX_CFieldIndex inFieldIndex) override;
    AAX_Result AddClock(AAX_CFieldIndex inFieldIndex) override;
    AAX_Result AddSideChainIn(AAX_CFieldIndex inFieldIndex) override;
    AAX_Result AddDataInPort(AAX_CFieldIndex inFieldIndex, uint32_t inPacketSize, AAX_EDataInPortType inPortType = AAX_eDataInPortType_Buffered) override;
    AAX_Result AddAuxOutputStem(AAX_CFieldIndex inFieldIndex, int32_t inStemFormat, const char* inNameUTF8) override;
    AAX_Result AddPrivateData(AAX_CFieldIndex inFieldIndex, int32_t inDataSize, uint32_t inOptions = 0) override;
    AAX_Result AddMIDINode(AAX_CFieldIndex inFieldIndex, AAX_EMIDINodeType inNodeType, const char* inNodeName, uint32_t inChannelMask) override;
    AAX_IPropertyMap* NewPropertyMap() override;
    AAX_Result AddProcessProc_Native(AAX_CProcessProc inProcessProc, AAX_IPropertyMap* inProperties = nullptr,
                                     AAX_CInstanceInitProc inInstanceInitProc = nullptr,
                                     AAX_CBackgroundProc inBackgroundProc = nullptr,
                                     AAX_CSelector* outProcID = nullptr) override;
    IACFUnknown* GetIUnknown() const override { return mIComponentDescriptor; }

private:
    AAX_IACFComponentDescriptor* mIComponentDescriptor = nullptr;
    std::vector<std::unique_ptr<AAX_VPropertyMap>> mPropertyMaps;
};
