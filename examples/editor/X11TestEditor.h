// The editor of our test plug-ins on Linux: a child window of the host's
// window, on a display connection of its own, that draws a known pattern and
// two controls. Hosts drive it: Idle (or the connection's file descriptor
// in a run loop) handles its drawing and clicks without blocking.
#pragma once

#include <cstdint>
#include <functional>

// Xlib's own types, declared here so that users need not include Xlib.
struct _XDisplay;
struct _XGC;

namespace MrvEditor {

// The pattern, in window coordinates, so that tests can check a screenshot.
struct SBox {
    int x, y, width, height;
    bool Contains(int px, int py) const { return px >= x && py >= y && px < x + width && py < y + height; }
};
constexpr uint32_t kBackgroundColour = 0x2040C0;  // 0xRRGGBB
constexpr uint32_t kButtonColour = 0xE0C020;
constexpr uint32_t kGrowColour = 0x20C040;
constexpr SBox kButton{20, 20, 100, 40};  // sets a parameter when clicked
constexpr SBox kGrow{140, 20, 100, 40};   // asks the host for a taller window
constexpr int kGrowStep = 40;

class CX11TestEditor {
public:
    struct SHandlers {
        std::function<void()> onButton;
        std::function<void()> onGrow;
    };

    CX11TestEditor() = default;
    ~CX11TestEditor() { Close(); }
    CX11TestEditor(const CX11TestEditor&) = delete;
    CX11TestEditor& operator=(const CX11TestEditor&) = delete;

    // parent: the X11 window ID the host gave. False without a display.
    bool Open(uintptr_t parent, int width, int height, SHandlers handlers);
    void Close();
    bool IsOpen() const { return mDisplay != nullptr; }
    // Draws and handles clicks for every pending event; never blocks.
    void Idle();
    // The display connection, for a host run loop; -1 when closed.
    int FileDescriptor() const;
    void Resize(int width, int height);

private:
    void Draw();

    _XDisplay* mDisplay = nullptr;
    unsigned long mWindow = 0;
    _XGC* mGc = nullptr;
    unsigned long mPixels[3] = {};
    int mWidth = 0, mHeight = 0;
    SHandlers mHandlers;
};

}  // namespace MrvEditor
