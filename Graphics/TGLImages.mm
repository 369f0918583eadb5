#import "Graphics/TGLGraphics.h"

#import "Graphics/TGLSupport.h"

#import <AppKit/AppKit.h>

namespace TGL
{

namespace
{

// Also for a resource that is missing.
NSImage* NewImage(const std::string& strName)
{
    NSString* path = [[NSBundle mainBundle] pathForResource:PlatformString(strName) ofType:@"png"];
    return [[NSImage alloc] initByReferencingFile:path];
}

NSCursor* Stock(StockCursor cursor)
{
    switch (cursor)
    {
    case kCursorArrow:
        return [NSCursor arrowCursor];
    case kCursorResizeLeft:
        return [NSCursor resizeLeftCursor];
    case kCursorResizeRight:
        return [NSCursor resizeRightCursor];
    case kCursorResizeLeftRight:
        return [NSCursor resizeLeftRightCursor];
    case kCursorResizeUp:
        return [NSCursor resizeUpCursor];
    case kCursorResizeUpDown:
        return [NSCursor resizeUpDownCursor];
    case kCursorResizeDown:
        return [NSCursor resizeDownCursor];
    case kCursorOpenHand:
        return [NSCursor openHandCursor];
    }
    return nil;
}

} // namespace

CImage::CImage(const std::string& strName) : m_pImage(NewImage(strName)) {}

CImage::~CImage() { [(NSImage*)m_pImage release]; }

CGSize CImage::GetSize(CGContextRef) { return GetSize(); }

CGSize CImage::GetSize() { return m_pImage ? [(NSImage*)m_pImage size] : CGSizeMake(0, 0); }

void CImage::Draw(CGContextRef, CGRect rect, CGFloat dOpacity)
{
    [(NSImage*)m_pImage drawInRect:rect
                          fromRect:NSZeroRect
                         operation:NSCompositeSourceOver
                          fraction:dOpacity];
}

void CImage::SetFlipped(bool fFlipped) { [(NSImage*)m_pImage setFlipped:fFlipped]; }

bool CImage::IsFlipped() { return [(NSImage*)m_pImage isFlipped]; }

CCursor::CCursor(const std::string& strImage, CGFloat dHotSpotX, CGFloat dHotSpotY)
{
    NSImage* image = NewImage(strImage);
    m_pCursor = [[NSCursor alloc] initWithImage:image hotSpot:NSMakePoint(dHotSpotX, dHotSpotY)];
    [image release];
}

CCursor::CCursor(StockCursor cursor) : m_pCursor([Stock(cursor) retain]) {}

CCursor::~CCursor() { [(NSCursor*)m_pCursor release]; }

void CCursor::push() { [(NSCursor*)m_pCursor push]; }

void CCursor::pop() { [NSCursor pop]; }

} // namespace TGL
