#import "tests/support/Canvas.h"

#include <algorithm>
#include <cstdlib>

@interface TestCanvasView : NSView
{
  @public
    bool m_fFlipped;
}
@end

@implementation TestCanvasView

- (BOOL)isFlipped
{
    return m_fFlipped;
}

- (void)drawRect:(NSRect)rect
{
    [[NSColor whiteColor] set];
    NSRectFill(rect);
}

@end

namespace TarvaneTests
{

std::ostream& operator<<(std::ostream& stream, const Pixel& pixel)
{
    return stream << "(" << pixel.nRed << " " << pixel.nGreen << " " << pixel.nBlue << ")";
}

bool IsNear(Pixel a, Pixel b, int nMost)
{
    return std::abs(a.nRed - b.nRed) <= nMost && std::abs(a.nGreen - b.nGreen) <= nMost &&
           std::abs(a.nBlue - b.nBlue) <= nMost;
}

Picture::Picture(NSRect rect)
{
    NSBitmapImageRep* image = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:rect] autorelease];
    m_nWidth = int([image pixelsWide]);
    m_nHeight = int([image pixelsHigh]);
    const NSInteger nBytes = [image bitsPerPixel] / 8;
    for (int y = 0; y < m_nHeight; ++y)
        for (int x = 0; x < m_nWidth; ++x)
        {
            const unsigned char* p = [image bitmapData] + y * [image bytesPerRow] + x * nBytes;
            m_pixels.push_back({p[0], p[1], p[2]});
        }
}

NSRect Picture::BoxOfAllBut(Pixel ground) const
{
    int nLeft = m_nWidth, nTop = m_nHeight, nRight = 0, nBottom = 0;
    for (int y = 0; y < m_nHeight; ++y)
        for (int x = 0; x < m_nWidth; ++x)
        {
            if (At(x, y) == ground)
                continue;
            nLeft = std::min(nLeft, x);
            nTop = std::min(nTop, y);
            nRight = std::max(nRight, x + 1);
            nBottom = std::max(nBottom, y + 1);
        }
    if (nLeft >= nRight)
        return NSZeroRect;
    return NSMakeRect(nLeft, nTop, nRight - nLeft, nBottom - nTop);
}

int Picture::Count(Pixel pixel) const
{
    return int(std::count(m_pixels.begin(), m_pixels.end(), pixel));
}

Canvas::Canvas(NSSize size, bool fFlipped)
{
    const NSRect frame = NSMakeRect(0, 0, size.width, size.height);
    m_window = [[NSWindow alloc] initWithContentRect:frame
                                           styleMask:NSBorderlessWindowMask
                                             backing:NSBackingStoreBuffered
                                               defer:NO];
    [m_window setReleasedWhenClosed:NO];
    TestCanvasView* view = [[TestCanvasView alloc] initWithFrame:frame];
    view->m_fFlipped = fFlipped;
    m_view = view;
    [m_window setContentView:m_view];
    [m_window orderFront:nil];
    [m_window display];
    [m_view lockFocus];
}

Canvas::~Canvas()
{
    [m_view unlockFocus];
    [m_window orderOut:nil];
    [m_view release];
    [m_window release];
}

CGContextRef Canvas::Context() const
{
    return (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
}

Picture Canvas::TakeView(NSView* view) const
{
    [m_view addSubview:view];
    [m_view display];
    [view lockFocus];
    const Picture picture([view bounds]);
    [view unlockFocus];
    [view removeFromSuperview];
    return picture;
}

} // namespace TarvaneTests
