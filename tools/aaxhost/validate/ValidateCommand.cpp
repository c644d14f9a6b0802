#include "ValidateCommand.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <random>

#include "CheckOutcome.h"
#include "CheckProcess.h"
#include "CheckRegistry.h"
#include "DirectTwin.h"
#include "JsonOutput.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

struct SCheckRun {
    const SCheckDefinition* check;
    SCheckResult result;
    double seconds = 0.0;
    SVerdict verdict;
};

std::string RunInChild(const SValidateConfig& config, const SCheckDefinition& check, uint64_t seed)
{
    SCheckResult result;
    try {
        CValidationContext context(config, seed);
        check.run(context, result);
    } catch (const std::exception& e) {
        result.Fail(std::string("an exception escaped: ") + e.what());
    }
    return EncodeCheckResult(result);
}

SCheckResult RunOne(const SValidateConfig& config, const SCheckDefinition& check, uint64_t seed, double& seconds)
{
    const SCheckProcessOutcome outcome =
        RunCheckProcess([&] { return RunInChild(config, check, seed); }, config.timeout);
    seconds = outcome.seconds;
    return DecodeCheckOutcome(outcome);
}

// Each check gets its own stream, so --only reproduces a full run's values.
uint64_t CheckSeed(uint64_t seed, size_t index) { return seed + 0x9E3779B97F4A7C15ull * (index + 1); }

std::vector<const SCheckDefinition*> Selected(const SValidateConfig& config, std::string& error)
{
    std::vector<const SCheckDefinition*> out;
    for (const std::string& name : config.only) {
        bool known = false;
        for (const auto& c : AllChecks())
            known = known || name == c.name;
        if (!known) {
            error = "no check named \"" + name + "\"; the checks are:";
            for (const auto& c : AllChecks())
                error += std::string(" ") + c.name;
            return {};
        }
    }
    for (const auto& c : AllChecks()) {
        bool wanted = config.only.empty() ? config.level >= c.firstLevel : false;
        for (const std::string& name : config.only)
            wanted = wanted || name == c.name;
        if (wanted)
            out.push_back(&c);
    }
    return out;
}

void ShowProgress(bool on, size_t done, size_t total, const char* name)
{
    if (!on)
        return;
    const int width = 24, filled = static_cast<int>(done * width / total);
    std::printf("\r[%s%s] %zu/%zu %-12s", std::string(static_cast<size_t>(filled), '#').c_str(),
                std::string(static_cast<size_t>(width - filled), '.').c_str(), done, total, name);
    std::fflush(stdout);
}

void ClearProgress(bool on)
{
    if (on)
        std::printf("\r%60s\r", "");
}

}  // namespace

int RunValidate(SValidateConfig config)
{
    if (config.level < 1 || config.level > 10) {
        std::fprintf(stderr, "aaxhost: error: --level must be from 1 to 10\n");
        return 1;
    }
    if (!(config.timeout > 0.0 && config.timeout <= 3600.0)) {
        std::fprintf(stderr, "aaxhost: error: --timeout must be from 0 to 3600 seconds\n");
        return 1;
    }
    std::string error;
    const std::vector<const SCheckDefinition*> checks = Selected(config, error);
    if (!error.empty()) {
        std::fprintf(stderr, "aaxhost: error: %s\n", error.c_str());
        return 1;
    }
    if (config.seed == 0)
        config.seed = std::random_device()() | 1u;
    CJsonOutput jsonOut(config.json);
    const bool progress = config.progress && !config.json && isatty(STDOUT_FILENO);
    if (!config.json)
        std::printf("validating %s at level %d, seed %llu (--seed %llu repeats this run)\n", config.bundle.c_str(),
                    config.level, static_cast<unsigned long long>(config.seed),
                    static_cast<unsigned long long>(config.seed));

    const auto started = std::chrono::steady_clock::now();
    std::vector<SCheckRun> runs;
    STwinTarget target;
    bool targetRead = false;
    for (size_t i = 0; i < checks.size(); ++i) {
        ShowProgress(progress, i, checks.size(), checks[i]->name);
        SCheckRun run{checks[i], SCheckResult(), 0.0, SVerdict()};
        size_t index = 0;
        while (&AllChecks()[index] != checks[i])
            ++index;
        const uint64_t seed = CheckSeed(config.seed, index);
        run.result = RunOne(config, *checks[i], seed, run.seconds);
        if (!run.result.passed) {
            // Whose fault: the status block is read once, at the first failure.
            if (!targetRead) {
                target = ProbeTwinTarget(config);
                targetRead = true;
            }
            ShowProgress(progress, i, checks.size(), "(direct)");
            run.verdict = JudgeFailure(config, *checks[i], seed, run.result, target);
        }
        ClearProgress(progress);
        if (!config.json) {
            const bool pluginFault = run.verdict.fault == "plug-in";
            std::printf("%s %-12s %s%s (%.1f s)\n", run.result.passed ? "PASS" : pluginFault ? "FAIL (plug-in)" : "FAIL",
                        run.check->name, run.result.reason.c_str(), run.verdict.Sentence().c_str(),
                        run.seconds + run.verdict.twinSeconds);
            std::fflush(stdout);
        }
        runs.push_back(std::move(run));
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    size_t passed = 0, pluginFaults = 0;
    for (const auto& r : runs) {
        passed += r.result.passed ? 1 : 0;
        pluginFaults += !r.result.passed && r.verdict.fault == "plug-in" ? 1 : 0;
    }
    const bool allPassed = passed == runs.size();
    const bool wrapperFailed = passed + pluginFaults < runs.size();
    const bool failsRun = config.failOn == "wrapper" ? wrapperFailed : !allPassed;
    if (config.json) {
        nlohmann::json list = nlohmann::json::array();
        for (const auto& r : runs) {
            nlohmann::json entry = {{"name", r.check->name},
                                    {"passed", r.result.passed},
                                    {"reason", r.result.reason},
                                    {"seconds", r.seconds},
                                    {"details", r.result.details}};
            if (!r.result.passed) {
                const nlohmann::json verdict = r.verdict.ToJson();
                entry["fault"] = verdict["fault"];
                entry["direct"] = verdict["direct"];
            }
            list.push_back(std::move(entry));
        }
        jsonOut.Write({{"format", "aaxhost-validate-1"},
                       {"bundle", config.bundle},
                       {"level", config.level},
                       {"seed", config.seed},
                       {"timeout", config.timeout},
                       {"passed", allPassed},
                       {"checks", list},
                       {"fail_on", config.failOn},
                       {"summary",
                        {{"passed", passed},
                         {"failed", runs.size() - passed},
                         {"plugin_faults", pluginFaults},
                         {"wrapper_faults", runs.size() - passed - pluginFaults},
                         {"seconds", seconds}}}});
    } else {
        std::printf("%s: %zu of %zu checks passed in %.1f s", allPassed ? "PASSED" : "FAILED", passed, runs.size(),
                    seconds);
        if (pluginFaults > 0)
            std::printf("; %zu of the failures are the plug-in's own%s", pluginFaults,
                        config.failOn == "wrapper" && !failsRun ? " (--fail-on wrapper: exit 0)" : "");
        std::printf("\n");
    }
    return failsRun ? 1 : 0;
}

}  // namespace AAXHost
