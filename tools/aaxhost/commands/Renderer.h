// Offline render: instances made through the plug-in's factories, driven
// buffer by buffer through its native process procedure, with MIDI,
// transport, parameter changes and state, written to WAV files.
#pragma once

#include <string>

#include "RenderConfig.h"
#include "RenderOutputs.h"
#include "RenderReport.h"

namespace AAXHost {

class CPluginSession;

bool Render(CPluginSession& session, const SRenderConfig& config, SRenderReport& report, std::string& error);

}  // namespace AAXHost
