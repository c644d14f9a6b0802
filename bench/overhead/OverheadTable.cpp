#include "OverheadTable.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

namespace BenchOverhead {

namespace {

// The targets, in instructions per buffer and instance.
constexpr double kVst2Budget = 150.0;
constexpr double kVst3Budget = 600.0;
// Per MIDI event: STANDARD VST 2 and VST 3; CLASSIC no more than it cost
// when these budgets were set.
constexpr double kPerEventVst2Budget = 15.0;
constexpr double kPerEventVst3Budget = 30.0;
constexpr double kPerEventClassicBudget = 87.1;
constexpr double kAmsynthRatioBudget = 1.005;
constexpr double kManyInstancesBudget = 1.02;

double Overhead(const SCaseRow& row)
{
    return (row.result.wrapped - row.result.direct) / row.which.instances;
}

const SCaseRow* Find(const std::vector<SCaseRow>& rows, const SPluginUnderTest* plugin, bool chords, int block,
                     int instances)
{
    for (const SCaseRow& row : rows)
        if (row.which.plugin == plugin && row.which.chords == chords && row.which.blockSize == block &&
            row.which.instances == instances && row.result.ok)
            return &row;
    return nullptr;
}

void Budget(std::FILE* out, const std::string& what, double figure, double budget, const char* format)
{
    char value[32], limit[32];
    std::snprintf(value, sizeof value, format, figure);
    std::snprintf(limit, sizeof limit, format, budget);
    std::fprintf(out, "  %-60s %10s  budget <= %-8s %s\n", what.c_str(), value, limit,
                 figure <= budget ? "within" : "ABOVE");
}

}  // namespace

bool PrintOverheadTable(std::FILE* out, const std::vector<SCaseRow>& rows, const char* unit, const char* source)
{
    bool ok = true;
    std::fprintf(out, "\n== Wrapper overhead against direct hosting (%s per buffer, %s)\n", unit, source);
    std::fprintf(out, "%-40s %12s %12s %12s %8s  %s\n", "case (plug-in/MIDI/block/instances)", "direct", "wrapped",
                 "overhead*", "ratio", "outputs");
    for (const SCaseRow& row : rows) {
        const SCaseResult& r = row.result;
        if (!r.ok) {
            std::fprintf(out, "%-40s error: %s\n", row.which.Name().c_str(), r.error.c_str());
            ok = false;
            continue;
        }
        ok = ok && r.outputsOk;
        std::fprintf(out, "%-40s %12.0f %12.0f %12.1f %8.4f  %s\n", row.which.Name().c_str(), r.direct, r.wrapped,
                     Overhead(row), r.direct > 0.0 ? r.wrapped / r.direct : 0.0, r.outputs.c_str());
    }
    std::fprintf(out, "* overhead: (wrapped - direct) per buffer and instance; ratio: wrapped / direct.\n");

    if (std::strcmp(unit, "instructions") != 0) {
        std::fprintf(out, "Budgets are in instructions: scripts/bench --instructions prints them.\n");
        return ok;
    }
    std::fprintf(out, "\n== Budgets (instructions; printed, not asserted)\n");
    std::vector<const SPluginUnderTest*> plugins;
    for (const SCaseRow& row : rows)
        if (std::find(plugins.begin(), plugins.end(), row.which.plugin) == plugins.end())
            plugins.push_back(row.which.plugin);
    for (const SPluginUnderTest* plugin : plugins)
        for (int block : {64, 256}) {
            const std::string name = plugin->label + "/" + std::to_string(block);
            const SCaseRow* idle = Find(rows, plugin, false, block, 1);
            const SCaseRow* chords = Find(rows, plugin, true, block, 1);
            if (idle)
                Budget(out, name + ": overhead, no MIDI", Overhead(*idle), plugin->vst3 ? kVst3Budget : kVst2Budget,
                       "%.0f");
            if (idle && chords)
                Budget(out, name + ": overhead per MIDI event", (Overhead(*chords) - Overhead(*idle)) / kEventsPerBuffer,
                       !plugin->standard ? kPerEventClassicBudget
                                         : (plugin->vst3 ? kPerEventVst3Budget : kPerEventVst2Budget),
                       "%.1f");
            if (idle && block == 64 && plugin->label.rfind("amsynth", 0) == 0)
                Budget(out, name + ": wrapped/direct, no MIDI", idle->result.wrapped / idle->result.direct,
                       kAmsynthRatioBudget, "%.4f");
            for (bool withChords : {false, true}) {
                // The plug-in's own cost per instance moves a little with
                // the instance count (fewer buffers are measured with 64),
                // so the wrapped scaling is taken relative to the direct one.
                const SCaseRow* one = Find(rows, plugin, withChords, block, 1);
                const SCaseRow* many = Find(rows, plugin, withChords, block, 64);
                if (one && many && one->result.wrapped > 0.0 && one->result.direct > 0.0 && many->result.direct > 0.0)
                    Budget(out, name + (withChords ? ": chords" : ": no MIDI") + ", 64 instances / 64 x one, vs direct",
                           (many->result.wrapped / one->result.wrapped) / (many->result.direct / one->result.direct),
                           kManyInstancesBudget, "%.4f");
            }
        }
    return ok;
}

}  // namespace BenchOverhead
