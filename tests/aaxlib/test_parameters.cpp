#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "AAX_CBinaryDisplayDelegate.h"
#include "AAX_CBinaryTaperDelegate.h"
#include "AAX_CLinearTaperDelegate.h"
#include "AAX_CNumberDisplayDelegate.h"
#include "AAX_CParameter.h"
#include "AAX_CParameterManager.h"
#include "AAX_VAutomationDelegate.h"
#include "HostDoubles.h"

using aaxlib_test::HostController;

namespace {

using FloatParam = AAX_CParameter<float>;

FloatParam* MakeFloat(const char* id, float def = 0.5f)
{
    return new FloatParam(id, AAX_CString(id), def, AAX_CLinearTaperDelegate<float, 0>(0.0f, 1.0f),
                          AAX_CNumberDisplayDelegate<float, 2, 0>(), true);
}

// A host automation object seen through the library's own proxy.
struct AutomationFixture : ::testing::Test {
    HostController host;
    AAX_VAutomationDelegate automation{static_cast<AAX_IACFAutomationDelegate*>(&host)};
};

}  // namespace

TEST(TapersAndDisplays, ClampingSnappingShorteningAndParsing)
{
    AAX_CLinearTaperDelegate<float, 0> taper(20.0f, 20000.0f);
    EXPECT_FLOAT_EQ(10010.0f, taper.NormalizedToReal(0.5));
    EXPECT_FLOAT_EQ(20000.0f, taper.NormalizedToReal(1.5));
    EXPECT_FLOAT_EQ(20.0f, taper.NormalizedToReal(-3.0));
    EXPECT_DOUBLE_EQ(1.0, taper.RealToNormalized(30000.0f));
    EXPECT_DOUBLE_EQ(0.0, taper.RealToNormalized(10.0f));
    EXPECT_FLOAT_EQ(1.2f, (AAX_CLinearTaperDelegate<float, 10>(0.0f, 10.0f).NormalizedToReal(0.123)));

    // A switch is on for any positive value.
    AAX_CBinaryTaperDelegate<bool> binary;
    EXPECT_TRUE(binary.NormalizedToReal(0.0001));
    EXPECT_FALSE(binary.NormalizedToReal(0.0));
    EXPECT_FALSE(binary.NormalizedToReal(-0.5));

    // Displays: shortening, parsing and exact texts.
    AAX_CNumberDisplayDelegate<float, 2, 0> number;
    AAX_CString text;
    EXPECT_TRUE(number.ValueToString(3.14159f, &text));
    EXPECT_EQ("3.14", text.StdString());
    EXPECT_TRUE(number.ValueToString(1234.567f, 5, &text));
    EXPECT_EQ("1235", text.StdString());
    EXPECT_TRUE(number.ValueToString(123456.0f, 3, &text));
    EXPECT_EQ(3u, text.Length());
    float v = 9.0f;
    EXPECT_TRUE(number.StringToValue(AAX_CString("-2.5"), &v));
    EXPECT_FLOAT_EQ(-2.5f, v);
    EXPECT_FALSE(number.StringToValue(AAX_CString("loud"), &v));
    EXPECT_EQ(0.0f, v);
    EXPECT_FALSE(number.StringToValue(AAX_CString(""), &v));

    AAX_CBinaryDisplayDelegate<bool> onOff("Off", "On");
    bool b = false;
    EXPECT_TRUE(onOff.StringToValue(AAX_CString("On"), &b) && b);
    EXPECT_TRUE(onOff.StringToValue(AAX_CString("Off"), &b) && !b);
    b = true;
    EXPECT_FALSE(onOff.StringToValue(AAX_CString("on"), &b));  // case matters
    EXPECT_FALSE(b);

    // A parameter refuses a text its display cannot read and keeps its value.
    std::unique_ptr<FloatParam> p(MakeFloat("g", 0.25f));
    EXPECT_FALSE(p->SetValueFromString(AAX_CString("abc")));
    EXPECT_FLOAT_EQ(0.25f, p->GetValue());
    // Identifiers longer than the host's 31 characters are cut.
    std::unique_ptr<FloatParam> longID(MakeFloat(std::string(40, 'x').c_str()));
    EXPECT_EQ(std::string(31, 'x'), longID->Identifier());
}

// Updates report only real changes; requests are clamped and wait for the host.
TEST_F(AutomationFixture, UpdatesAndRequests)
{
    std::unique_ptr<FloatParam> p(MakeFloat("1"));
    p->SetAutomationDelegate(&automation);
    p->UpdateNormalizedValue(0.75);
    p->UpdateNormalizedValue(0.75);
    ASSERT_EQ(1u, host.currentValues.size());
    EXPECT_DOUBLE_EQ(0.75, host.currentValues[0].second);
    // Values clamped to the same real value are no change either.
    p->UpdateNormalizedValue(1.0);
    p->UpdateNormalizedValue(1.2);
    EXPECT_EQ(2u, host.currentValues.size());

    std::unique_ptr<FloatParam> q(MakeFloat("7"));
    q->SetAutomationDelegate(&automation);
    q->SetNormalizedValue(1.7);
    EXPECT_EQ((std::vector<std::string>{"touch 7", "set 7", "release 7"}), host.events);
    ASSERT_EQ(1u, host.setRequests.size());
    EXPECT_DOUBLE_EQ(1.0, host.setRequests[0].second);
    EXPECT_FLOAT_EQ(0.5f, q->GetValue());
}

TEST_F(AutomationFixture, ManagerKeepsTheFirstOfDuplicateIdentifiers)
{
    AAX_CParameterManager manager;
    manager.Initialize(&automation);
    FloatParam* first = MakeFloat("a");
    manager.AddParameter(first);
    manager.AddParameter(MakeFloat("b"));
    manager.AddParameter(nullptr);
    FloatParam* duplicate = MakeFloat("a", 0.9f);
    manager.AddParameter(duplicate);

    EXPECT_EQ(2, manager.NumParameters());
    EXPECT_EQ(first, manager.GetParameterByID("a"));
    EXPECT_EQ(nullptr, manager.GetParameter(2));
    EXPECT_EQ(nullptr, manager.GetParameter(-1));
    EXPECT_EQ(-1, manager.ControlIndexFromID(nullptr));
    EXPECT_EQ(nullptr, manager.GetParameterByID("c"));
    // Only the accepted ones were attached to the host's automation; the
    // refused object is still usable by whoever holds it.
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), host.registered);
    EXPECT_FLOAT_EQ(0.9f, duplicate->GetValue());

    manager.RemoveParameterByID("a");
    EXPECT_EQ(0, manager.ControlIndexFromID("b"));
    EXPECT_EQ(nullptr, manager.GetParameterByID("a"));
}
