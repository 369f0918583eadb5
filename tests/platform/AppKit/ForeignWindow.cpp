#include "tests/platform/AppKit/ForeignWindow.h"

#include <X11/Xlib.h>

#include <stdexcept>

namespace TarvaneTest
{

struct CForeignWindow::Connection
{
    Display* display;
    Window window;
};

CForeignWindow::CForeignWindow() : m_connection(new Connection{XOpenDisplay(nullptr), None})
{
    Display* display = m_connection->display;
    if (display == nullptr)
        throw std::runtime_error("there is no display");
    XSetWindowAttributes attributes{};
    attributes.override_redirect = True;
    attributes.event_mask = ButtonPressMask;
    m_connection->window = XCreateWindow(display, DefaultRootWindow(display), 0, 0, 2 * kMiddle,
                                         2 * kMiddle, 0, CopyFromParent, InputOutput, nullptr,
                                         CWOverrideRedirect | CWEventMask, &attributes);
    XMapRaised(display, m_connection->window);
    XSync(display, False);
}

CForeignWindow::~CForeignWindow()
{
    XCloseDisplay(m_connection->display);
}

int CForeignWindow::TakePresses()
{
    XSync(m_connection->display, False);
    int nPresses = 0;
    XEvent event;
    while (XCheckTypedEvent(m_connection->display, ButtonPress, &event))
        ++nPresses;
    return nPresses;
}

} // namespace TarvaneTest
