// Main-thread benchmarks: large state transfer and set-up of a plug-in with
// very many parameters, through the wrapped probe plug-in.
#pragma once

#include <string>

namespace BenchProcess {

void RegisterStateBenchmarks(const std::string& probeBundle);

}  // namespace BenchProcess
