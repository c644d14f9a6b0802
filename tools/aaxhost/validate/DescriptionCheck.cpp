// description: what the plug-in registered is complete and consistent, its
// master bypass works, and a wrapper really hosts its plug-in.
#include <set>

#include "AAX.h"
#include "AAX_IDescription.h"
#include "CheckProcess.h"
#include "CheckRegistry.h"
#include "HostString.h"
#include "ParameterList.h"
#include "PluginSession.h"
#include "ProcessingRig.h"
#include "SelfBypass.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

// Contexts are structs of pointers; an index beyond this is a typo, not a
// context (hosts size the context from the highest index).
constexpr int32_t kMaxFieldIndex = 255;

// Aux output stems carry a field index by signature only: their channels
// follow the main ones in the output array.
bool IsFieldCall(const std::string& call) { return call != "AddAuxOutputStem"; }

void CheckEffects(const SPluginInfo& info, SCheckResult& result)
{
    std::set<std::string> ids;
    for (const SEffectInfo& e : info.effects) {
        if (e.effectID.empty())
            result.Fail("an effect has an empty ID");
        else if (!ids.insert(e.effectID).second)
            result.Fail("effect ID \"" + e.effectID + "\" is registered twice");
        if (e.names.empty() || e.names.front().empty())
            result.Fail("effect \"" + e.effectID + "\" has no name");
        if (!e.ProcPtr(kAAX_ProcPtrID_Create_EffectParameters))
            result.Fail("effect \"" + e.effectID + "\" registered no effect-parameters factory");
        if (!FindProcessingComponent(e))
            result.Fail("effect \"" + e.effectID + "\" registered no native process procedure");
    }
}

void CheckFields(const SComponentInfo& component, SCheckResult& result)
{
    std::set<int32_t> used;
    int32_t highest = -1;
    for (const SComponentCall& c : component.calls) {
        if (!IsFieldCall(c.call) || c.fieldIndex < 0)
            continue;
        if (c.fieldIndex > kMaxFieldIndex)
            result.Fail(c.call + " uses field index " + std::to_string(c.fieldIndex) + ", beyond any context");
        else if (!used.insert(c.fieldIndex).second)
            result.Fail(c.call + " reuses field index " + std::to_string(c.fieldIndex));
        highest = std::max(highest, c.fieldIndex);
    }
    result.details["fields"] = used.size();
    result.details["highest_field_index"] = highest;
}

void CheckStemsAndMidi(const SComponentInfo& component, const SEffectInfo& effect, SCheckResult& result)
{
    std::set<std::string> stemNames;
    for (const SStemInfo& s : component.stems) {
        if (s.name.empty())
            result.Fail("a stem has no name");
        else if (!stemNames.insert(s.name).second)
            result.Fail("stem name \"" + s.name + "\" is used twice");
        if (AAX_STEM_FORMAT_CHANNEL_COUNT(s.format) <= 0)
            result.Fail("stem \"" + s.name + "\" has a format with no channels");
    }
    int inputs = 0;
    for (const SMidiNodeInfo& m : component.midiNodes) {
        if (m.name.empty())
            result.Fail("a MIDI node has no name");
        if (m.type < AAX_eMIDINodeType_LocalInput || m.type > AAX_eMIDINodeType_Transport)
            result.Fail("MIDI node \"" + m.name + "\" has an unknown type " + std::to_string(m.type));
        if (m.type == AAX_eMIDINodeType_LocalInput) {
            ++inputs;
            if (m.channelMask == 0)
                result.Fail("MIDI input \"" + m.name + "\" listens to no channel (mask 0)");
        }
    }
    bool instrument = false;
    for (uint32_t c : effect.categories)
        instrument = instrument || (c & AAX_ePlugInCategory_SWGenerators) != 0;
    if (instrument && inputs == 0)
        result.Fail("an instrument with no MIDI input node");
    result.details["stems"] = component.stems.size();
    result.details["midi_nodes"] = component.midiNodes.size();
}

// The main pair carries the input through once the bypass is on; where
// the plug-in bypasses itself, it plays what the plug-in plays bypassed.
void CheckBypass(CValidationContext& context, const std::string& bypassID, SCheckResult& result)
{
    SetCheckPhase("bypass: instance creation");
    CProcessingRig rig(context.Effect(), context.Component(), 48000.0, 512);
    std::string error;
    if (!rig.Create(error)) {
        result.Fail("instance for the bypass test: " + error);
        return;
    }
    rig.SetTestInput(true);
    SetCheckPhase("bypass: SetParameterNormalizedValue");
    if (rig.Instance().SetParameter(bypassID, 1.0) != AAX_SUCCESS) {
        result.Fail("setting the master bypass \"" + bypassID + "\" failed");
        return;
    }
    SetCheckPhase("bypass: processing");
    float worst = 0.0f;
    if (rig.Instance().WrapperStatus().pluginBypasses) {
        JudgeOwnBypass(rig, std::vector<int32_t>(8, 512), result);
        rig.Instance().Destroy();
        return;
    }
    for (int i = 0; i < 8; ++i) {
        rig.Process(512);
        if (i >= 2)  // hosts allow a short cross-fade into bypass
            worst = std::max(worst, rig.MainOutputDistanceFromInput(512));
    }
    result.details["bypass_max_difference"] = worst;
    if (!(worst <= 1e-6f))
        result.Fail("with the master bypass on, the main output differs from the input by up to " +
                    std::to_string(worst));
    rig.Instance().Destroy();
}

void CheckParameterIDs(CValidationContext& context, SCheckResult& result)
{
    SetCheckPhase("instance creation");
    CProcessingRig rig(context.Effect(), context.Component(), 48000.0, 512);
    std::string error;
    const bool created = rig.Create(error);
    const SWrapperStatus& wrapper = rig.Instance().WrapperStatus();
    result.details["wrapper"] = wrapper.present ? nlohmann::json{{"mode", wrapper.mode}, {"loaded", wrapper.loaded},
                                                               {"plugin", wrapper.plugin}}
                                                : nlohmann::json(nullptr);
    if (!created) {
        result.Fail(error);
        return;
    }
    SetCheckPhase("reading parameters");
    std::vector<SParameterInfo> params;
    if (!ReadParameters(*rig.Instance().Effect(), params, error)) {
        result.Fail(error);
        return;
    }
    std::set<std::string> ids;
    std::string bypassID;
    for (const SParameterInfo& p : params) {
        if (p.id.empty())
            result.Fail("a parameter has an empty ID");
        else if (!ids.insert(p.id).second)
            result.Fail("parameter ID \"" + p.id + "\" is used twice");
        if (p.name.empty())
            result.Fail("parameter \"" + p.id + "\" has no name");
        if (!(p.defaultValue >= 0.0 && p.defaultValue <= 1.0))
            result.Fail("parameter \"" + p.id + "\" has a default outside 0..1");
        if (p.isMasterBypass)
            bypassID = p.id;
    }
    result.details["parameters"] = params.size();
    rig.Instance().Destroy();
    if (bypassID.empty()) {
        result.Fail("no master bypass parameter (GetMasterBypassParameter names none of the parameters)");
        return;
    }
    result.details["master_bypass"] = bypassID;
    CheckBypass(context, bypassID, result);
}

}  // namespace

void CheckDescription(CValidationContext& context, SCheckResult& result)
{
    std::string error;
    if (!context.Open(error)) {
        result.Fail(error);
        return;
    }
    const SPluginInfo& info = context.Session().Info();
    if (info.manufacturerName.empty())
        result.Fail("no manufacturer name");
    if (info.packageNames.empty())
        result.Fail("no package name");
    CheckEffects(info, result);
    CheckFields(context.Component(), result);
    CheckStemsAndMidi(context.Component(), context.Effect(), result);
    CheckParameterIDs(context, result);
    result.details["effects"] = info.effects.size();
    if (!context.Close(error))
        result.Fail(error);
    result.Note(std::to_string(info.effects.size()) + " effect(s), " +
                std::to_string(result.details.value("parameters", 0)) + " parameters, " +
                std::to_string(context.Component().stems.size()) + " stems");
}

}  // namespace AAXHost
