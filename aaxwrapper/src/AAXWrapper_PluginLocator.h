// Where the wrapped VST plug-in file is looked for, in order.
#pragma once

#include <string>
#include <vector>

namespace Morvane {

// Candidate paths for "<name>.<extension>": the resource folders' answer (when
// it has one), then the macOS plug-in folders, then on Linux the usual VST 2
// (extension "vst") or VST 3 (extension "vst3") folders.
std::vector<std::string> BuildPluginCandidates(const std::string& name, const std::string& extension);

// The first candidate that opens for reading, or empty; each miss is logged.
std::string FindPluginFile(const std::vector<std::string>& candidates);

}  // namespace Morvane
