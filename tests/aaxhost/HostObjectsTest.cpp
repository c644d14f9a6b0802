// The ACF contract every host-side object keeps, through the shared base:
// what a plug-in relies on when it queries, holds and releases them.
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
    EXPECT_EQ(out, static_cast<void*>(static_cast<TInterface*>(object)));
    EXPECT_EQ(static_cast<TInterface*>(out)->Release(), 1u);
    EXPECT_EQ(object->Release(), 0u);  // deletes: ASan sees a wrong destructor
}

}  // namespace

TEST(HostObjects, EachAnswersItsInterfacesAndCountsReferences)
{
    ExpectAnswers<CHostServices, AAX_IACFHostServices>(new CHostServices, IID_IAAXHostServicesV1);
    ExpectAnswers<CHostViewContainer, AAX_IACFViewContainer>(new CHostViewContainer, IID_IAAXViewContainerV1);
    ExpectAnswers<CHostPropertyMap, AAX_IACFPropertyMap>(new CHostPropertyMap, IID_CHostPropertyMap);
    ExpectAnswers<CHostCollection, IACFPluginDefinition>(new CHostCollection, IID_IACFPluginDefinition);
    ExpectAnswers<CHostCollection, AAX_IACFCollection>(new CHostCollection, IID_IACFUnknown);
}

TEST(HostObjects, ControllerSharesOneCountAcrossItsThreeInterfaces)
{
    STransportState transport;
    auto* controller = new CHostController("com.test", 44100.0f, 1, 2, transport);
    void* delegate = nullptr;
    void* transportView = nullptr;
    ASSERT_EQ(controller->QueryInterface(IID_IAAXAutomationDelegateV1, &delegate), ACF_OK);
    ASSERT_EQ(controller->QueryInterface(IID_IAAXTransportV1, &transportView), ACF_OK);
    EXPECT_EQ(static_cast<AAX_IACFAutomationDelegate*>(delegate)->AddRef(), 4u);
    EXPECT_EQ(static_cast<AAX_IACFAutomationDelegate*>(delegate)->Release(), 3u);
    EXPECT_EQ(controller->Release(), 2u);
    EXPECT_EQ(static_cast<AAX_IACFAutomationDelegate*>(delegate)->Release(), 1u);
    // The last reference goes through a secondary base.
    EXPECT_EQ(static_cast<AAX_IACFTransport*>(transportView)->Release(), 0u);
}

TEST(HostObjects, GettersRefuseNullAndAnswerValues)
{
    STransportState transport;
    transport.tempo = 90.0;
    auto* controller = new CHostController("com.test", 44100.0f, 1, 2, transport);
    AAX_CSampleRate rate = 0;
    int32_t format = 0;
    double tempo = 0.0;
    EXPECT_EQ(controller->GetSampleRate(nullptr), AAX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(controller->GetSampleRate(&rate), AAX_SUCCESS);
    EXPECT_EQ(rate, 44100.0f);
    EXPECT_EQ(controller->GetOutputStemFormat(&format), AAX_SUCCESS);
    EXPECT_EQ(format, 2);
    EXPECT_EQ(controller->GetCurrentTempo(nullptr), AAX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(controller->GetCurrentTempo(&tempo), AAX_SUCCESS);
    EXPECT_EQ(tempo, 90.0);
    controller->Release();
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
