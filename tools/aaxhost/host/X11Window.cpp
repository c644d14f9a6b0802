#include "X11Window.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <cairo.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace AAXHost {

namespace {

std::atomic<int> gErrors{0};

// Xlib's default handler ends the process; a plug-in's bad request must be
// a counted, reported fault instead.
int CountError(Display*, XErrorEvent*)
{
    ++gErrors;
    return 0;
}

// The position of the highest set bit of a colour mask, minus 7: how far to
// shift a channel to get its top 8 bits.
int ChannelShift(unsigned long mask)
{
    int top = -1;
    for (int bit = 0; bit < static_cast<int>(sizeof(mask) * 8); ++bit)
        if (mask & (1ul << bit))
            top = bit;
    return top - 7;
}

unsigned Channel(unsigned long pixel, unsigned long mask)
{
    const int shift = ChannelShift(mask);
    const unsigned long bits = pixel & mask;
    return static_cast<unsigned>((shift >= 0 ? bits >> shift : bits << -shift) & 0xFF);
}

// One connection for the whole process, as a host keeps its own: windows
// come and go on it. (An X server also resets when its last client leaves,
// and refuses connections meanwhile.)
Display* HostDisplay()
{
    static Display* const display = [] {
        XInitThreads();
        XSetErrorHandler(&CountError);
        return XOpenDisplay(nullptr);
    }();
    return display;
}

}  // namespace

int CX11Window::Errors() { return gErrors.load(); }

bool CX11Window::WantedAndPossible(bool wanted)
{
    const char* display = std::getenv("DISPLAY");
    const bool possible = display != nullptr && *display != '\0';
    if (wanted && !possible)
        std::fprintf(stderr, "aaxhost: note: DISPLAY is not set: the view opens in a container of type NULL, "
                             "without a window\n");
    return wanted && possible;
}

bool CX11Window::Open(int width, int height, const std::string& title, std::string& error)
{
    Close();
    Display* display = HostDisplay();
    if (display == nullptr) {
        error = "no X display to open (DISPLAY is unset or unreachable)";
        return false;
    }
    mDisplay = display;
    mWidth = width;
    mHeight = height;
    const int screen = DefaultScreen(display);
    mWindow = XCreateSimpleWindow(display, RootWindow(display, screen), 0, 0, static_cast<unsigned>(width),
                                  static_cast<unsigned>(height), 0, BlackPixel(display, screen),
                                  BlackPixel(display, screen));
    XStoreName(display, mWindow, title.c_str());
    XSelectInput(display, mWindow, StructureNotifyMask | ExposureMask);
    XMapWindow(display, mWindow);
    // Wait until the server shows it: a child created before then would be
    // drawn into a window that is not viewable yet.
    for (;;) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == MapNotify && event.xmap.window == mWindow)
            break;
    }
    return true;
}

void CX11Window::Close()
{
    if (mDisplay == nullptr)
        return;
    XDestroyWindow(mDisplay, mWindow);
    XSync(mDisplay, False);
    mDisplay = nullptr;
    mWindow = 0;
}

void CX11Window::Resize(int width, int height)
{
    if (mDisplay == nullptr || width <= 0 || height <= 0)
        return;
    mWidth = width;
    mHeight = height;
    XResizeWindow(mDisplay, mWindow, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(mDisplay, False);
}

void CX11Window::Size(int& width, int& height) const
{
    width = 0;
    height = 0;
    if (mDisplay == nullptr)
        return;
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(mDisplay, mWindow, &attributes)) {
        width = attributes.width;
        height = attributes.height;
    }
}

void CX11Window::Pump()
{
    if (mDisplay == nullptr)
        return;
    while (XPending(mDisplay) > 0) {
        XEvent event;
        XNextEvent(mDisplay, &event);
    }
}

bool CX11Window::Screenshot(const std::string& path, std::string& error)
{
    if (mDisplay == nullptr) {
        error = "no window to photograph";
        return false;
    }
    XSync(mDisplay, False);
    int width = 0, height = 0;
    Size(width, height);
    // X reads only what lies on the screen: an editor larger than the
    // display is photographed as far as it shows, the rest left black.
    int left = 0, top = 0, right = width, bottom = height;
    int rootX = 0, rootY = 0;
    Window child = 0;
    const Window root = DefaultRootWindow(mDisplay);
    if (XTranslateCoordinates(mDisplay, mWindow, root, 0, 0, &rootX, &rootY, &child)) {
        const Screen* screen = DefaultScreenOfDisplay(mDisplay);
        left = std::max(0, -rootX);
        top = std::max(0, -rootY);
        right = std::min(width, WidthOfScreen(screen) - rootX);
        bottom = std::min(height, HeightOfScreen(screen) - rootY);
    }
    XImage* image = right > left && bottom > top
                        ? XGetImage(mDisplay, mWindow, left, top, static_cast<unsigned>(right - left),
                                    static_cast<unsigned>(bottom - top), AllPlanes, ZPixmap)
                        : nullptr;
    if (image == nullptr) {
        error = "the window's pixels could not be read";
        return false;
    }
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    cairo_surface_flush(surface);
    std::memset(data, 0, static_cast<size_t>(stride) * static_cast<size_t>(height));
    for (int y = top; y < bottom; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(data + static_cast<ptrdiff_t>(y) * stride);
        for (int x = left; x < right; ++x) {
            const unsigned long pixel = XGetPixel(image, x - left, y - top);
            row[x] = (Channel(pixel, image->red_mask) << 16) | (Channel(pixel, image->green_mask) << 8) |
                     Channel(pixel, image->blue_mask);
        }
    }
    cairo_surface_mark_dirty(surface);
    XDestroyImage(image);
    const cairo_status_t status = cairo_surface_write_to_png(surface, path.c_str());
    cairo_surface_destroy(surface);
    if (status != CAIRO_STATUS_SUCCESS) {
        error = "cannot write " + path + ": " + cairo_status_to_string(status);
        return false;
    }
    return true;
}

bool CX11Window::HasChildAt(int x, int y) const
{
    if (mDisplay == nullptr)
        return false;
    XSync(mDisplay, False);
    int childX = 0, childY = 0;
    Window child = 0;
    XTranslateCoordinates(mDisplay, mWindow, mWindow, x, y, &childX, &childY, &child);
    return child != 0;
}

bool CX11Window::Click(int x, int y, std::string& error)
{
    if (mDisplay == nullptr) {
        error = "no window to click";
        return false;
    }
    int event = 0, firstError = 0, major = 0, minor = 0;
    if (!XTestQueryExtension(mDisplay, &event, &firstError, &major, &minor)) {
        error = "the X server has no XTEST extension";
        return false;
    }
    int rootX = 0, rootY = 0;
    Window child = 0;
    XTranslateCoordinates(mDisplay, mWindow, DefaultRootWindow(mDisplay), x, y, &rootX, &rootY, &child);
    XTestFakeMotionEvent(mDisplay, DefaultScreen(mDisplay), rootX, rootY, CurrentTime);
    XTestFakeButtonEvent(mDisplay, Button1, True, CurrentTime);
    XTestFakeButtonEvent(mDisplay, Button1, False, CurrentTime);
    XSync(mDisplay, False);
    return true;
}

}  // namespace AAXHost
