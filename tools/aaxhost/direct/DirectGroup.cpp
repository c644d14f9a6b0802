#include "DirectGroup.h"

namespace AAXDirect {

bool CDirectGroup::Open(const SDirectSetup& setup, int instances, std::string& error)
{
    for (int i = 0; i < instances; ++i) {
        mPlugins.push_back(MakeDirectPlugin(setup.path));
        if (!mPlugins.back()->Open(setup, error))
            return false;
        mPlugins.back()->Start();
    }
    return true;
}

void CDirectGroup::Prepare(const std::vector<AAX_CMidiPacket>& midi, const SDirectTransport& transport, int frames)
{
    for (auto& plugin : mPlugins)
        plugin->Prepare(midi.data(), midi.size(), transport, frames);
}

void CDirectGroup::Process(int frames)
{
    for (auto& plugin : mPlugins)
        plugin->Process(frames);
}

}  // namespace AAXDirect
