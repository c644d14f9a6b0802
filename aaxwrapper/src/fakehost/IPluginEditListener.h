// The only way a fake host tells the AAX side what the plug-in itself did to
// its parameters (its editor, its own automation, a preset it loaded). `tag`
// is the parameter's tag (SParameterInfo::tag).
#pragma once

#include <cstdint>

class IPluginEditListener {
public:
    // A gesture starts or ends: the AAX parameter is touched or released.
    virtual void OnPluginBeginEdit(uint32_t tag) = 0;
    virtual void OnPluginEndEdit(uint32_t tag) = 0;
    // The plug-in set the value: the AAX parameter follows, and the host's
    // echo of it is recognised. May be called on the audio thread by VST 2
    // plug-ins that automate from there.
    virtual void OnPluginEdit(uint32_t tag, double value) = 0;
    // The plug-in says its values moved by themselves (main thread): the AAX
    // parameter follows where it holds another value.
    virtual void OnPluginValueMoved(uint32_t tag, double value) = 0;

protected:
    ~IPluginEditListener() = default;
};
