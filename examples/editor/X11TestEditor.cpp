#include "X11TestEditor.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace MrvEditor {

namespace {

bool gTrapped = false;
int TrapError(Display*, XErrorEvent*)
{
    gTrapped = true;
    return 0;
}

// A host may hand over something that is no window (a test's made-up
// pointer): creating a child of it would end the process in Xlib's default
// error handler. Asked with a handler of our own, then the host's again.
bool IsWindow(Display* display, Window window)
{
    XSync(display, False);
    gTrapped = false;
    XErrorHandler previous = XSetErrorHandler(&TrapError);
    XWindowAttributes attributes{};
    const Status found = XGetWindowAttributes(display, window, &attributes);
    XSync(display, False);
    XSetErrorHandler(previous);
    return found != 0 && !gTrapped;
}

unsigned long PixelOf(Display* display, uint32_t rgb)
{
    XColor colour{};
    colour.red = static_cast<unsigned short>(((rgb >> 16) & 0xFF) * 257);
    colour.green = static_cast<unsigned short>(((rgb >> 8) & 0xFF) * 257);
    colour.blue = static_cast<unsigned short>((rgb & 0xFF) * 257);
    colour.flags = DoRed | DoGreen | DoBlue;
    XAllocColor(display, DefaultColormap(display, DefaultScreen(display)), &colour);
    return colour.pixel;
}

}  // namespace

bool CX11TestEditor::Open(uintptr_t parent, int width, int height, SHandlers handlers)
{
    Close();
    if (parent == 0)
        return false;
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr)
        return false;
    if (!IsWindow(display, static_cast<Window>(parent))) {
        XCloseDisplay(display);
        return false;
    }
    mDisplay = display;
    mHandlers = std::move(handlers);
    mWidth = width;
    mHeight = height;
    mPixels[0] = PixelOf(display, kBackgroundColour);
    mPixels[1] = PixelOf(display, kButtonColour);
    mPixels[2] = PixelOf(display, kGrowColour);
    mWindow = XCreateSimpleWindow(display, static_cast<Window>(parent), 0, 0, static_cast<unsigned>(width),
                                  static_cast<unsigned>(height), 0, 0, mPixels[0]);
    XSelectInput(display, mWindow, ExposureMask | ButtonPressMask | StructureNotifyMask);
    mGc = XCreateGC(display, mWindow, 0, nullptr);
    XMapWindow(display, mWindow);
    XFlush(display);
    return true;
}

void CX11TestEditor::Close()
{
    if (mDisplay == nullptr)
        return;
    Display* display = mDisplay;
    XFreeGC(display, mGc);
    XDestroyWindow(display, mWindow);
    XCloseDisplay(display);
    mDisplay = nullptr;
    mGc = nullptr;
    mWindow = 0;
}

int CX11TestEditor::FileDescriptor() const { return mDisplay != nullptr ? ConnectionNumber(mDisplay) : -1; }

void CX11TestEditor::Resize(int width, int height)
{
    if (mDisplay == nullptr)
        return;
    mWidth = width;
    mHeight = height;
    XResizeWindow(mDisplay, mWindow, static_cast<unsigned>(width), static_cast<unsigned>(height));
    Draw();
}

void CX11TestEditor::Idle()
{
    if (mDisplay == nullptr)
        return;
    while (XPending(mDisplay) > 0) {
        XEvent event;
        XNextEvent(mDisplay, &event);
        if (event.type == Expose && event.xexpose.count == 0) {
            Draw();
        } else if (event.type == ButtonPress && event.xbutton.button == Button1) {
            if (kButton.Contains(event.xbutton.x, event.xbutton.y) && mHandlers.onButton)
                mHandlers.onButton();
            else if (kGrow.Contains(event.xbutton.x, event.xbutton.y) && mHandlers.onGrow)
                mHandlers.onGrow();
        }
        if (mDisplay == nullptr)  // a handler closed the editor
            return;
    }
}

void CX11TestEditor::Draw()
{
    XSetForeground(mDisplay, mGc, mPixels[0]);
    XFillRectangle(mDisplay, mWindow, mGc, 0, 0, static_cast<unsigned>(mWidth), static_cast<unsigned>(mHeight));
    XSetForeground(mDisplay, mGc, mPixels[1]);
    XFillRectangle(mDisplay, mWindow, mGc, kButton.x, kButton.y, kButton.width, kButton.height);
    XSetForeground(mDisplay, mGc, mPixels[2]);
    XFillRectangle(mDisplay, mWindow, mGc, kGrow.x, kGrow.y, kGrow.width, kGrow.height);
    XFlush(mDisplay);
}

}  // namespace MrvEditor
