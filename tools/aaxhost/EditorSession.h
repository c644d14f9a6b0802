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
