// An effect's view held open while the host does other work (a render), the
// way a user keeps the plug-in window up during playback: the GUI object, a
// view container without native view, and the timer calls a host makes
// while the window is shown.
#pragma once

#include <string>

class AAX_IACFEffectGUI;

namespace AAXHost {

class CHostInstance;
class CHostViewContainer;

// The opening steps every view session shares. CreateEffectGui: GUI factory,
// query and Initialize with the effect; null and error set on failure. The
// phase, when given, is what a crash report names from the plug-in's first
// GUI call on.
AAX_IACFEffectGUI* CreateEffectGui(CHostInstance& instance, std::string& error, const char* phase = nullptr);
// Attaches a fresh view container holding one reference for the caller; with
// an X11 window ID, the container hands out that window as the parent.
CHostViewContainer* AttachViewContainer(AAX_IACFEffectGUI* gui, unsigned long x11Window = 0);
// Detaches the view, then uninitializes, as a host closes a window; the
// caller releases the GUI object and the container afterwards.
void DetachEffectGui(AAX_IACFEffectGUI* gui);

class CEditorSession {
public:
    CEditorSession() = default;
    ~CEditorSession() { Close(); }
    CEditorSession(const CEditorSession&) = delete;
    CEditorSession& operator=(const CEditorSession&) = delete;

    // GUI factory, Initialize with the effect, SetViewContainer.
    bool Open(CHostInstance& instance, std::string& error);
    // One timer wake-up of the view and of the effect.
    void Idle();
    // SetViewContainer(null), Uninitialize, releases; safe when closed.
    void Close();
    bool IsOpen() const { return mGui != nullptr; }

private:
    AAX_IACFEffectGUI* mGui = nullptr;
    CHostViewContainer* mContainer = nullptr;
    CHostInstance* mInstance = nullptr;
};

}  // namespace AAXHost
