// What a plug-in may hand the host's objects wrongly: null out-pointers,
// interfaces they do not have, components made by someone else.
#include <gtest/gtest.h>

#include "HostController.h"
#include "HostDescriptors.h"
#include "HostPropertyMap.h"
#include "HostServices.h"
#include "HostViewContainer.h"

using namespace AAXHost;

namespace {

constexpr acfIID kForeignIID = {0x12345678, 0x1, 0x2, {1, 2, 3, 4, 5, 6, 7, 8}};

// Queries iid on a fresh object (one reference), checks the answer and the
// count it leaves, and releases everything.
template <class TObject, class TInterface>
void ExpectAnswers(TObject* object, const acfIID& iid)
{
    EXPECT_EQ(object->QueryInterface(iid, nullptr), ACF_E_POINTER);
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(object->QueryInterface(kForeignIID, &out), ACF_E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    ASSERT_EQ(object->QueryInterface(iid, &out), ACF_OK);
    EXPECT_EQ(static_cast<TInterface*>(out)->Release(), 1u);
    EXPECT_EQ(object->Release(), 0u);  // deletes: ASan sees a wrong destructor
}

}  // namespace

TEST(HostObjects, EachRefusesNullAndForeignQueriesAndCountsReferences)
{
    ExpectAnswers<CHostServices, AAX_IACFHostServices>(new CHostServices, IID_IAAXHostServicesV1);
    ExpectAnswers<CHostViewContainer, AAX_IACFViewContainer>(new CHostViewContainer, IID_IAAXViewContainerV1);
    ExpectAnswers<CHostPropertyMap, AAX_IACFPropertyMap>(new CHostPropertyMap, IID_CHostPropertyMap);
    ExpectAnswers<CHostCollection, IACFPluginDefinition>(new CHostCollection, IID_IACFPluginDefinition);
    STransportState transport;
    auto* controller = new CHostController("com.test", 44100.0f, 1, 2, transport);
    EXPECT_EQ(controller->GetSampleRate(nullptr), AAX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(controller->GetCurrentTempo(nullptr), AAX_ERROR_NULL_ARGUMENT);
    // The last reference goes through a secondary base.
    void* transportView = nullptr;
    ASSERT_EQ(controller->QueryInterface(IID_IAAXTransportV1, &transportView), ACF_OK);
    EXPECT_EQ(controller->Release(), 1u);
    EXPECT_EQ(static_cast<AAX_IACFTransport*>(transportView)->Release(), 0u);
}

TEST(HostObjects, EffectDescriptorKeepsOnlyItsOwnComponents)
{
    auto* collection = new CHostCollection;
    IACFUnknown* effect = collection->NewDescriptor();
    auto* effectDescriptor = static_cast<AAX_IACFEffectDescriptor*>(effect);
    IACFUnknown* component = effectDescriptor->NewComponentDescriptor();
    EXPECT_EQ(effectDescriptor->AddComponent(component), AAX_SUCCESS);
    auto* foreign = new CHostPropertyMap;
    EXPECT_EQ(effectDescriptor->AddComponent(static_cast<AAX_IACFPropertyMap*>(foreign)), AAX_ERROR_NULL_COMPONENT);
    EXPECT_EQ(collection->AddEffect("com.test.effect", effect), AAX_SUCCESS);
    EXPECT_EQ(collection->Info().effects.at(0).components.size(), 1u);
    foreign->Release();
    component->Release();
    effect->Release();
    EXPECT_EQ(collection->RefCount(), 1u);
    collection->Release();
}
