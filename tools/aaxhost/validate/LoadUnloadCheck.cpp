// load-unload: a host loads, registers and unloads a bundle many times in
// one process (scans, sessions opened and closed); each round must give
// back its memory, files and threads.
#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "BundleLoader.h"
#include "CheckProcess.h"
#include "CheckRegistry.h"
#include "DirectChecks.h"
#include "DirectRig.h"
#include "HostDescriptors.h"
#include "HostServices.h"
#include "ProcessFigures.h"
#include "ProcessingRig.h"
#include "ResultText.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

// Over this many bytes per round (after enough rounds to tell), memory is
// taken and not given back.
constexpr int64_t kLeakPerRound = 16 * 1024;
constexpr int64_t kLeakTotal = 32 * 1024 * 1024;

// A sanitizer keeps freed memory in quarantine and shadows every mapping:
// resident memory says nothing there (LeakSanitizer finds the leaks).
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kJudgeMemory = false;
#else
constexpr bool kJudgeMemory = true;
#endif

template <typename T>
T Symbol(void* handle, const char* name)
{
    return reinterpret_cast<T>(dlsym(handle, name));
}

// One round; false with the reason.
bool LoadRegisterUnload(const std::string& library, bool withInstance, std::string& error)
{
    SetCheckPhase("dlopen");
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char* why = dlerror();
        error = std::string("dlopen failed: ") + (why ? why : "");
        return false;
    }
    auto startup = Symbol<ACFStartupProc>(handle, "ACFStartup");
    auto registerPlugin = Symbol<ACFRegisterPluginProc>(handle, "ACFRegisterPlugin");
    auto shutdown = Symbol<ACFShutdownProc>(handle, "ACFShutdown");
    auto canUnload = Symbol<ACFCanUnloadNowProc>(handle, "ACFCanUnloadNow");
    if (!startup || !registerPlugin || !shutdown || !canUnload) {
        error = "the library lacks an ACF entry point";
        dlclose(handle);
        return false;
    }
    bool ok = true;
    auto* services = new CHostServices;
    SetCheckPhase("ACFStartup");
    ACFRESULT r = startup(static_cast<AAX_IACFHostServices*>(services));
    if (r != ACF_OK) {
        error = "ACFStartup failed with " + ResultText(r);
        ok = false;
    }
    if (ok) {
        SetCheckPhase("ACFRegisterPlugin");
        auto* collection = new CHostCollection;
        IACFPluginDefinition* definition = nullptr;
        r = registerPlugin(static_cast<AAX_IACFCollection*>(collection), &definition);
        if (definition)
            definition->Release();
        const SPluginInfo info = collection->Info();
        collection->Release();
        if (r != ACF_OK) {
            error = "ACFRegisterPlugin failed with " + ResultText(r);
            ok = false;
        }
        const SComponentInfo* component = info.effects.empty() ? nullptr : FindProcessingComponent(info.effects[0]);
        if (ok && withInstance && component && !component->processProcs.empty()) {
            SetCheckPhase("instance creation");
            CProcessingRig rig(info.effects[0], *component, 48000.0, 256);
            if (!rig.Create(error)) {
                ok = false;
            } else {
                SetCheckPhase("processing");
                for (int i = 0; i < 4; ++i)
                    rig.Process(256);
                SetCheckPhase("instance destruction");
            }
        }
        SetCheckPhase("ACFShutdown");
        r = shutdown(static_cast<AAX_IACFHostServices*>(services));
        if (ok && r != ACF_OK) {
            error = "ACFShutdown failed with " + ResultText(r);
            ok = false;
        }
        const ACFRESULT live = canUnload(static_cast<AAX_IACFHostServices*>(services));
        if (ok && live != 0) {
            error = "ACFCanUnloadNow answered " + ResultText(live) + " after shut-down (live objects remain)";
            ok = false;
        }
    }
    services->Release();
    SetCheckPhase("dlclose");
    if (dlclose(handle) != 0 && ok) {
        error = "dlclose failed";
        ok = false;
    }
    CheckBeat();
    return ok;
}

// A plug-in's threads may end a moment after it is unloaded (JUCE stops its
// message thread asynchronously): they get up to two seconds to go before
// any is counted as left running.
SProcessFigures SettledFigures(const SProcessFigures& before)
{
    SProcessFigures after = ReadProcessFigures();
    for (int i = 0; i < 100 && after.threads > before.threads; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        CheckBeat();
        after = ReadProcessFigures();
    }
    return after;
}

// What the rounds after the first left behind: files, threads, memory.
void JudgeRounds(const SProcessFigures& before, const SProcessFigures& after, int rounds, SCheckResult& result)
{
    const int64_t grown = after.residentBytes - before.residentBytes;
    result.details = {{"rounds", rounds + 1},
                      {"resident_bytes_before", before.residentBytes},
                      {"resident_bytes_after", after.residentBytes},
                      {"open_files_before", before.openFiles},
                      {"open_files_after", after.openFiles},
                      {"threads_before", before.threads},
                      {"threads_after", after.threads}};
    char text[200];
    if (after.openFiles > before.openFiles)
        result.Fail(std::to_string(after.openFiles - before.openFiles) + " file descriptor(s) left open after " +
                    std::to_string(rounds) + " rounds");
    if (after.threads > before.threads)
        result.Fail(std::to_string(after.threads - before.threads) + " thread(s) left running after " +
                    std::to_string(rounds) + " rounds");
    result.details["memory_judged"] = kJudgeMemory;
    if (kJudgeMemory && (grown > kLeakTotal || (rounds >= 100 && grown / rounds > kLeakPerRound))) {
        std::snprintf(text, sizeof text, "resident memory grew by %.1f MB over %d rounds (%.1f KB a round)",
                      static_cast<double>(grown) / 1048576.0, rounds, static_cast<double>(grown) / 1024.0 / rounds);
        result.Fail(text);
    }
    std::snprintf(text, sizeof text, "%d rounds; resident memory %+.1f MB, files %+d, threads %+d", rounds + 1,
                  static_cast<double>(grown) / 1048576.0, after.openFiles - before.openFiles,
                  after.threads - before.threads);
    result.Note(text);
}

// The plug-in alone: loaded, opened, played and unloaded by a direct host.
bool DirectRound(const AAXDirect::SDirectSetup& setup, std::string& error)
{
    SetCheckPhase("load-unload (hosted directly): loading and opening");
    CDirectRig rig(setup, 48000.0, 256);
    if (!rig.Create(error))
        return false;
    SetCheckPhase("load-unload (hosted directly): processing");
    for (int i = 0; i < 4; ++i)
        rig.Process(256);
    SetCheckPhase("load-unload (hosted directly): closing and unloading");
    CheckBeat();
    return true;
}

}  // namespace

void CheckLoadUnload(CValidationContext& context, SCheckResult& result)
{
    std::string library, error;
    if (!FindBundleLibrary(context.Config().bundle, library, error)) {
        result.Fail(error);
        return;
    }
    const int rounds = context.Plan().loadCycles;
    // The first round loads what stays for the process's life (the C++
    // runtime's pools, the dynamic loader's caches); it is not counted.
    if (!LoadRegisterUnload(library, true, error)) {
        result.Fail("round 1: " + error);
        return;
    }
    const SProcessFigures before = ReadProcessFigures();
    for (int i = 0; i < rounds; ++i) {
        if (!LoadRegisterUnload(library, true, error)) {
            result.Fail("round " + std::to_string(i + 2) + ": " + error);
            return;
        }
    }
    JudgeRounds(before, SettledFigures(before), rounds, result);
}

void DirectLoadUnload(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result)
{
    const int rounds = context.Plan().loadCycles;
    std::string error;
    if (!DirectRound(setup, error)) {
        result.Fail("round 1: the plug-in cannot be hosted directly: " + error);
        return;
    }
    const SProcessFigures before = ReadProcessFigures();
    for (int i = 0; i < rounds; ++i) {
        if (!DirectRound(setup, error)) {
            result.Fail("round " + std::to_string(i + 2) + ": the plug-in cannot be hosted directly: " + error);
            return;
        }
    }
    JudgeRounds(before, SettledFigures(before), rounds, result);
}

}  // namespace AAXHost
