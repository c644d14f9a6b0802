// A top-level X11 window for a plug-in's editor: the parent the view
// container hands out, resized when the plug-in asks, photographed for
// --screenshot and clicked for --click through XTest, as a user would.
#pragma once

#include <string>

// Xlib's own types, declared here so that users need not include Xlib.
struct _XDisplay;

namespace AAXHost {

class CX11Window {
public:
    CX11Window() = default;
    ~CX11Window() { Close(); }
    CX11Window(const CX11Window&) = delete;
    CX11Window& operator=(const CX11Window&) = delete;

    // False, with the reason, when there is no display (DISPLAY unset or
    // unreachable) or X11 support was not built in.
    bool Open(int width, int height, const std::string& title, std::string& error);
    void Close();
    bool IsOpen() const { return mDisplay != nullptr; }
    unsigned long Id() const { return mWindow; }

    void Resize(int width, int height);
    void Size(int& width, int& height) const;
    // Handles the window's pending events; never blocks.
    void Pump();
    // The window's pixels, child windows included, as a PNG file.
    bool Screenshot(const std::string& path, std::string& error);
    // Whether a mapped child window (the editor's) covers window point x,y:
    // a click before then would land on the host's window.
    bool HasChildAt(int x, int y) const;
    // Moves the pointer to window coordinates and clicks button 1.
    bool Click(int x, int y, std::string& error);
    // X protocol errors reported in this process since the first Open.
    static int Errors();
    // Whether a window was asked for and DISPLAY names a display; when asked
    // for but there is none, a note on standard error says the view opens
    // without a window.
    static bool WantedAndPossible(bool wanted);

private:
    _XDisplay* mDisplay = nullptr;
    unsigned long mWindow = 0;
    int mWidth = 0, mHeight = 0;
};

}  // namespace AAXHost
