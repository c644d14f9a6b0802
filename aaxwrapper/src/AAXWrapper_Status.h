// What a wrapper instance tells its host about the plug-in it wraps, as the
// custom data block kWrapperStatusBlockID (AAX_IEffectParameters::
// GetCustomData): UTF-8 text, one "key=value" line each, in this order:
//   mode=CLASSIC|STANDARD
//   loaded=1|0          whether the wrapped plug-in is running
//   plugin=<path>       the file that was found (empty when none)
//   error=<reason>      why it is not running (empty when it is)
//   vendor=<text>       the plug-in's vendor as it reports it (empty when unknown)
//   version=<text>      the plug-in's version as it reports it (empty when unknown)
//   bypass=plugin|copy  plugin: the master bypass drives the plug-in's own
//                       bypass (STANDARD, a VST 3 parameter flagged as one);
//                       copy: the wrapper plays the input through
//   tail=<samples>|infinite   how long it sounds on after its input falls
//                       silent, as it declares it (STANDARD; empty when it
//                       does not say or the host mode never asks)
// then one line per output bus that plays (VST 3), in bus order:
//   output=<bus>|<channels>|main|<name>       into the main output
//   output=<bus>|<channels>|stem <n>|<name>   from stem n on (OutputStem_<n>)
//   output=<bus>|<channels>|dropped|<name>    no stem left: not heard
// Test hosts read it to tell a wrapper around nothing from a working one.
#pragma once

#include <cstdint>

constexpr uint32_t kWrapperStatusBlockID = 0x4D765753;  // 'MvWS'

// What AAX parameters do not carry, as the custom data block
// kWrapperParameterNotesBlockID: UTF-8 text, one line per published
// parameter of the plug-in (STANDARD; empty in CLASSIC), in publishing order:
//   <parameter ID> TAB <unit> TAB <group> LF
// unit: what the plug-in's texts are in; group: the plug-in's unit (VST 3)
// it is filed under, nested ones as "Outer / Inner". Either may be empty;
// tabs and line breaks in the plug-in's texts are written as spaces.
constexpr uint32_t kWrapperParameterNotesBlockID = 0x4D765750;  // 'MvWP'

// What a host tells a wrapper instance, as a notification
// (AAX_IEffectParameters::NotificationReceived) with a 32-bit word:
//   kWrapperNotificationOffline: 1 when the buffers that follow are rendered
//   offline (faster or slower than real time, e.g. a bounce), 0 when they
//   are played in real time again. A STANDARD wrapper hands it to the
//   plug-in (VST 2 process level, VST 3 process mode); CLASSIC ignores it.
constexpr uint32_t kWrapperNotificationOffline = 0x4D764F66;  // 'MvOf'
