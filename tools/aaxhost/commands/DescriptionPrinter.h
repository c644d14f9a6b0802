// Prints a plug-in's registered description as text or as stable JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "WrapperStatus.h"
#include <ostream>
#include <string>

#include "PluginDescription.h"

namespace AAXHost {

struct SDescribeContext {
    std::string bundlePath;
    std::string libraryPath;
    int32_t canUnloadNow = -1;
    SWrapperStatus wrapper;  // empty for bundles that are no wrapper
};

nlohmann::json DescriptionToJson(const SPluginInfo& info, const SDescribeContext& where);
void PrintDescription(std::ostream& out, const SPluginInfo& info, const SDescribeContext& where);

// Names used in both forms.
std::string PropertyName(int32_t id);
std::string MidiNodeTypeName(int32_t type);
std::string ProcPtrName(int32_t id);
// "'Mrvn'" when the value reads as four printable characters, else empty.
std::string FourCCText(uint32_t value);

}  // namespace AAXHost
