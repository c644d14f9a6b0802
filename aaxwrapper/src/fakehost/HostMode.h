// How a bundle hosts its VST plug-in, chosen per product at build time.
#pragma once

enum class EHostMode {
    // The behaviour the wrapper has always had, kept exactly for the
    // instruments written against it.
    kClassic,
    // What mainstream VST hosts do, for plug-ins written against the VST
    // documentation.
    kStandard,
};

inline const char* HostModeName(EHostMode mode)
{
    return mode == EHostMode::kStandard ? "STANDARD" : "CLASSIC";
}

// Buffers longer than this reach a plug-in in slices: the most a STANDARD
// host announces as its maximum block, since AAX does not tell one.
constexpr int kStandardMaxBlock = 4096;
