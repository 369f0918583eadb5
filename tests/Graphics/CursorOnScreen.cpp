#include "tests/Graphics/CursorOnScreen.h"

#include <X11/extensions/Xfixes.h>

namespace TarvaneTests
{

CursorOnScreen TakeCursor()
{
    CursorOnScreen cursor;
    Display* pDisplay = XOpenDisplay(nullptr);
    if (pDisplay == nullptr)
        return cursor;
    if (XFixesCursorImage* pImage = XFixesGetCursorImage(pDisplay))
    {
        cursor.nWidth = pImage->width;
        cursor.nHeight = pImage->height;
        cursor.nHotSpotX = pImage->xhot;
        cursor.nHotSpotY = pImage->yhot;
        // One pixel a long, whatever a long's size.
        cursor.pixels.assign(pImage->pixels, pImage->pixels + pImage->width * pImage->height);
        XFree(pImage);
    }
    XCloseDisplay(pDisplay);
    return cursor;
}

} // namespace TarvaneTests
