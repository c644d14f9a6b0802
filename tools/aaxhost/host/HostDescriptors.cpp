#include "HostDescriptors.h"

#include "HostPropertyMap.h"

namespace AAXHost {

namespace {

std::string Text(const char* s) { return s ? std::string(s) : std::string(); }

template <class T>
T* OwnObject(IACFUnknown* unknown, const acfIID& privateIID)
{
    void* out = nullptr;
    if (!unknown || unknown->QueryInterface(privateIID, &out) != ACF_OK)
        return nullptr;
    return static_cast<T*>(out);
}

}  // namespace

// ---- component descriptor ---------------------------------------------------

ACFRESULT CHostComponentDescriptor::AnswerQuery(const acfIID& iid, void** out)
{
    if (iid == IID_IACFUnknown || iid == IID_IAAXComponentDescriptorV1)
        return AnswerInterface<AAX_IACFComponentDescriptor>(this, out);
    if (iid == IID_CHostComponentDescriptor)
        return AnswerInterface<CHostComponentDescriptor>(this, out);
    return ACF_E_NOINTERFACE;
}

AAX_Result CHostComponentDescriptor::Record(const char* call, AAX_CFieldIndex index,
                                             std::vector<std::pair<std::string, int64_t>> args, const char* name)
{
    SComponentCall c;
    c.call = call;
    c.fieldIndex = index;
    c.args = std::move(args);
    c.name = Text(name);
    mInfo.calls.push_back(std::move(c));
    return AAX_SUCCESS;
}

AAX_Result CHostComponentDescriptor::Clear()
{
    mInfo = SComponentInfo();
    return AAX_SUCCESS;
}

AAX_Result CHostComponentDescriptor::AddAudioIn(AAX_CFieldIndex index) { return Record("AddAudioIn", index); }
AAX_Result CHostComponentDescriptor::AddAudioOut(AAX_CFieldIndex index) { return Record("AddAudioOut", index); }
AAX_Result CHostComponentDescriptor::AddAudioBufferLength(AAX_CFieldIndex index) { return Record("AddAudioBufferLength", index); }
AAX_Result CHostComponentDescriptor::AddSampleRate(AAX_CFieldIndex index) { return Record("AddSampleRate", index); }
AAX_Result CHostComponentDescriptor::AddClock(AAX_CFieldIndex index) { return Record("AddClock", index); }
AAX_Result CHostComponentDescriptor::AddSideChainIn(AAX_CFieldIndex index) { return Record("AddSideChainIn", index); }

AAX_Result CHostComponentDescriptor::AddDataInPort(AAX_CFieldIndex index, uint32_t packetSize, AAX_EDataInPortType portType)
{
    return Record("AddDataInPort", index, {{"packet_size", packetSize}, {"port_type", portType}});
}

AAX_Result CHostComponentDescriptor::AddAuxOutputStem(AAX_CFieldIndex index, int32_t stemFormat, const char* name)
{
    mInfo.stems.push_back({index, stemFormat, Text(name)});
    return Record("AddAuxOutputStem", index, {{"stem_format", stemFormat}}, name);
}

AAX_Result CHostComponentDescriptor::AddPrivateData(AAX_CFieldIndex index, int32_t dataSize, uint32_t options)
{
    if (dataSize < 0)
        return AAX_ERROR_INVALID_ARGUMENT;
    return Record("AddPrivateData", index, {{"data_size", dataSize}, {"options", options}});
}

AAX_Result CHostComponentDescriptor::AddMIDINode(AAX_CFieldIndex index, AAX_EMIDINodeType type, const char* name,
                                                  uint32_t channelMask)
{
    mInfo.midiNodes.push_back({index, type, Text(name), channelMask});
    return Record("AddMIDINode", index, {{"node_type", type}, {"channel_mask", channelMask}}, name);
}

IACFUnknown* CHostComponentDescriptor::NewPropertyMap()
{
    Record("NewPropertyMap", -1);
    return static_cast<AAX_IACFPropertyMap*>(new CHostPropertyMap);
}

AAX_Result CHostComponentDescriptor::AddProcessProc_Native(AAX_CProcessProc proc, IACFUnknown* properties,
                                                            AAX_CInstanceInitProc initProc,
                                                            AAX_CBackgroundProc backgroundProc, AAX_CSelector* outProcID)
{
    if (!proc)
        return AAX_ERROR_NULL_ARGUMENT;
    SProcessProcInfo info;
    info.proc = reinterpret_cast<void*>(proc);
    info.instanceInitProc = reinterpret_cast<void*>(initProc);
    info.backgroundProc = reinterpret_cast<void*>(backgroundProc);
    info.hasProperties = properties != nullptr;
    info.properties = ReadPropertyMap(properties);
    if (outProcID)
        *outProcID = static_cast<AAX_CSelector>(mInfo.processProcs.size());
    mInfo.processProcs.push_back(std::move(info));
    return Record("AddProcessProc_Native", -1);
}

// ---- effect descriptor ------------------------------------------------------

CHostEffectDescriptor::~CHostEffectDescriptor()
{
    for (auto* c : mComponents)
        c->Release();
}

ACFRESULT CHostEffectDescriptor::AnswerQuery(const acfIID& iid, void** out)
{
    if (iid == IID_IACFUnknown || iid == IID_IAAXEffectDescriptorV1)
        return AnswerInterface<AAX_IACFEffectDescriptor>(this, out);
    if (iid == IID_CHostEffectDescriptor)
        return AnswerInterface<CHostEffectDescriptor>(this, out);
    return ACF_E_NOINTERFACE;
}

IACFUnknown* CHostEffectDescriptor::NewComponentDescriptor()
{
    return static_cast<AAX_IACFComponentDescriptor*>(new CHostComponentDescriptor);
}

AAX_Result CHostEffectDescriptor::AddComponent(IACFUnknown* component)
{
    auto* ours = OwnObject<CHostComponentDescriptor>(component, IID_CHostComponentDescriptor);
    if (!ours)
        return AAX_ERROR_NULL_COMPONENT;
    mComponents.push_back(ours);  // keeps the reference OwnObject took
    return AAX_SUCCESS;
}

AAX_Result CHostEffectDescriptor::AddName(const char* name)
{
    if (!name)
        return AAX_ERROR_NULL_ARGUMENT;
    mInfo.names.emplace_back(name);
    return AAX_SUCCESS;
}

AAX_Result CHostEffectDescriptor::AddCategory(uint32_t category)
{
    mInfo.categories.push_back(category);
    return AAX_SUCCESS;
}

AAX_Result CHostEffectDescriptor::AddCategoryBypassParameter(uint32_t category, AAX_CParamID id)
{
    mInfo.categoryBypassParameters.emplace_back(category, Text(id));
    return AAX_SUCCESS;
}

AAX_Result CHostEffectDescriptor::AddProcPtr(void* proc, AAX_CProcPtrID id)
{
    if (!proc)
        return AAX_ERROR_NULL_ARGUMENT;
    mInfo.procPtrs.emplace_back(id, proc);
    return AAX_SUCCESS;
}

IACFUnknown* CHostEffectDescriptor::NewPropertyMap()
{
    return static_cast<AAX_IACFPropertyMap*>(new CHostPropertyMap);
}

AAX_Result CHostEffectDescriptor::SetProperties(IACFUnknown* properties)
{
    mInfo.properties = ReadPropertyMap(properties);
    return AAX_SUCCESS;
}

SEffectInfo CHostEffectDescriptor::Info() const
{
    SEffectInfo info = mInfo;
    for (const auto* c : mComponents)
        info.components.push_back(c->Info());
    return info;
}

// ---- collection -------------------------------------------------------------

CHostCollection::~CHostCollection()
{
    for (auto& e : mEffects)
        e.second->Release();
}

ACFRESULT CHostCollection::AnswerQuery(const acfIID& iid, void** out)
{
    if (iid == IID_IACFUnknown || iid == IID_IAAXCollectionV1)
        return AnswerInterface<AAX_IACFCollection>(this, out);
    if (iid == IID_IACFPluginDefinition)
        return AnswerInterface<IACFPluginDefinition>(this, out);
    return ACF_E_NOINTERFACE;
}

IACFUnknown* CHostCollection::NewDescriptor()
{
    return static_cast<AAX_IACFEffectDescriptor*>(new CHostEffectDescriptor);
}

AAX_Result CHostCollection::AddEffect(const char* effectID, IACFUnknown* descriptor)
{
    if (!effectID || !*effectID)
        return AAX_ERROR_NULL_ARGUMENT;
    for (const auto& e : mEffects)
        if (e.first == effectID)
            return AAX_ERROR_DUPLICATE_EFFECT_ID;
    auto* ours = OwnObject<CHostEffectDescriptor>(descriptor, IID_CHostEffectDescriptor);
    if (!ours)
        return AAX_ERROR_NULL_OBJECT;
    mEffects.emplace_back(effectID, ours);
    return AAX_SUCCESS;
}

AAX_Result CHostCollection::SetManufacturerName(const char* name)
{
    mInfo.manufacturerName = Text(name);
    return AAX_SUCCESS;
}

AAX_Result CHostCollection::AddPackageName(const char* name)
{
    mInfo.packageNames.push_back(Text(name));
    return AAX_SUCCESS;
}

AAX_Result CHostCollection::SetPackageVersion(uint32_t version)
{
    mInfo.packageVersion = version;
    mInfo.packageVersionSet = true;
    return AAX_SUCCESS;
}

IACFUnknown* CHostCollection::NewPropertyMap()
{
    return static_cast<AAX_IACFPropertyMap*>(new CHostPropertyMap);
}

AAX_Result CHostCollection::SetProperties(IACFUnknown* properties)
{
    mInfo.properties = ReadPropertyMap(properties);
    return AAX_SUCCESS;
}

SPluginInfo CHostCollection::Info() const
{
    SPluginInfo info = mInfo;
    for (const auto& e : mEffects) {
        SEffectInfo effect = e.second->Info();
        effect.effectID = e.first;
        info.effects.push_back(std::move(effect));
    }
    return info;
}

}  // namespace AAXHost
