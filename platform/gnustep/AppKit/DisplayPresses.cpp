#include "platform/gnustep/AppKit/DisplayPresses.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/keysym.h>

#include <array>

namespace platform
{

namespace
{

constexpr int kButtons = 3;

struct CloseDisplay
{
    void operator()(Display* display) const { XCloseDisplay(display); }
};

} // namespace

struct CDisplayPresses::Connection
{
    std::unique_ptr<Display, CloseDisplay> display;
    int nXInput; // the extension's number in events
};

CDisplayPresses::CDisplayPresses()
{
    std::unique_ptr<Display, CloseDisplay> display(XOpenDisplay(nullptr));
    int nXInput = 0, nEvent = 0, nError = 0, nMajor = 2, nMinor = 1;
    if (!display ||
        !XQueryExtension(display.get(), "XInputExtension", &nXInput, &nEvent, &nError) ||
        XIQueryVersion(display.get(), &nMajor, &nMinor) != Success)
        return;

    std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
    XISetMask(bits.data(), XI_RawButtonPress);
    XISetMask(bits.data(), XI_RawKeyPress);
    XIEventMask mask{XIAllMasterDevices, static_cast<int>(bits.size()), bits.data()};
    XISelectEvents(display.get(), DefaultRootWindow(display.get()), &mask, 1);
    XSync(display.get(), False);
    m_connection.reset(new Connection{std::move(display), nXInput});
}

CDisplayPresses::~CDisplayPresses() = default;

CDisplayPresses::Presses CDisplayPresses::Take()
{
    Presses presses{false, false};
    if (!m_connection)
        return presses;
    Display* display = m_connection->display.get();
    while (XPending(display) > 0)
    {
        XEvent event;
        XNextEvent(display, &event);
        XGenericEventCookie& cookie = event.xcookie;
        if (cookie.type != GenericEvent || cookie.extension != m_connection->nXInput ||
            !XGetEventData(display, &cookie))
            continue;
        const int nWhich = static_cast<const XIRawEvent*>(cookie.data)->detail;
        if (cookie.evtype == XI_RawButtonPress && nWhich <= kButtons)
            presses.fMouse = true;
        if (cookie.evtype == XI_RawKeyPress &&
            XkbKeycodeToKeysym(display, static_cast<KeyCode>(nWhich), 0, 0) == XK_Escape)
            presses.fEscape = true;
        XFreeEventData(display, &cookie);
    }
    return presses;
}

} // namespace platform
