// parameters: what a host writes it reads back (or the value a switch or a
// choice snaps it to, which then stays put), texts convert both ways,
// stepped parameters land on steps, defaults restore, and automation every
// 32 samples during playback is taken.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "CheckProcess.h"
#include "CheckRegistry.h"
#include "HostString.h"
#include "ParameterList.h"
#include "ProcessingRig.h"
#include "ResultText.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

// Normalised values travel as float in VST 2 and through some hosts.
constexpr double kTolerance = 1e-5;
constexpr int32_t kAutomationBlock = 32;

// Continuous parameters report steps too (for control surfaces); only
// discrete ones must land on them.
bool IsStepped(const SParameterInfo& p) { return p.discrete && p.steps >= 2; }

bool OnStep(double value, int32_t steps)
{
    const double scaled = value * (steps - 1);
    return std::fabs(scaled - std::round(scaled)) <= 1e-4 * steps;
}

// Two texts that are the same number in the last digits a plug-in's own
// conversion loses (single precision: "5.550000" and "5.550001"), with the
// same unit after it. The wrapper passes the plug-in's texts through, so
// such a difference is the plug-in's rounding, not a lost value.
bool SameNumberAndUnit(const std::string& a, const std::string& b)
{
    char* endA = nullptr;
    char* endB = nullptr;
    const double x = std::strtod(a.c_str(), &endA);
    const double y = std::strtod(b.c_str(), &endB);
    if (endA == a.c_str() || endB == b.c_str() || std::string(endA) != std::string(endB))
        return false;
    return std::fabs(x - y) <= 1e-5 * std::max(1.0, std::max(std::fabs(x), std::fabs(y)));
}

std::string Describe(const SParameterInfo& p, const char* what, double set, double got)
{
    char text[300];
    std::snprintf(text, sizeof text, "parameter \"%s\" (%s): %s %.6f, read back %.6f", p.id.c_str(), p.name.c_str(),
                  what, set, got);
    return text;
}

class CParameterWalk {
public:
    CParameterWalk(CProcessingRig& rig, SCheckResult& result)
        : mRig(rig), mEffect(*rig.Instance().Effect()), mResult(result)
    {
    }

    // Set, then get: continuous values come back, stepped ones on a step.
    void SetAndGet(const SParameterInfo& p, double value, const char* what)
    {
        const AAX_Result r = mRig.Instance().SetParameter(p.id, value);
        CheckBeat();
        if (r != AAX_SUCCESS) {
            mResult.Fail("parameter \"" + p.id + "\": setting " + std::to_string(value) + " failed with " +
                         ResultText(r));
            return;
        }
        double got = -1.0;
        mEffect.GetParameterNormalizedValue(p.id.c_str(), &got);
        ++mSets;
        if (!(got >= 0.0 && got <= 1.0))
            mResult.Fail(Describe(p, what, value, got) + ", outside 0..1");
        else if (IsStepped(p) && !OnStep(got, p.steps))
            mResult.Fail(Describe(p, what, value, got) + ", not on one of its " + std::to_string(p.steps) +
                         " steps");
        else if (!IsStepped(p) && std::fabs(got - value) > kTolerance && !KeepsSnapped(p, got))
            mResult.Fail(Describe(p, what, value, got) + ", and does not keep that value when it is set");
    }

    // A switch, a choice or an integer takes the value nearest to what was
    // set, as the plug-in itself holds it; what it then shows must stay put.
    bool KeepsSnapped(const SParameterInfo& p, double snapped)
    {
        mRig.Instance().SetParameter(p.id, snapped);
        double again = -1.0;
        mEffect.GetParameterNormalizedValue(p.id.c_str(), &again);
        ++mSnapped;
        return std::fabs(again - snapped) <= kTolerance;
    }

    // Value to text to value to text: the second text is the first.
    void TextRoundTrip(const SParameterInfo& p, double value)
    {
        const char* id = p.id.c_str();
        CHostString first, second;
        if (mEffect.GetParameterStringFromValue(id, value, &first, 32) != AAX_SUCCESS) {
            mResult.Fail("parameter \"" + p.id + "\": GetParameterStringFromValue(" + std::to_string(value) +
                         ") failed");
            return;
        }
        double parsed = -1.0;
        if (mEffect.GetParameterValueFromString(id, &parsed, first) != AAX_SUCCESS) {
            ++mNoTextToValue;
            return;
        }
        if (!(parsed >= 0.0 && parsed <= 1.0)) {
            mResult.Fail("parameter \"" + p.id + "\": text \"" + first.Text() + "\" converts to " +
                         std::to_string(parsed) + ", outside 0..1");
            return;
        }
        mEffect.GetParameterStringFromValue(id, parsed, &second, 32);
        ++mRoundTrips;
        if (second.Text() != first.Text() && !SameNumberAndUnit(first.Text(), second.Text()))
            mResult.Fail("parameter \"" + p.id + "\": text \"" + first.Text() + "\" converts to " +
                         std::to_string(parsed) + ", shown as \"" + second.Text() + "\"");
    }

    int Sets() const { return mSets; }
    int RoundTrips() const { return mRoundTrips; }
    int NoTextToValue() const { return mNoTextToValue; }
    int Snapped() const { return mSnapped; }

private:
    CProcessingRig& mRig;
    AAX_IACFEffectParameters& mEffect;
    SCheckResult& mResult;
    int mSets = 0, mRoundTrips = 0, mNoTextToValue = 0, mSnapped = 0;
};

void Automate(CValidationContext& context, CProcessingRig& rig, const std::vector<SParameterInfo>& params,
              SCheckResult& result)
{
    std::vector<const SParameterInfo*> automatable;
    for (const auto& p : params)
        if (p.automatable && !p.isMasterBypass)
            automatable.push_back(&p);
    if (automatable.empty())
        return;
    SetCheckPhase("automation every 32 samples during processing");
    const int64_t buffers =
        static_cast<int64_t>(context.Plan().automationSeconds * rig.SampleRate() / kAutomationBlock);
    size_t next = 0;
    for (int64_t b = 0; b < buffers && result.passed; ++b) {
        const SParameterInfo& p = *automatable[next++ % automatable.size()];
        const double value = context.RandomUnit();
        if (rig.Instance().SetParameter(p.id, value) != AAX_SUCCESS)
            result.Fail("parameter \"" + p.id + "\": automation during processing failed");
        rig.Process(kAutomationBlock);
    }
    result.details["automation_buffers"] = buffers;
}

}  // namespace

void CheckParameters(CValidationContext& context, SCheckResult& result)
{
    std::string error;
    if (!context.Open(error)) {
        result.Fail(error);
        return;
    }
    SetCheckPhase("instance creation");
    CProcessingRig rig(context.Effect(), context.Component(), 48000.0, 512);
    if (!rig.Create(error)) {
        result.Fail(error);
        return;
    }
    SetCheckPhase("reading parameters");
    std::vector<SParameterInfo> params;
    if (!ReadParameters(*rig.Instance().Effect(), params, error)) {
        result.Fail(error);
        return;
    }
    CParameterWalk walk(rig, result);
    SetCheckPhase("parameters: linear traversal (set, get, text round trip)");
    for (const SParameterInfo& p : params)
        for (double v : {0.0, 0.25, 0.5, 0.75, 1.0}) {
            walk.SetAndGet(p, v, "set");
            walk.TextRoundTrip(p, v);
        }
    SetCheckPhase("parameters: random traversal");
    std::vector<size_t> order(params.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    for (int round = 0; round < context.Plan().randomParameterSets; ++round) {
        std::shuffle(order.begin(), order.end(), context.Random());
        for (size_t i : order)
            walk.SetAndGet(params[i], context.RandomUnit(), "set");
    }
    SetCheckPhase("parameters: defaults restore");
    for (const SParameterInfo& p : params)
        walk.SetAndGet(p, p.defaultValue, "default");
    Automate(context, rig, params, result);
    rig.Instance().Destroy();
    if (!context.Close(error))
        result.Fail(error);
    result.details["parameters"] = params.size();
    result.details["sets"] = walk.Sets();
    result.details["text_round_trips"] = walk.RoundTrips();
    result.details["without_text_to_value"] = walk.NoTextToValue();
    result.details["snapped_sets"] = walk.Snapped();
    result.Note(std::to_string(params.size()) + " parameters, " + std::to_string(walk.Sets()) + " sets, " +
                std::to_string(walk.RoundTrips()) + " text round trips" +
                (walk.NoTextToValue() ? " (" + std::to_string(walk.NoTextToValue()) + " texts not parsed back)"
                                      : std::string()));
}

}  // namespace AAXHost
