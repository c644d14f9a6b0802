// What a wrapper instance tells its host about the plug-in it wraps, as the
// custom data block kWrapperStatusBlockID (AAX_IEffectParameters::
// GetCustomData): UTF-8 text, one "key=value" line each, in this order:
//   mode=CLASSIC|STANDARD
//   loaded=1|0          whether the wrapped plug-in is running
//   plugin=<path>       the file that was found (empty when none)
//   error=<reason>      why it is not running (empty when it is)
//   vendor=<text>       the plug-in's vendor as it reports it (empty when unknown)
//   version=<text>      the plug-in's version as it reports it (empty when unknown)
// Test hosts read it to tell a wrapper around nothing from a working one.
#pragma once

#include <cstdint>

constexpr uint32_t kWrapperStatusBlockID = 0x4D765753;  // 'MvWS'
