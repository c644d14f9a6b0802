// Several instances of one plug-in hosted directly and played together, each
// buffer with the same MIDI and transport: the bench's baseline.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DirectPlugin.h"

namespace AAXDirect {

class CDirectGroup {
public:
    // Every instance opened and started with the same setup.
    bool Open(const SDirectSetup& setup, int instances, std::string& error);
    // The host's own work for one buffer of `frames` samples.
    void Prepare(const std::vector<AAX_CMidiPacket>& midi, const SDirectTransport& transport, int frames);
    // What the plug-in is asked to do for that buffer, every instance.
    void Process(int frames);
    int OutputChannels() const { return mPlugins.empty() ? 0 : mPlugins.front()->OutputChannels(); }
    const float* Output(int instance, int channel) const
    {
        return mPlugins[static_cast<size_t>(instance)]->Output(channel);
    }

private:
    std::vector<std::unique_ptr<IDirectPlugin>> mPlugins;
};

}  // namespace AAXDirect
