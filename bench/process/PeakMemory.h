// Peak resident memory of a fresh process that loads a bundle and runs a
// number of its instances: measured in a child (this same program started
// again), because a process's peak only ever grows.
#pragma once

#include <string>

namespace BenchProcess {

// The child's side: argv[1] == kPeakMemoryFlag, argv[2] the bundle, argv[3]
// the instance count (0: the bundle opened, no instance). Prints
// "vm_hwm_kb=<n> vm_rss_kb=<n> ru_maxrss_kb=<n>" and returns the exit status.
constexpr const char* kPeakMemoryFlag = "--peak-memory-child";
int RunPeakMemoryChild(const std::string& bundlePath, int instances);

struct SMemoryFigures {
    long peakKb = -1;     // high-water mark of the child's resident memory
    long currentKb = -1;  // its resident memory after the run
};

// Starts the child and reads its answer (false: error says why).
bool MeasurePeakMemory(const std::string& bundlePath, int instances, SMemoryFigures& out, std::string& error);

}  // namespace BenchProcess
