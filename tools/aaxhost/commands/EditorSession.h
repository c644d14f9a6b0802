// An effect's view held open while the host does other work (a render), the
// way a user keeps the plug-in window up during playback: the GUI object, a
// view container (an X11 window when there is a display, else type NULL),
// and the timer calls a host makes while the window is shown.
#pragma once

#include <memory>
#include <string>

class AAX_IACFEffectGUI;

namespace AAXHost {

class CHostInstance;
class CHostViewContainer;
class CX11Window;

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
    CEditorSession();
    ~CEditorSession();
    CEditorSession(const CEditorSession&) = delete;
    CEditorSession& operator=(const CEditorSession&) = delete;

    // GUI factory, Initialize with the effect, SetViewContainer. With
    // window set and a display, the view gets a real window.
    bool Open(CHostInstance& instance, std::string& error, bool window = false);
    // A pointer click at window coordinates, made on the third timer call
    // (once the editor has drawn). Needs a window.
    void ClickWhenUp(int x, int y) { mClickX = x, mClickY = y, mClickPending = true; }
    // One timer wake-up of the view and of the effect; the window follows
    // the sizes the plug-in asks for. False when a click failed.
    bool Idle(std::string& error);
    bool HasWindow() const { return mWindow != nullptr; }
    // SetViewContainer(null), Uninitialize, releases; safe when closed.
    void Close();
    bool IsOpen() const { return mGui != nullptr; }

private:
    AAX_IACFEffectGUI* mGui = nullptr;
    CHostViewContainer* mContainer = nullptr;
    CHostInstance* mInstance = nullptr;
    std::unique_ptr<CX11Window> mWindow;
    size_t mRequestsSeen = 0;
    int mIdles = 0;
    bool mClickPending = false;
    int mClickX = 0, mClickY = 0;
};

}  // namespace AAXHost
