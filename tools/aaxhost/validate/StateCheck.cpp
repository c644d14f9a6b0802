// state: a randomised state saved from one instance and restored into a
// fresh one saves again byte for byte; truncated and bit-flipped chunks,
// as a damaged session file brings them, are refused or taken without harm.
#include <algorithm>
#include <cstdio>

#include "CheckProcess.h"
#include "CheckRegistry.h"
#include "ParameterList.h"
#include "ProcessingRig.h"
#include "StateFile.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

constexpr int32_t kBlock = 256;

bool SameChunks(const std::vector<SStateChunk>& a, const std::vector<SStateChunk>& b, std::string& difference)
{
    if (a.size() != b.size()) {
        difference = std::to_string(a.size()) + " chunks saved, " + std::to_string(b.size()) + " after the restore";
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i].id != b[i].id) {
            difference = "chunk " + std::to_string(i) + " changed its ID";
            return false;
        }
        if (a[i].data.size() != b[i].data.size()) {
            difference = "chunk " + std::to_string(i) + " was " + std::to_string(a[i].data.size()) + " bytes, is " +
                         std::to_string(b[i].data.size());
            return false;
        }
        const auto diverge = std::mismatch(a[i].data.begin(), a[i].data.end(), b[i].data.begin());
        if (diverge.first != a[i].data.end()) {
            difference = "chunk " + std::to_string(i) + " differs first at byte " +
                         std::to_string(diverge.first - a[i].data.begin()) + " of " + std::to_string(a[i].data.size());
            return false;
        }
    }
    return true;
}

// A fresh instance takes the damaged copy however it likes, then must still
// play and save.
void RestoreDamaged(CValidationContext& context, const std::vector<SStateChunk>& damaged, const std::string& what,
                    SCheckResult& result)
{
    SetCheckPhase("state: instance creation for a " + what + " chunk");
    CProcessingRig rig(context.Effect(), context.Component(), 48000.0, kBlock);
    std::string error;
    if (!rig.Create(error)) {
        result.Fail(error);
        return;
    }
    SetCheckPhase("state: SetChunk with a " + what + " chunk");
    LoadEffectState(*rig.Instance().Effect(), damaged, error);  // refusing is right
    SetCheckPhase("state: processing after a " + what + " chunk");
    for (int i = 0; i < 4; ++i)
        rig.Process(kBlock);
    SetCheckPhase("state: GetChunk after a " + what + " chunk");
    std::vector<SStateChunk> again;
    if (!SaveEffectState(*rig.Instance().Effect(), again, error))
        result.Fail("after a " + what + " chunk the instance cannot save its state: " + error);
    SetCheckPhase("state: instance destruction after a " + what + " chunk");
}

}  // namespace

void CheckState(CValidationContext& context, SCheckResult& result)
{
    std::string error;
    if (!context.Open(error)) {
        result.Fail(error);
        return;
    }
    std::vector<SStateChunk> saved, restored;
    {
        SetCheckPhase("state: instance creation");
        CProcessingRig source(context.Effect(), context.Component(), 48000.0, kBlock);
        if (!source.Create(error)) {
            result.Fail(error);
            return;
        }
        std::vector<SParameterInfo> params;
        if (!ReadParameters(*source.Instance().Effect(), params, error)) {
            result.Fail(error);
            return;
        }
        SetCheckPhase("state: randomising every parameter");
        for (const SParameterInfo& p : params)
            if (!p.isMasterBypass)
                source.Instance().SetParameter(p.id, context.RandomUnit());
        SetCheckPhase("state: processing");
        for (int i = 0; i < 4; ++i)
            source.Process(kBlock);
        SetCheckPhase("state: GetChunk");
        if (!SaveEffectState(*source.Instance().Effect(), saved, error)) {
            result.Fail("saving the state failed: " + error);
            return;
        }
        SetCheckPhase("state: instance destruction");
    }
    size_t bytes = 0;
    for (const auto& c : saved)
        bytes += c.data.size();
    result.details["chunks"] = saved.size();
    result.details["bytes"] = bytes;
    {
        SetCheckPhase("state: fresh instance creation");
        CProcessingRig fresh(context.Effect(), context.Component(), 48000.0, kBlock);
        if (!fresh.Create(error)) {
            result.Fail(error);
            return;
        }
        SetCheckPhase("state: SetChunk into a fresh instance");
        if (!LoadEffectState(*fresh.Instance().Effect(), saved, error)) {
            result.Fail("restoring the saved state failed: " + error);
            return;
        }
        SetCheckPhase("state: processing after the restore");
        for (int i = 0; i < 4; ++i)
            fresh.Process(kBlock);
        SetCheckPhase("state: GetChunk after the restore");
        if (!SaveEffectState(*fresh.Instance().Effect(), restored, error)) {
            result.Fail("saving the restored state failed: " + error);
            return;
        }
        SetCheckPhase("state: instance destruction");
    }
    std::string difference;
    if (!SameChunks(saved, restored, difference))
        result.Fail("the restored state does not save byte for byte as it was saved: " + difference);

    // Damaged copies: every chunk cut short at a few lengths, then bits flipped.
    int damagedCount = 0;
    for (size_t c = 0; c < saved.size() && result.passed; ++c) {
        const size_t size = saved[c].data.size();
        for (size_t keep : {size_t{0}, size_t{1}, size / 2, size > 0 ? size - 1 : 0}) {
            if (keep >= size && size > 0)
                continue;
            std::vector<SStateChunk> damaged = saved;
            damaged[c].data.resize(keep);
            RestoreDamaged(context, damaged, "truncated", result);
            ++damagedCount;
        }
    }
    for (int i = 0; i < context.Plan().corruptStates && result.passed && bytes > 0; ++i) {
        std::vector<SStateChunk> damaged = saved;
        const int flips = context.RandomInt(1, 8);
        for (int f = 0; f < flips; ++f) {
            SStateChunk& chunk = damaged[static_cast<size_t>(context.RandomInt(0, static_cast<int>(damaged.size()) - 1))];
            if (chunk.data.empty())
                continue;
            const size_t at = static_cast<size_t>(context.RandomInt(0, static_cast<int>(chunk.data.size()) - 1));
            chunk.data[at] = static_cast<char>(chunk.data[at] ^ (1 << context.RandomInt(0, 7)));
        }
        RestoreDamaged(context, damaged, "bit-flipped", result);
        ++damagedCount;
    }
    result.details["damaged_restores"] = damagedCount;
    if (!context.Close(error))
        result.Fail(error);
    result.Note(std::to_string(saved.size()) + " chunk(s), " + std::to_string(bytes) +
                " bytes restored byte for byte; " + std::to_string(damagedCount) + " damaged copies taken safely");
}

}  // namespace AAXHost
