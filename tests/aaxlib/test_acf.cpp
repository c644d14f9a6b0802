#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AAX_Exports.h"
#include "AAX_VCollection.h"
#include "AAX_VController.h"
#include "AAX_VTransport.h"
#include "AAX_VViewContainer.h"
#include "CACFUnknown.h"
#include "HostDoubles.h"

using namespace aaxlib_test;

namespace {

// What the test's GetEffectDescriptions answers on the next registration.
AAX_Result gDescribeResult = AAX_SUCCESS;

class Counted : public IACFUnknown, public CACFUnknown {
public:
    ACF_DECLARE_STANDARD_UNKNOWN()
    Counted() = default;
    explicit Counted(IACFUnknown* outer) : CACFUnknown(outer) {}
};

}  // namespace

// Defined by the front end in a real bundle (described end to end by aaxhost);
// here it only drives the registration failure paths.
AAX_Result GetEffectDescriptions(AAX_ICollection*) { return gDescribeResult; }

TEST(ACFUnknown, ReferenceCountingOwnAndAggregated)
{
    const int32_t before = CACFUnknown::GetActiveObjectCount();
    auto* object = new Counted;
    EXPECT_EQ(before + 1, CACFUnknown::GetActiveObjectCount());
    EXPECT_EQ(1u, object->InternalAddRef());
    void* out = reinterpret_cast<void*>(1);
    EXPECT_EQ(ACF_E_NOINTERFACE, object->QueryInterface(IID_IAAXControllerV1, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(ACF_OK, object->QueryInterface(IID_IACFUnknown, &out));
    EXPECT_EQ(object->GetPrivateUnknown(), out);
    EXPECT_EQ(1u, static_cast<IACFUnknown*>(out)->Release());
    EXPECT_EQ(0u, object->InternalRelease());  // frees it
    EXPECT_EQ(before, CACFUnknown::GetActiveObjectCount());

    // An aggregated object answers with, and counts on, its outer identity.
    HostController outer;
    IACFUnknown* outerUnknown = static_cast<AAX_IACFController*>(&outer);
    auto* inner = new Counted(outerUnknown);
    EXPECT_EQ(ACF_OK, inner->QueryInterface(IID_IACFUnknown, &out));
    EXPECT_EQ(outerUnknown, out);
    inner->AddRef();
    EXPECT_EQ(2, outer.counter.refs);
    EXPECT_EQ(0, inner->GetReferenceCount());
    inner->Release();
    outerUnknown->Release();
    inner->GetPrivateUnknown()->AddRef();
    EXPECT_EQ(0u, inner->GetPrivateUnknown()->Release());
    EXPECT_EQ(0, outer.counter.refs);
    EXPECT_EQ(before, CACFUnknown::GetActiveObjectCount());
}

TEST(Proxies, AHostThatAnswersNothingGetsNullObjectAnswers)
{
    HostController host;
    host.answerInterfaces = false;
    IACFUnknown* nothing = static_cast<AAX_IACFController*>(&host);
    {
        AAX_VController controller(nothing);
        AAX_VTransport transport(nothing);
        AAX_VViewContainer view(nothing);
        AAX_VCollection collection(nothing);
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
    EXPECT_EQ(0, host.counter.refs);
}

// Whatever the outcome, only the plug-in definition handed back keeps a reference.
TEST(Exports, RegisterPluginReleasesTheCollectionOnEveryPath)
{
    struct Case {
        AAX_Result describe;
        bool answerDefinition;
        AAX_Result expected;
    };
    for (const Case& c : {Case{AAX_SUCCESS, true, AAX_SUCCESS}, Case{-42, true, -42},
                          Case{AAX_SUCCESS, false, AAX_ERROR_NULL_OBJECT}}) {
        SCOPED_TRACE(c.expected);
        HostCollection host;
        host.answerPluginDefinition = c.answerDefinition;
        gDescribeResult = c.describe;
        IACFPluginDefinition* definition = c.describe == AAX_SUCCESS ? static_cast<IACFPluginDefinition*>(&host) : nullptr;
        EXPECT_EQ(c.expected, AAXRegisterPlugin(static_cast<AAX_IACFCollection*>(&host), &definition));
        if (c.expected == AAX_SUCCESS) {
            EXPECT_EQ(static_cast<IACFPluginDefinition*>(&host), definition);
            EXPECT_EQ(1, host.counter.refs);
            definition->Release();
        } else if (c.describe == AAX_SUCCESS) {
            EXPECT_EQ(nullptr, definition);  // must be reset
        }
        EXPECT_EQ(0, host.counter.refs);
    }
    gDescribeResult = AAX_SUCCESS;
}
