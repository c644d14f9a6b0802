// Proxies of the description family: the collection, effect and component
// descriptors and their property maps. Objects the host creates for us are
// wrapped and owned by the proxy that asked for them.
#include "AAX_VCollection.h"
#include "AAX_VComponentDescriptor.h"
#include "AAX_VEffectDescriptor.h"
#include "AAX_VPropertyMap.h"

namespace {
template <typename TInterface>
TInterface* QueryHost(IACFUnknown* unknown, const acfIID& iid)
{
    void* p = nullptr;
    if (unknown == nullptr || unknown->QueryInterface(iid, &p) != ACF_OK) return nullptr;
    return static_cast<TInterface*>(p);
}

// Wraps a new host object (whose creation reference we are given) in a
// proxy kept by `owner`; null when the host gave nothing usable.
template <typename TProxy>
TProxy* Adopt(IACFUnknown* created, std::vector<std::unique_ptr<TProxy>>& owner)
{
    if (created == nullptr) return nullptr;
    std::unique_ptr<TProxy> proxy(new TProxy(created));
    created->Release();  // the proxy holds its own reference
    if (!proxy->IsValid()) return nullptr;
    owner.push_back(std::move(proxy));
    return owner.back().get();
}
}  // namespace

// ---- Property map ----------------------------------------------------------

AAX_VPropertyMap::AAX_VPropertyMap(IACFUnknown* pUnknown)
    : mIPropertyMap(QueryHost<AAX_IACFPropertyMap>(pUnknown, IID_IAAXPropertyMapV1))
{
}

AAX_VPropertyMap::~AAX_VPropertyMap()
{
    if (mIPropertyMap != nullptr) mIPropertyMap->Release();
}

AAX_CBoolean AAX_VPropertyMap::GetProperty(AAX_EProperty inProperty, AAX_CPropertyValue* outValue) const
{
    return mIPropertyMap != nullptr ? mIPropertyMap->GetProperty(inProperty, outValue) : 0;
}

AAX_Result AAX_VPropertyMap::AddProperty(AAX_EProperty inProperty, AAX_CPropertyValue inValue)
{
    return mIPropertyMap != nullptr ? mIPropertyMap->AddProperty(inProperty, inValue) : AAX_ERROR_NULL_OBJECT;
}

AAX_Result AAX_VPropertyMap::RemoveProperty(AAX_EProperty inProperty)
{
    return mIPropertyMap != nullptr ? mIPropertyMap->RemoveProperty(inProperty) : AAX_ERROR_NULL_OBJECT;
}

// ---- Component descriptor --------------------------------------------------

AAX_VComponentDescriptor::AAX_VComponentDescriptor(IACFUnknown* pUnknown)
    : mIComponentDescriptor(QueryHost<AAX_IACFComponentDescriptor>(pUnknown, IID_IAAXComponentDescriptorV1))
{
}

AAX_VComponentDescriptor::~AAX_VComponentDescriptor()
{
    mPropertyMaps.clear();
    if (mIComponentDescriptor != nullptr) mIComponentDescriptor->Release();
}

#define AAXLIB_FORWARD(target, call) return (target) != nullptr ? (target)->call : AAX_ERROR_NULL_OBJECT

AAX_Result AAX_VComponentDescriptor::Clear() { AAXLIB_FORWARD(mIComponentDescriptor, Clear()); }
AAX_Result AAX_VComponentDescriptor::AddAudioIn(AAX_CFieldIndex i) { AAXLIB_FORWARD(mIComponentDescriptor, AddAudioIn(i)); }
AAX_Result AAX_VComponentDescriptor::AddAudioOut(AAX_CFieldIndex i) { AAXLIB_FORWARD(mIComponentDescriptor, AddAudioOut(i)); }
AAX_Result AAX_VComponentDescriptor::AddAudioBufferLength(AAX_CFieldIndex i)
{
    AAXLIB_FORWARD(mIComponentDescriptor, AddAudioBufferLength(i));
}
AAX_Result AAX_VComponentDescriptor::AddSampleRate(AAX_CFieldIndex i) { AAXLIB_FORWARD(mIComponentDescriptor, AddSampleRate(i)); }
AAX_Result AAX_VComponentDescriptor::AddClock(AAX_CFieldIndex i) { AAXLIB_FORWARD(mIComponentDescriptor, AddClock(i)); }
AAX_Result AAX_VComponentDescriptor::AddSideChainIn(AAX_CFieldIndex i) { AAXLIB_FORWARD(mIComponentDescriptor, AddSideChainIn(i)); }
AAX_Result AAX_VComponentDescriptor::AddDataInPort(AAX_CFieldIndex i, uint32_t size, AAX_EDataInPortType type)
{
    AAXLIB_FORWARD(mIComponentDescriptor, AddDataInPort(i, size, type));
}
AAX_Result AAX_VComponentDescriptor::AddAuxOutputStem(AAX_CFieldIndex i, int32_t format, const char* name)
{
    AAXLIB_FORWARD(mIComponentDescriptor, AddAuxOutputStem(i, format, name));
}
AAX_Result AAX_VComponentDescriptor::AddPrivateData(AAX_CFieldIndex i, int32_t size, uint32_t options)
{
    AAXLIB_FORWARD(mIComponentDescriptor, AddPrivateData(i, size, options));
}
AAX_Result AAX_VComponentDescriptor::AddMIDINode(AAX_CFieldIndex i, AAX_EMIDINodeType type, const char* name, uint32_t mask)
{
    AAXLIB_FORWARD(mIComponentDescriptor, AddMIDINode(i, type, name, mask));
}

AAX_IPropertyMap* AAX_VComponentDescriptor::NewPropertyMap()
{
    if (mIComponentDescriptor == nullptr) return nullptr;
    return Adopt(mIComponentDescriptor->NewPropertyMap(), mPropertyMaps);
}

AAX_Result AAX_VComponentDescriptor::AddProcessProc_Native(AAX_CProcessProc inProcessProc, AAX_IPropertyMap* inProperties,
                                                           AAX_CInstanceInitProc inInstanceInitProc,
                                                           AAX_CBackgroundProc inBackgroundProc, AAX_CSelector* outProcID)
{
    AAXLIB_FORWARD(mIComponentDescriptor,
                   AddProcessProc_Native(inProcessProc, inProperties != nullptr ? inProperties->GetIUnknown() : nullptr,
                                         inInstanceInitProc, inBackgroundProc, outProcID));
}

// ---- Effect descriptor -----------------------------------------------------

AAX_VEffectDescriptor::AAX_VEffectDescriptor(IACFUnknown* pUnknown)
    : mIEffectDescriptor(QueryHost<AAX_IACFEffectDescriptor>(pUnknown, IID_IAAXEffectDescriptorV1))
{
}

AAX_VEffectDescriptor::~AAX_VEffectDescriptor()
{
    mComponentDescriptors.clear();
    mPropertyMaps.clear();
    if (mIEffectDescriptor != nullptr) mIEffectDescriptor->Release();
}

AAX_IComponentDescriptor* AAX_VEffectDescriptor::NewComponentDescriptor()
{
    if (mIEffectDescriptor == nullptr) return nullptr;
    return Adopt(mIEffectDescriptor->NewComponentDescriptor(), mComponentDescriptors);
}

AAX_Result AAX_VEffectDescriptor::AddComponent(AAX_IComponentDescriptor* inComponentDescriptor)
{
    AAXLIB_FORWARD(mIEffectDescriptor,
                   AddComponent(inComponentDescriptor != nullptr ? inComponentDescriptor->GetIUnknown() : nullptr));
}
AAX_Result AAX_VEffectDescriptor::AddName(const char* name) { AAXLIB_FORWARD(mIEffectDescriptor, AddName(name)); }
AAX_Result AAX_VEffectDescriptor::AddCategory(uint32_t category) { AAXLIB_FORWARD(mIEffectDescriptor, AddCategory(category)); }
AAX_Result AAX_VEffectDescriptor::AddCategoryBypassParameter(uint32_t category, AAX_CParamID id)
{
    AAXLIB_FORWARD(mIEffectDescriptor, AddCategoryBypassParameter(category, id));
}
AAX_Result AAX_VEffectDescriptor::AddProcPtr(void* proc, AAX_CProcPtrID id) { AAXLIB_FORWARD(mIEffectDescriptor, AddProcPtr(proc, id)); }

AAX_IPropertyMap* AAX_VEffectDescriptor::NewPropertyMap()
{
    if (mIEffectDescriptor == nullptr) return nullptr;
    return Adopt(mIEffectDescriptor->NewPropertyMap(), mPropertyMaps);
}

AAX_Result AAX_VEffectDescriptor::SetProperties(AAX_IPropertyMap* inProperties)
{
    AAXLIB_FORWARD(mIEffectDescriptor, SetProperties(inProperties != nullptr ? inProperties->GetIUnknown() : nullptr));
}

// ---- Collection ------------------------------------------------------------

AAX_VCollection::AAX_VCollection(IACFUnknown* pUnknown)
    : mIACFCollection(QueryHost<AAX_IACFCollection>(pUnknown, IID_IAAXCollectionV1))
{
}

AAX_VCollection::~AAX_VCollection()
{
    mEffectDescriptors.clear();
    mPropertyMaps.clear();
    if (mIACFCollection != nullptr) mIACFCollection->Release();
}

AAX_IEffectDescriptor* AAX_VCollection::NewDescriptor()
{
    if (mIACFCollection == nullptr) return nullptr;
    return Adopt(mIACFCollection->NewDescriptor(), mEffectDescriptors);
}

AAX_Result AAX_VCollection::AddEffect(const char* inEffectID, AAX_IEffectDescriptor* inEffectDescriptor)
{
    AAXLIB_FORWARD(mIACFCollection,
                   AddEffect(inEffectID, inEffectDescriptor != nullptr ? inEffectDescriptor->GetIUnknown() : nullptr));
}
AAX_Result AAX_VCollection::SetManufacturerName(const char* name) { AAXLIB_FORWARD(mIACFCollection, SetManufacturerName(name)); }
AAX_Result AAX_VCollection::AddPackageName(const char* name) { AAXLIB_FORWARD(mIACFCollection, AddPackageName(name)); }
AAX_Result AAX_VCollection::SetPackageVersion(uint32_t version) { AAXLIB_FORWARD(mIACFCollection, SetPackageVersion(version)); }

AAX_IPropertyMap* AAX_VCollection::NewPropertyMap()
{
    if (mIACFCollection == nullptr) return nullptr;
    return Adopt(mIACFCollection->NewPropertyMap(), mPropertyMaps);
}

AAX_Result AAX_VCollection::SetProperties(AAX_IPropertyMap* inProperties)
{
    AAXLIB_FORWARD(mIACFCollection, SetProperties(inProperties != nullptr ? inProperties->GetIUnknown() : nullptr));
}

#undef AAXLIB_FORWARD
