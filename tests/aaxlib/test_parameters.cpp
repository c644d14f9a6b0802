#include <gtest/gtest.h>

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
using BoolParam = AAX_CParameter<bool>;

FloatParam* MakeFloat(const char* id, float def = 0.5f, float lo = 0.0f, float hi = 1.0f)
{
    return new FloatParam(id, AAX_CString(id), def, AAX_CLinearTaperDelegate<float, 0>(lo, hi),
                          AAX_CNumberDisplayDelegate<float, 2, 0>(), true);
}

BoolParam* MakeBool(const char* id, bool def = false)
{
    return new BoolParam(id, AAX_CString(id), def, AAX_CBinaryTaperDelegate<bool>(),
                         AAX_CBinaryDisplayDelegate<bool>("Off", "On"), true);
}

// A host automation object seen through the library's own proxy.
struct AutomationFixture : ::testing::Test {
    HostController host;
    AAX_VAutomationDelegate automation{static_cast<AAX_IACFAutomationDelegate*>(&host)};
};

}  // namespace

TEST(Tapers, LinearMapsClampsAndRoundTrips)
{
    AAX_CLinearTaperDelegate<float, 0> taper(20.0f, 20000.0f);
    EXPECT_FLOAT_EQ(10010.0f, taper.NormalizedToReal(0.5));
    EXPECT_FLOAT_EQ(20000.0f, taper.NormalizedToReal(1.5));
    EXPECT_FLOAT_EQ(20.0f, taper.NormalizedToReal(-3.0));
    EXPECT_DOUBLE_EQ(1.0, taper.RealToNormalized(30000.0f));
    EXPECT_DOUBLE_EQ(0.0, taper.RealToNormalized(10.0f));
    EXPECT_FLOAT_EQ(20.0f, taper.GetMinimumValue());
    std::unique_ptr<AAX_ITaperDelegate<float>> clone(taper.Clone());
    EXPECT_FLOAT_EQ(20000.0f, clone->GetMaximumValue());

    // A precision snaps real values.
    AAX_CLinearTaperDelegate<float, 10> coarse(0.0f, 10.0f);
    EXPECT_FLOAT_EQ(1.2f, coarse.NormalizedToReal(0.123));
}

TEST(Tapers, BinaryIsTrueForAnyPositiveValue)
{
    AAX_CBinaryTaperDelegate<bool> taper;
    EXPECT_TRUE(taper.NormalizedToReal(0.0001));
    EXPECT_FALSE(taper.NormalizedToReal(0.0));
    EXPECT_FALSE(taper.NormalizedToReal(-0.5));
    EXPECT_EQ(1.0, taper.RealToNormalized(true));
    EXPECT_EQ(0.0, taper.RealToNormalized(false));
}

TEST(Displays, NumberFormatsParsesAndShortens)
{
    AAX_CNumberDisplayDelegate<float, 2, 0> display;
    AAX_CString text;
    EXPECT_TRUE(display.ValueToString(3.14159f, &text));
    EXPECT_EQ("3.14", text.StdString());
    EXPECT_TRUE(display.ValueToString(1234.567f, 5, &text));
    EXPECT_LE(text.Length(), 5u);
    EXPECT_EQ("1235", text.StdString());
    EXPECT_TRUE(display.ValueToString(123456.0f, 3, &text));
    EXPECT_EQ(3u, text.Length());

    float v = 9.0f;
    EXPECT_TRUE(display.StringToValue(AAX_CString("-2.5"), &v));
    EXPECT_FLOAT_EQ(-2.5f, v);
    EXPECT_FALSE(display.StringToValue(AAX_CString("loud"), &v));
    EXPECT_EQ(0.0f, v);
    EXPECT_FALSE(display.StringToValue(AAX_CString(""), &v));
}

TEST(Displays, BinaryUsesExactTexts)
{
    AAX_CBinaryDisplayDelegate<bool> display("Off", "On");
    AAX_CString text;
    EXPECT_TRUE(display.ValueToString(true, &text));
    EXPECT_EQ("On", text.StdString());
    bool b = false;
    EXPECT_TRUE(display.StringToValue(AAX_CString("On"), &b));
    EXPECT_TRUE(b);
    EXPECT_TRUE(display.StringToValue(AAX_CString("Off"), &b));
    EXPECT_FALSE(b);
    b = true;
    EXPECT_FALSE(display.StringToValue(AAX_CString("on"), &b));
    EXPECT_FALSE(b);
}

TEST(Parameter, ConstructionCutsIdentifierAndSetsDefaults)
{
    const std::string longID(40, 'x');
    std::unique_ptr<FloatParam> p(MakeFloat(longID.c_str()));
    EXPECT_EQ(std::string(31, 'x'), p->Identifier());
    EXPECT_EQ(128u, p->GetNumberOfSteps());
    EXPECT_EQ(AAX_eParameterType_Continuous, p->GetType());
    EXPECT_FLOAT_EQ(0.5f, p->GetValue());
    EXPECT_DOUBLE_EQ(0.5, p->GetNormalizedDefaultValue());
    EXPECT_FALSE(p->NeedNotify());
}

TEST(Parameter, OnlyTheMatchingTypedAccessorSucceeds)
{
    std::unique_ptr<FloatParam> f(MakeFloat("f", 0.25f));
    std::unique_ptr<BoolParam> b(MakeBool("b", true));
    float fv = 0;
    bool bv = false;
    int32_t iv = 0;
    double dv = 0;
    AAX_CString sv;
    EXPECT_TRUE(f->GetValueAsFloat(&fv));
    EXPECT_FLOAT_EQ(0.25f, fv);
    EXPECT_FALSE(f->GetValueAsBool(&bv));
    EXPECT_FALSE(f->GetValueAsInt32(&iv));
    EXPECT_FALSE(f->GetValueAsDouble(&dv));
    EXPECT_FALSE(f->GetValueAsString(&sv));
    EXPECT_FALSE(f->SetValueWithBool(true));
    EXPECT_TRUE(b->GetValueAsBool(&bv));
    EXPECT_TRUE(bv);
    EXPECT_FALSE(b->GetValueAsFloat(&fv));
    EXPECT_TRUE(b->SetValueWithBool(false));
    EXPECT_FALSE(b->GetValue());
}

TEST(Parameter, ValueStringsGoThroughTheDisplay)
{
    std::unique_ptr<FloatParam> p(MakeFloat("g", 10.0f, 0.0f, 100.0f));
    AAX_CString text;
    EXPECT_TRUE(p->GetValueString(&text));
    EXPECT_EQ("10.00", text.StdString());
    EXPECT_TRUE(p->GetStringFromNormalizedValue(0.5, text));
    EXPECT_EQ("50.00", text.StdString());
    double n = 0;
    EXPECT_TRUE(p->GetNormalizedValueFromString(AAX_CString("25"), &n));
    EXPECT_DOUBLE_EQ(0.25, n);
    EXPECT_TRUE(p->SetValueFromString(AAX_CString("75")));
    EXPECT_FLOAT_EQ(75.0f, p->GetValue());
    EXPECT_FALSE(p->SetValueFromString(AAX_CString("abc")));
    EXPECT_FLOAT_EQ(75.0f, p->GetValue());
}

TEST(Parameter, ShortenedNamePicksTheBestFit)
{
    AAX_CParameter<float> p("c", AAX_CString("Cutoff Frequency"), 0.0f, AAX_CLinearTaperDelegate<float, 0>(),
                            AAX_CNumberDisplayDelegate<float, 2, 0>());
    p.AddShortenedName(AAX_CString("Cutoff"));
    p.AddShortenedName(AAX_CString("Cut"));
    EXPECT_EQ("Cutoff Frequency", p.ShortenedName(20).StdString());
    EXPECT_EQ("Cutoff", p.ShortenedName(8).StdString());
    EXPECT_EQ("Cut", p.ShortenedName(4).StdString());
    EXPECT_EQ("Cut", p.ShortenedName(1).StdString());
}

TEST_F(AutomationFixture, UpdatesReportOnlyRealChanges)
{
    std::unique_ptr<FloatParam> p(MakeFloat("1"));
    p->SetAutomationDelegate(&automation);
    EXPECT_EQ(std::vector<std::string>{"1"}, host.registered);

    p->UpdateNormalizedValue(0.75);
    p->UpdateNormalizedValue(0.75);
    ASSERT_EQ(1u, host.currentValues.size());
    EXPECT_DOUBLE_EQ(0.75, host.currentValues[0].second);
    EXPECT_FLOAT_EQ(0.75f, p->GetValue());

    // Values clamped to the same real value are no change either.
    p->UpdateNormalizedValue(1.0);
    p->UpdateNormalizedValue(1.2);
    EXPECT_EQ(2u, host.currentValues.size());
}

TEST_F(AutomationFixture, RequestsGoThroughTheHostAndAreTapered)
{
    std::unique_ptr<FloatParam> p(MakeFloat("7"));
    p->SetAutomationDelegate(&automation);
    p->SetNormalizedValue(1.7);
    // Touch, request (clamped), release; the value waits for the host.
    EXPECT_EQ((std::vector<std::string>{"touch 7", "set 7", "release 7"}), host.events);
    ASSERT_EQ(1u, host.setRequests.size());
    EXPECT_DOUBLE_EQ(1.0, host.setRequests[0].second);
    EXPECT_FLOAT_EQ(0.5f, p->GetValue());
    EXPECT_TRUE(host.currentValues.empty());

    // Without automation the request takes effect at once.
    p->SetAutomationDelegate(nullptr);
    p->SetNormalizedValue(0.2);
    EXPECT_FLOAT_EQ(0.2f, p->GetValue());
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
    EXPECT_EQ(first, manager.GetParameter(0));
    EXPECT_EQ(nullptr, manager.GetParameter(2));
    EXPECT_EQ(nullptr, manager.GetParameter(-1));
    EXPECT_EQ(0, manager.ControlIndexFromID("a"));
    EXPECT_EQ(1, manager.ControlIndexFromID("b"));
    EXPECT_EQ(-1, manager.ControlIndexFromID("c"));
    EXPECT_EQ(-1, manager.ControlIndexFromID(nullptr));
    EXPECT_EQ(nullptr, manager.GetParameterByID("c"));
    // Only the accepted ones were attached to the host's automation.
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), host.registered);
    // The refused object is still usable by whoever holds it.
    EXPECT_FLOAT_EQ(0.9f, duplicate->GetValue());

    manager.RemoveParameterByID("a");
    EXPECT_EQ(1, manager.NumParameters());
    EXPECT_EQ(0, manager.ControlIndexFromID("b"));
    EXPECT_EQ(nullptr, manager.GetParameterByID("a"));
}
