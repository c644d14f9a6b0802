// Told by a fake host when the plug-in itself sets one of its parameters
// (its editor, its own automation, a preset it loaded), before the value
// goes to the AAX host, so that the host's echo of it can be recognised.
#pragma once

#include <cstdint>

class IPluginEditListener {
public:
    // `tag` is the parameter's tag (IFakeHost::GetParameterTag). May be
    // called on the audio thread by VST 2 plug-ins that automate from there.
    virtual void OnPluginValue(uint32_t tag, double value) = 0;

protected:
    ~IPluginEditListener() = default;
};
