// Describes the bundle's single effect to the host at registration.
#include <cstdio>

#include "AAXWrapper_AlgorithmProcess.h"
#include "AAXWrapper_Identity.h"
#include "AAXWrapper_Parameters.h"
#include "AAX_Exports.h"
#include "AAX_IDescription.h"
#include "CSingleton.h"
#include "CWrapperGUI.h"
#include "Resources.h"
#include "S_Alg_Context.h"
#include "logger/CLog.h"

namespace {

constexpr uint32_t kMidiAllChannels = 0xFFFF;
constexpr uint32_t kBypassPacketSize = sizeof(int32_t);
constexpr int32_t kPrivateDataSize = 8;
static_assert(sizeof(AAXWrapper_Parameters*) <= static_cast<size_t>(kPrivateDataSize),
              "the private-data field holds one wrapper pointer");

void LoadLogConfiguration()
{
    std::string confPath;
    if (CSingleton<Morvane::Resources>::getInstance()->GetAbsolutePath("log.conf", confPath)) {
        CSingleton<CLog>::getInstance()->reloadConf(confPath);
        MV_LOG("description", kLogInfo, "GetEffectDescriptions");
    }
}

void DescribeFields(AAX_IComponentDescriptor& component)
{
    component.AddAudioIn(kAlgField_AudioIn);
    component.AddAudioOut(kAlgField_AudioOut);
    component.AddAudioBufferLength(kAlgField_BufferLength);
    component.AddMIDINode(kAlgField_MidiIn, AAX_eMIDINodeType_LocalInput, kMidiInID.c_str(), kMidiAllChannels);
    component.AddMIDINode(kAlgField_MidiOut, AAX_eMIDINodeType_LocalOutput, kMidiOutID.c_str(), kMidiAllChannels);
    component.AddMIDINode(kAlgField_MidiTransport, AAX_eMIDINodeType_Transport, kMidiTransportID.c_str(),
                          kMidiAllChannels);
    component.AddSampleRate(kAlgField_SampleRate);
    component.AddDataInPort(kAlgField_Bypass, kBypassPacketSize, AAX_eDataInPortType_Buffered);
    component.AddPrivateData(kAlgField_PrivateData, kPrivateDataSize, 0);
    MV_LOG("description", kLogInfo, "Private data added");

    for (int stem = 0; stem < kNumOutputStems; ++stem) {
        char name[256];
        std::snprintf(name, sizeof(name), "OutputStem_%d", stem);
        component.AddAuxOutputStem(0, AAX_eStemFormat_Stereo, name);
    }
}

void DescribeProcessing(AAX_IComponentDescriptor& component)
{
    AAX_IPropertyMap* const properties = component.NewPropertyMap();
    if (properties == nullptr)
        return;
    properties->AddProperty(AAX_eProperty_ManufacturerID, static_cast<AAX_CPropertyValue>(kManufacturerID));
    properties->AddProperty(AAX_eProperty_ProductID, static_cast<AAX_CPropertyValue>(kProductID));
    properties->AddProperty(AAX_eProperty_CanBypass, 1);
    properties->AddProperty(AAX_eProperty_UsesClientGUI, 0);
    properties->AddProperty(AAX_eProperty_InputStemFormat, AAX_eStemFormat_Stereo);
    properties->AddProperty(AAX_eProperty_OutputStemFormat, AAX_eStemFormat_Stereo);
    properties->AddProperty(AAX_eProperty_PlugInID_Native, static_cast<AAX_CPropertyValue>(kProductID));
    properties->AddProperty(AAX_eProperty_SampleRate, AAX_eSampleRateMask_All);
    component.AddProcessProc_Native(AAXWrapper_AlgorithmProcessFunction, properties, nullptr, nullptr);
}

AAX_Result DescribeEffect(AAX_ICollection& collection)
{
    AAX_IEffectDescriptor* const effect = collection.NewDescriptor();
    if (effect == nullptr)
        return AAX_ERROR_NULL_OBJECT;
    std::printf(" AAXWrapper_GetPlugInDescription %s \n", VST_PLUGIN_NAME.c_str());

    AAX_IComponentDescriptor* const component = effect->NewComponentDescriptor();
    if (component == nullptr)
        return AAX_ERROR_NULL_OBJECT;
    effect->AddName(VST_PLUGIN_NAME.c_str());
    effect->AddCategory(AAX_ePlugInCategory_SWGenerators);
    std::printf(" AAXWrapper_DescribeAlgorithmComponent %s \n", VST_PLUGIN_NAME.c_str());

    DescribeFields(*component);
    DescribeProcessing(*component);
    effect->AddComponent(component);

    effect->AddProcPtr(reinterpret_cast<void*>(&AAXWrapper_Parameters::Create),
                       kAAX_ProcPtrID_Create_EffectParameters);
    effect->AddProcPtr(reinterpret_cast<void*>(&CWrapperGUI::Create), kAAX_ProcPtrID_Create_EffectGUI);
    return collection.AddEffect(kEffectID_Wrapper, effect);
}

}  // namespace

AAX_Result GetEffectDescriptions(AAX_ICollection* collection)
{
    std::printf(" Entry point on our plugin %s \n", VST_PLUGIN_NAME.c_str());
    LoadLogConfiguration();
    if (collection == nullptr)
        return AAX_ERROR_NULL_OBJECT;

    const AAX_Result result = DescribeEffect(*collection);

    // The package is named on every path, even when the effect is missing.
    collection->SetManufacturerName(kManufacturerName.c_str());
    collection->AddPackageName(VST_PLUGIN_NAME.c_str());
    collection->SetPackageVersion(1);
    std::fflush(stdout);
    return result;
}
