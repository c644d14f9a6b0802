#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AAX_CEffectGUI.h"
#include "AAX_CHostServices.h"
#include "AAX_Exports.h"
#include "AAX_VCollection.h"
#include "AAX_VController.h"
#include "AAX_VTransport.h"
#include "AAX_VViewContainer.h"
#include "CACFUnknown.h"
#include "HostDoubles.h"
#include "TestEffect.h"

using namespace aaxlib_test;

namespace {

// What the test's GetEffectDescriptions does on the next registration.
enum class Describe { Fail, Full };
Describe gDescribe = Describe::Full;

class Counted : public IACFUnknown, public CACFUnknown {
public:
    ACF_DECLARE_STANDARD_UNKNOWN()
    Counted() = default;
    explicit Counted(IACFUnknown* outer) : CACFUnknown(outer) {}
};

class TestGUI : public AAX_CEffectGUI {
public:
    static AAX_IEffectGUI* Create() { return new TestGUI; }
    std::vector<std::string> calls;

protected:
    void CreateViewContents() override { calls.emplace_back("contents"); }
    void CreateViewContainer() override
    {
        calls.emplace_back(GetViewContainer() != nullptr && GetViewContainerPtr() != nullptr ? "open" : "open-empty");
    }
    void DeleteViewContainer() override { calls.emplace_back(GetViewContainer() != nullptr ? "close" : "close-empty"); }
};

}  // namespace

// Defined by the plug-in in a real bundle; here it drives the registration tests.
AAX_Result GetEffectDescriptions(AAX_ICollection* collection)
{
    if (gDescribe == Describe::Fail) return -42;
    AAX_IEffectDescriptor* effect = collection->NewDescriptor();
    if (effect == nullptr) return AAX_ERROR_NULL_OBJECT;
    AAX_IComponentDescriptor* component = effect->NewComponentDescriptor();
    if (component == nullptr) return AAX_ERROR_NULL_OBJECT;
    component->AddAudioOut(6);
    component->AddMIDINode(2, AAX_eMIDINodeType_LocalInput, "node", 0xFFFF);
    AAX_IPropertyMap* properties = component->NewPropertyMap();
    if (properties != nullptr) properties->AddProperty(AAX_eProperty_ManufacturerID, AAX_FourCC("Mrvn"));
    component->AddProcessProc_Native(nullptr, properties);
    effect->AddComponent(component);
    effect->AddProcPtr(reinterpret_cast<void*>(&TestEffect::Create), kAAX_ProcPtrID_Create_EffectParameters);
    const AAX_Result result = collection->AddEffect("com.example.test", effect);
    collection->SetManufacturerName("Morvane");
    return result;
}

TEST(ACFUnknown, ReferenceCountingAndBaseQuery)
{
    const int32_t before = CACFUnknown::GetActiveObjectCount();
    auto* object = new Counted;
    EXPECT_EQ(before + 1, CACFUnknown::GetActiveObjectCount());
    EXPECT_EQ(0, object->GetReferenceCount());
    EXPECT_EQ(1u, object->InternalAddRef());

    void* out = reinterpret_cast<void*>(1);
    EXPECT_EQ(ACF_E_NOINTERFACE, object->QueryInterface(IID_IAAXControllerV1, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(ACF_OK, object->QueryInterface(IID_IACFUnknown, &out));
    EXPECT_EQ(object->GetPrivateUnknown(), out);
    EXPECT_EQ(2, object->GetReferenceCount());
    EXPECT_EQ(1u, static_cast<IACFUnknown*>(out)->Release());
    EXPECT_EQ(0u, object->InternalRelease());  // frees it
    EXPECT_EQ(before, CACFUnknown::GetActiveObjectCount());
}

TEST(ACFUnknown, AggregatedObjectSharesItsOuterIdentity)
{
    HostNothing outer;
    auto* inner = new Counted(&outer);
    void* out = nullptr;
    EXPECT_EQ(ACF_OK, inner->QueryInterface(IID_IACFUnknown, &out));
    EXPECT_EQ(static_cast<IACFUnknown*>(&outer), out);
    inner->AddRef();
    EXPECT_EQ(2, outer.counter.refs);
    EXPECT_EQ(0, inner->GetReferenceCount());
    inner->Release();
    outer.Release();
    // The outer object owns the inner one through its private unknown.
    inner->GetPrivateUnknown()->AddRef();
    EXPECT_EQ(0u, inner->GetPrivateUnknown()->Release());
    EXPECT_EQ(0, outer.counter.refs);
}

TEST(Proxies, AHostThatAnswersNothingGetsNullObjectAnswers)
{
    HostNothing nothing;
    {
        AAX_VController controller(&nothing);
        AAX_VTransport transport(&nothing);
        AAX_VViewContainer view(&nothing);
        AAX_VCollection collection(&nothing);
        AAX_VController none(nullptr);
        AAX_CSampleRate rate = 0;
        double tempo = 0;
        EXPECT_FALSE(controller.IsValid());
        EXPECT_EQ(AAX_ERROR_NULL_OBJECT, controller.GetSampleRate(&rate));
        EXPECT_EQ(AAX_ERROR_NULL_OBJECT, controller.PostPacket(0, &rate, 4));
        EXPECT_EQ(AAX_ERROR_NULL_OBJECT, none.GetSampleRate(&rate));
        EXPECT_EQ(AAX_ERROR_NULL_OBJECT, transport.GetCurrentTempo(&tempo));
        EXPECT_EQ(AAX_eViewContainer_Type_NULL, view.GetType());
        EXPECT_EQ(nullptr, view.GetPtr());
        EXPECT_EQ(nullptr, collection.NewDescriptor());
        EXPECT_EQ(nullptr, collection.GetIUnknown());
        EXPECT_EQ(AAX_ERROR_NULL_OBJECT, collection.AddEffect("x", nullptr));
    }
    EXPECT_EQ(0, nothing.counter.refs);
}

TEST(Exports, RegisterPluginHandsBackTheCollectionAndReleasesTheRest)
{
    HostCollection host;
    gDescribe = Describe::Full;
    IACFPluginDefinition* definition = nullptr;
    EXPECT_EQ(0, AAXRegisterPlugin(static_cast<AAX_IACFCollection*>(&host), &definition));
    EXPECT_EQ(static_cast<IACFPluginDefinition*>(&host), definition);
    // Only the reference handed back remains.
    EXPECT_EQ(1, host.counter.refs);
    definition->Release();

    ASSERT_EQ(1u, host.effects.size());
    HostEffectDescriptor* effect = host.effects[0];
    EXPECT_EQ(0, effect->counter.refs);
    EXPECT_EQ((std::vector<std::string>{"AddComponent", "AddProcPtr 0"}), effect->calls);
    ASSERT_EQ(1u, effect->components.size());
    HostComponentDescriptor* component = effect->components[0];
    EXPECT_EQ(0, component->counter.refs);
    EXPECT_EQ((std::vector<std::string>{"AudioOut 6", "MIDINode 2 0 node 65535", "ProcessProc with-properties"}),
              component->calls);
    ASSERT_EQ(1u, component->maps.size());
    EXPECT_EQ(0, component->maps[0]->counter.refs);
    EXPECT_EQ(AAX_FourCC("Mrvn"), static_cast<uint32_t>(component->maps[0]->properties.at(0).second));
    EXPECT_EQ((std::vector<std::string>{"AddEffect com.example.test", "SetManufacturerName Morvane"}), host.calls);
}

TEST(Exports, RegisterPluginFailuresReleaseTheCollection)
{
    {
        HostCollection host;
        gDescribe = Describe::Fail;
        IACFPluginDefinition* definition = nullptr;
        EXPECT_EQ(-42, AAXRegisterPlugin(static_cast<AAX_IACFCollection*>(&host), &definition));
        EXPECT_EQ(0, host.counter.refs);
    }
    {
        HostCollection host;
        host.answerPluginDefinition = false;
        gDescribe = Describe::Full;
        IACFPluginDefinition* definition = static_cast<IACFPluginDefinition*>(&host);  // must be reset
        EXPECT_EQ(AAX_ERROR_NULL_OBJECT, AAXRegisterPlugin(static_cast<AAX_IACFCollection*>(&host), &definition));
        EXPECT_EQ(nullptr, definition);
        EXPECT_EQ(0, host.counter.refs);
    }
    {
        HostCollection host;
        host.giveDescriptor = false;
        IACFPluginDefinition* definition = nullptr;
        EXPECT_EQ(AAX_ERROR_NULL_OBJECT, AAXRegisterPlugin(static_cast<AAX_IACFCollection*>(&host), &definition));
        EXPECT_EQ(0, host.counter.refs);
    }
}

TEST(Exports, FixedAnswers)
{
    uint64_t version = 0;
    EXPECT_EQ(0, AAXGetSDKVersion(&version));
    EXPECT_EQ(0x000002000061125CULL, version);

    IACFUnknown* component = reinterpret_cast<IACFUnknown*>(&version);
    EXPECT_EQ(0, AAXRegisterComponent(nullptr, 0, &component));
    EXPECT_EQ(nullptr, component);
    void* factory = &version;
    EXPECT_EQ(AAX_ERROR_UNIMPLEMENTED, AAXGetClassFactory(nullptr, IID_IACFUnknown, IID_IACFUnknown, &factory));
    EXPECT_EQ(nullptr, factory);
}

TEST(Exports, CanUnloadOnlyWhenEveryObjectIsReleased)
{
    const int32_t before = AAXCanUnloadNow(nullptr);
    HostController host;
    AAX_IEffectParameters* effect = reinterpret_cast<AAX_CreateEffectParametersProc>(&TestEffect::Create)();
    void* p = nullptr;
    effect->QueryInterface(IID_IAAXEffectParametersV1, &p);
    effect->Initialize(static_cast<AAX_IACFController*>(&host));
    EXPECT_EQ(before + 1, AAXCanUnloadNow(nullptr));
    effect->Uninitialize();
    effect->Release();
    EXPECT_EQ(before, AAXCanUnloadNow(nullptr));
    EXPECT_EQ(0, host.counter.refs);
}

TEST(Exports, StartupAndShutdownSetTheHostServices)
{
    HostServices services;
    EXPECT_EQ(0, AAXStartup(&services));
    EXPECT_TRUE(AAX_CHostServices::IsSet());
    EXPECT_EQ(0, AAX_CHostServices::Trace(1, "value %d", 7));
    EXPECT_EQ(0, AAX_CHostServices::HandleAssertFailure("f.cpp", 3, "x!=0"));
    EXPECT_EQ((std::vector<std::string>{"value 7", "f.cpp:3 x!=0"}), services.traces);
    EXPECT_EQ(0, AAXShutdown(&services));
    EXPECT_FALSE(AAX_CHostServices::IsSet());
    EXPECT_EQ(AAX_ERROR_NULL_OBJECT, AAX_CHostServices::Trace(1, "gone"));
    EXPECT_EQ(0, services.counter.refs);
}

TEST(EffectGUI, ViewLifecycleAndReferences)
{
    const int32_t before = CACFUnknown::GetActiveObjectCount();
    HostController host;
    AAX_IEffectParameters* effect = TestEffect::Create();
    void* p = nullptr;
    effect->QueryInterface(IID_IAAXEffectParametersV1, &p);
    effect->Initialize(static_cast<AAX_IACFController*>(&host));

    AAX_IEffectGUI* gui = reinterpret_cast<AAX_CreateEffectGUIProc>(&TestGUI::Create)();
    ASSERT_EQ(ACF_OK, gui->QueryInterface(IID_IAAXEffectGUIV1, &p));
    EXPECT_EQ(static_cast<void*>(static_cast<AAX_IACFEffectGUI*>(gui)), p);
    auto* testGUI = dynamic_cast<TestGUI*>(gui);
    ASSERT_NE(nullptr, testGUI);

    ASSERT_EQ(AAX_SUCCESS, gui->Initialize(effect));
    EXPECT_NE(nullptr, dynamic_cast<TestEffect*>(testGUI->GetEffectParameters()));
    EXPECT_EQ(nullptr, testGUI->GetViewContainer());

    HostViewContainer container;
    EXPECT_EQ(AAX_SUCCESS, gui->SetViewContainer(&container));
    EXPECT_EQ(&container.nativeView, testGUI->GetViewContainerPtr());
    EXPECT_EQ(AAX_eViewContainer_Type_NSView, testGUI->GetViewContainerType());
    EXPECT_EQ(AAX_SUCCESS, gui->SetViewContainer(nullptr));
    EXPECT_EQ(nullptr, testGUI->GetViewContainer());
    EXPECT_EQ(0, container.counter.refs);

    // An open view is closed by Uninitialize.
    gui->SetViewContainer(&container);
    gui->Uninitialize();
    EXPECT_EQ((std::vector<std::string>{"contents", "open", "close", "open", "close"}), testGUI->calls);
    EXPECT_EQ(0, container.counter.refs);
    EXPECT_EQ(0u, gui->Release());

    // The GUI gave back its reference on the effect parameters.
    effect->Uninitialize();
    EXPECT_EQ(0u, effect->Release());
    EXPECT_EQ(before, CACFUnknown::GetActiveObjectCount());
    EXPECT_EQ(0, host.counter.refs);

    // An object that is not an effect is refused.
    HostNothing nothing;
    AAX_IEffectGUI* lonely = TestGUI::Create();
    lonely->AddRef();
    EXPECT_EQ(AAX_ERROR_NULL_OBJECT, lonely->Initialize(&nothing));
    lonely->Release();
}
