// What a plug-in told the host at registration, in the order it said it.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace AAXHost {

// One registration call made on a component descriptor.
struct SComponentCall {
    std::string call;  // name of the descriptor method, e.g. "AddAudioIn"
    int32_t fieldIndex = -1;
    std::vector<std::pair<std::string, int64_t>> args;  // numeric arguments after the field index
    std::string name;  // text argument (MIDI node or stem name), if any
};

struct SMidiNodeInfo {
    int32_t fieldIndex = 0;
    int32_t type = 0;
    std::string name;
    uint32_t channelMask = 0;
};

struct SStemInfo {
    int32_t fieldIndex = 0;
    int32_t format = 0;
    std::string name;
};

using PropertyList = std::vector<std::pair<int32_t, int32_t>>;  // id, value; insertion order

struct SProcessProcInfo {
    void* proc = nullptr;
    void* instanceInitProc = nullptr;
    void* backgroundProc = nullptr;
    bool hasProperties = false;
    PropertyList properties;
};

struct SComponentInfo {
    std::vector<SComponentCall> calls;  // every call, fields, stems and procedures alike
    std::vector<SMidiNodeInfo> midiNodes;
    std::vector<SStemInfo> stems;
    std::vector<SProcessProcInfo> processProcs;
};

struct SEffectInfo {
    std::string effectID;
    std::vector<std::string> names;
    std::vector<uint32_t> categories;
    std::vector<std::pair<uint32_t, std::string>> categoryBypassParameters;
    std::vector<std::pair<int32_t, void*>> procPtrs;  // procedure ID, address
    std::vector<SComponentInfo> components;
    PropertyList properties;

    void* ProcPtr(int32_t id) const;
};

struct SPluginInfo {
    uint64_t sdkVersion = 0;
    std::string manufacturerName;
    std::vector<std::string> packageNames;
    uint32_t packageVersion = 0;
    bool packageVersionSet = false;
    PropertyList properties;
    std::vector<SEffectInfo> effects;
};

// The component that carries a native process procedure, or null.
const SComponentInfo* FindProcessingComponent(const SEffectInfo& effect);

}  // namespace AAXHost
