#include "DescriptionPrinter.h"

#include <cstdio>

#include "AAX.h"

namespace AAXHost {

using nlohmann::json;

namespace {

bool IsFieldCall(const std::string& call)
{
    return call != "AddAuxOutputStem" && call != "NewPropertyMap" && call != "AddProcessProc_Native";
}

std::string Hex(uint64_t v, int digits)
{
    char buf[32];
    std::snprintf(buf, sizeof buf, "0x%0*llX", digits, static_cast<unsigned long long>(v));
    return buf;
}

json PropertiesToJson(const PropertyList& props)
{
    json arr = json::array();
    for (const auto& p : props) {
        json j = {{"id", p.first}, {"name", PropertyName(p.first)}, {"value", p.second}};
        const std::string cc = FourCCText(static_cast<uint32_t>(p.second));
        if (!cc.empty())
            j["fourcc"] = cc.substr(1, 4);
        arr.push_back(j);
    }
    return arr;
}

json ComponentToJson(const SComponentInfo& c)
{
    json fields = json::array();
    json calls = json::array();
    for (const auto& call : c.calls) {
        calls.push_back(call.call);
        if (!IsFieldCall(call.call))
            continue;
        json f = {{"index", call.fieldIndex}, {"call", call.call}};
        for (const auto& a : call.args)
            f[a.first] = a.second;
        if (call.call == "AddMIDINode")
            f["name"] = call.name;
        fields.push_back(f);
    }
    json nodes = json::array();
    for (const auto& n : c.midiNodes)
        nodes.push_back({{"index", n.fieldIndex}, {"type", n.type}, {"type_name", MidiNodeTypeName(n.type)},
                         {"name", n.name}, {"channel_mask", n.channelMask}});
    json stems = json::array();
    for (const auto& s : c.stems)
        stems.push_back({{"index", s.fieldIndex}, {"format", s.format},
                         {"channels", AAX_STEM_FORMAT_CHANNEL_COUNT(s.format)}, {"name", s.name}});
    json procs = json::array();
    for (const auto& p : c.processProcs)
        procs.push_back({{"kind", "native"},
                         {"instance_init", p.instanceInitProc != nullptr},
                         {"background", p.backgroundProc != nullptr},
                         {"has_properties", p.hasProperties},
                         {"properties", PropertiesToJson(p.properties)}});
    return {{"fields", fields}, {"midi_nodes", nodes}, {"stems", stems}, {"process_procs", procs}, {"calls", calls}};
}

}  // namespace

std::string PropertyName(int32_t id)
{
    switch (id) {
    case AAX_eProperty_ManufacturerID: return "ManufacturerID";
    case AAX_eProperty_ProductID: return "ProductID";
    case AAX_eProperty_PlugInID_Native: return "PlugInID_Native";
    case AAX_eProperty_PlugInID_AudioSuite: return "PlugInID_AudioSuite";
    case AAX_eProperty_InputStemFormat: return "InputStemFormat";
    case AAX_eProperty_OutputStemFormat: return "OutputStemFormat";
    case AAX_eProperty_SampleRate: return "SampleRate";
    case AAX_eProperty_CanBypass: return "CanBypass";
    case AAX_eProperty_UsesClientGUI: return "UsesClientGUI";
    default: return "Property_" + std::to_string(id);
    }
}

std::string MidiNodeTypeName(int32_t type)
{
    switch (type) {
    case AAX_eMIDINodeType_LocalInput: return "LocalInput";
    case AAX_eMIDINodeType_LocalOutput: return "LocalOutput";
    case AAX_eMIDINodeType_Global: return "Global";
    case AAX_eMIDINodeType_Transport: return "Transport";
    default: return "Unknown";
    }
}

std::string ProcPtrName(int32_t id)
{
    switch (id) {
    case kAAX_ProcPtrID_Create_EffectParameters: return "Create_EffectParameters";
    case kAAX_ProcPtrID_Create_EffectGUI: return "Create_EffectGUI";
    case kAAX_ProcPtrID_Create_HostProcessor: return "Create_HostProcessor";
    default: return "ProcPtr_" + std::to_string(id);
    }
}

std::string FourCCText(uint32_t value)
{
    std::string s = "'";
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char c = static_cast<char>((value >> shift) & 0xFF);
        if (c < 0x20 || c > 0x7E)
            return "";
        s += c;
    }
    return s + "'";
}

json DescriptionToJson(const SPluginInfo& info, const SDescribeContext& where)
{
    json effects = json::array();
    for (const auto& e : info.effects) {
        json procs = json::array();
        for (const auto& p : e.procPtrs)
            procs.push_back({{"id", p.first}, {"name", ProcPtrName(p.first)}});
        json bypass = json::array();
        for (const auto& b : e.categoryBypassParameters)
            bypass.push_back({{"category", b.first}, {"parameter", b.second}});
        json components = json::array();
        for (const auto& c : e.components)
            components.push_back(ComponentToJson(c));
        effects.push_back({{"effect_id", e.effectID},
                           {"names", e.names},
                           {"categories", e.categories},
                           {"category_bypass_parameters", bypass},
                           {"procedures", procs},
                           {"properties", PropertiesToJson(e.properties)},
                           {"components", components}});
    }
    return {{"format", "aaxhost-describe-1"},
            {"bundle", where.bundlePath},
            {"library", where.libraryPath},
            {"wrapper", WrapperStatusToJson(where.wrapper)},
            {"sdk_version", Hex(info.sdkVersion, 16)},
            {"manufacturer", info.manufacturerName},
            {"package_names", info.packageNames},
            {"package_version", info.packageVersionSet ? json(info.packageVersion) : json(nullptr)},
            {"properties", PropertiesToJson(info.properties)},
            {"effects", effects},
            {"can_unload_now", where.canUnloadNow}};
}

void PrintDescription(std::ostream& out, const SPluginInfo& info, const SDescribeContext& where)
{
    out << "Bundle:          " << where.bundlePath << "\n"
        << "Library:         " << where.libraryPath << "\n";
    if (where.wrapper.present)
        out << "Host mode:       " << where.wrapper.mode << "\n"
            << "Wraps:           " << (where.wrapper.plugin.empty() ? "(nothing found)" : where.wrapper.plugin)
            << (where.wrapper.loaded ? "" : " (not loaded: " + where.wrapper.error + ")") << "\n";
    if (where.wrapper.present && where.wrapper.loaded)
        out << "Wrapped vendor:  " << where.wrapper.vendor << "\n"
            << "Wrapped version: " << where.wrapper.version << "\n"
            << "Latency:         " << where.wrapper.latency << " samples\n"
            << "Tail:            "
            << (where.wrapper.tail.empty()      ? std::string("(not declared)")
                : where.wrapper.tail == "infinite" ? where.wrapper.tail
                                                   : where.wrapper.tail + " samples")
            << "\n";
    if (where.wrapper.present && where.wrapper.loaded)
        for (const SWrappedOutput& o : where.wrapper.outputs)
            out << "Output bus " << o.bus << ":    \"" << o.name << "\" (" << o.channels << (o.channels == 1 ? " channel" : " channels") << ") plays into "
                << (o.plays == "dropped" ? std::string("nothing (no stem left)")
                    : o.plays == "main"  ? std::string("the main output")
                                         : o.plays)
                << "\n";
    out
        << "SDK version:     " << Hex(info.sdkVersion, 16) << "\n"
        << "Manufacturer:    " << info.manufacturerName << "\n";
    for (const auto& n : info.packageNames)
        out << "Package name:    " << n << "\n";
    out << "Package version: " << (info.packageVersionSet ? std::to_string(info.packageVersion) : "(not set)") << "\n";
    for (const auto& e : info.effects) {
        out << "\nEffect " << e.effectID << "\n";
        for (const auto& n : e.names)
            out << "  Name:      " << n << "\n";
        for (const auto c : e.categories)
            out << "  Category:  " << Hex(c, 8) << "\n";
        for (const auto& b : e.categoryBypassParameters)
            out << "  Category bypass: " << Hex(b.first, 8) << " " << b.second << "\n";
        for (const auto& p : e.properties)
            out << "  Property " << PropertyName(p.first) << " (" << p.first << ") = " << p.second << "\n";
        size_t index = 0;
        for (const auto& c : e.components) {
            out << "  Component " << index++ << "\n    Fields (registration order):\n";
            for (const auto& call : c.calls) {
                if (!IsFieldCall(call.call))
                    continue;
                out << "      [" << call.fieldIndex << "] " << call.call;
                for (const auto& a : call.args)
                    out << " " << a.first << "=" << a.second;
                if (!call.name.empty())
                    out << " name=\"" << call.name << "\"";
                out << "\n";
            }
            out << "    MIDI nodes:\n";
            for (const auto& n : c.midiNodes)
                out << "      [" << n.fieldIndex << "] " << MidiNodeTypeName(n.type) << " \"" << n.name
                    << "\" mask=" << Hex(n.channelMask, 4) << "\n";
            out << "    Output stems (" << c.stems.size() << "):\n";
            for (const auto& s : c.stems)
                out << "      [" << s.fieldIndex << "] \"" << s.name << "\" format=" << Hex(static_cast<uint32_t>(s.format), 8)
                    << " channels=" << AAX_STEM_FORMAT_CHANNEL_COUNT(s.format) << "\n";
            for (const auto& p : c.processProcs) {
                out << "    Native process procedure" << (p.instanceInitProc ? ", instance init" : "")
                    << (p.backgroundProc ? ", background" : "") << (p.hasProperties ? "" : ", no property map") << "\n";
                for (const auto& prop : p.properties) {
                    out << "      Property " << PropertyName(prop.first) << " (" << prop.first << ") = " << prop.second;
                    const std::string cc = FourCCText(static_cast<uint32_t>(prop.second));
                    if (!cc.empty())
                        out << " " << cc;
                    out << "\n";
                }
            }
        }
        out << "  Procedures:\n";
        for (const auto& p : e.procPtrs)
            out << "    " << p.first << " " << ProcPtrName(p.first) << "\n";
    }
    out << "\nACFCanUnloadNow: " << where.canUnloadNow << "\n";
}

}  // namespace AAXHost
