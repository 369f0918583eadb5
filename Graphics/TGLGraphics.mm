#import "Graphics/TGLGraphics.h"

#include "colours/ComponentsColors.h"
#include "utils/Assertion.h"

#import <AppKit/AppKit.h>

#include <cstdarg>
#include <cstdio>

// Reports this source under its fixed name.
#define TGL_ASSERT(expression)                                                                     \
    ((expression)                                                                                  \
         ? (void)0                                                                                 \
         : AssertionFailed((const char*)__func__, "Graphics/TGLGraphics", __LINE__, #expression))

namespace TGL
{

namespace
{

// Lay out from the line fragment origin; cut the last line that shows.
constexpr auto kDrawingOptions = NSStringDrawingOptions((1 << 0) | (1 << 5));

constexpr size_t kPanelTextSize = 10000;

NSString* Utf8String(const std::string& strText)
{
    return [NSString stringWithUTF8String:strText.c_str()];
}

// nil for null and for bytes that are not UTF-8.
NSString* Utf8String(const char* szText)
{
    return szText ? [NSString stringWithUTF8String:szText] : nil;
}

NSString* MainBundlePng(const std::string& strName)
{
    return [[NSBundle mainBundle] pathForResource:Utf8String(strName) ofType:@"png"];
}

NSImage* NewImage(const std::string& strName)
{
    return [[NSImage alloc] initByReferencingFile:MainBundlePng(strName)];
}

bool HasBit(NSEvent* event, int nBit) { return ([event modifierFlags] >> nBit) & 1; }

NSTextAlignment PlatformAlignment(TextAlignment alignment)
{
    switch (alignment)
    {
    case kTextLeft:
        return NSLeftTextAlignment;
    case kTextCentre:
        return NSCenterTextAlignment;
    default:
        return NSRightTextAlignment;
    }
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

// A panel reads its text as a format once more, with no arguments to go with it. Doubled percent
// signs become one there, as they always have; a directive is shown as it stands.
NSString* PanelFormat(const char* szText)
{
    std::string strFormat;
    for (const char* p = szText; *p; ++p)
    {
        strFormat += *p;
        if (*p != '%')
            continue;
        strFormat += '%';
        if (p[1] == '%')
            ++p;
    }
    return Utf8String(strFormat);
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

CAttributedString::CAttributedString(void* pString) : m_pString([(id)pString retain]) {}

CAttributedString::~CAttributedString() { TGL_ASSERT(m_pString == NULL); }

void CAttributedString::SetString(void* pString)
{
    TGL_ASSERT(m_pString == NULL);
    m_pString = pString;
}

void CAttributedString::DeleteString()
{
    [(id)m_pString release];
    m_pString = nullptr;
}

CView::CView(void* pView) : m_pView(pView) {}

CGPoint CView::convertPoint(CGPoint point)
{
    return m_pView ? [(NSView*)m_pView convertPoint:point fromView:nil] : CGPointMake(0, 0);
}

void CView::setNeedsDisplay() { [(NSView*)m_pView setNeedsDisplay:YES]; }

void CView::invalidateCursorRectsForView()
{
    [[(NSView*)m_pView window] invalidateCursorRectsForView:(NSView*)m_pView];
}

void CView::disableCursorRects() { [[(NSView*)m_pView window] disableCursorRects]; }

void CView::enableCursorRects() { [[(NSView*)m_pView window] enableCursorRects]; }

CGRect CView::visibleRect()
{
    return m_pView ? [(NSView*)m_pView visibleRect] : CGRectMake(0, 0, 0, 0);
}

void CView::addCursorRect(const CGRect& rect, CCursor* pCursor)
{
    [(NSView*)m_pView addCursorRect:rect cursor:(NSCursor*)pCursor->Handle()];
}

CEvent::CEvent(void* pEvent) : m_pEvent(pEvent) {}

CGPoint CEvent::locationInWindow()
{
    return m_pEvent ? [(NSEvent*)m_pEvent locationInWindow] : CGPointMake(0, 0);
}

int CEvent::clickCount() { return int([(NSEvent*)m_pEvent clickCount]); }

bool CEvent::ShiftKey() { return HasBit((NSEvent*)m_pEvent, 17); }

bool CEvent::AlternateKey() { return HasBit((NSEvent*)m_pEvent, 19); }

bool CEvent::FunctionKey() { return HasBit((NSEvent*)m_pEvent, 23); }

bool CEvent::AlternateKeyPressed() { return HasBit([NSApp currentEvent], 19); }

bool CEvent::CommandKey() { return HasBit([NSApp currentEvent], 20); }

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

CNotification::CNotification(void* pTarget, void* pSelector)
    : m_pTarget(pTarget), m_pSelector(pSelector)
{
}

bool CNotification::operator==(const CNotification& other) const
{
    return m_pTarget == other.m_pTarget && m_pSelector == other.m_pSelector;
}

void CNotification::operator=(const CNotification& other)
{
    m_pTarget = other.m_pTarget;
    m_pSelector = other.m_pSelector;
}

void CNotification::Notify()
{
    [(id)m_pTarget performSelectorOnMainThread:(SEL)m_pSelector
                                    withObject:(id)m_pTarget
                                 waitUntilDone:NO];
}

void DrawText(CGContextRef, const std::string& strText, CGRect rect, CComponentCode colour,
              const __CFString*& refFontName, float fSize, TextAlignment alignment)
{
    NSString* text = Utf8String(strText);
    NSMutableParagraphStyle* style = [[NSMutableParagraphStyle alloc] init];
    [style setAlignment:PlatformAlignment(alignment)];
    [style setLineBreakMode:NSLineBreakByWordWrapping];
    NSMutableDictionary* attributes = [NSMutableDictionary
        dictionaryWithObjectsAndKeys:style, NSParagraphStyleAttributeName, nil];
    // Without the font or the colour the platform's own stand in.
    if (NSFont* font = [NSFont fontWithName:(NSString*)refFontName size:fSize])
        [attributes setObject:font forKey:NSFontAttributeName];
    if (NSColor* platformColour = gAppColours.FindNSColor(colour))
        [attributes setObject:platformColour forKey:NSForegroundColorAttributeName];
    [text drawWithRect:rect options:kDrawingOptions attributes:attributes];
    [style release];
}

void drawWithRect(CGContextRef, CAttributedString* pAttrib, CGRect rect)
{
    // The string is asked for, not the pointer to the object that holds it.
    const NSAttributedString* held = (NSAttributedString*)pAttrib->m_pString;
    if (!held)
        AssertionFailed(__func__, "Graphics/TGLGraphics", __LINE__, "pAttrib != NULL");
    [held drawWithRect:rect options:kDrawingOptions];
}

void FillRect(CGContextRef context, CComponentCode colour, CComponentCode background, CGRect rect,
              FillDirection direction, bool fFlipped)
{
    [GraphicUtils FillRect:context
                     Color:colour
                Background:background
                      Rect:rect
             FillDirection:direction
                   Flipped:fFlipped];
}

void FillRoundRect(CGContextRef context, CComponentCode colour, CComponentCode background,
                   CGRect rect, float fRadius, FillDirection direction, bool fFlipped)
{
    [GraphicUtils FillRoundRect:context
                          Color:colour
                     Background:background
                           Rect:rect
                         Radius:fRadius
                  FillDirection:direction
                        Flipped:fFlipped];
}

bool MessageBoxOKCancel(const char* szTitle, const char* szFormat, ...)
{
    TGL_ASSERT(szFormat != NULL);
    char szText[kPanelTextSize];
    va_list arguments;
    va_start(arguments, szFormat);
    vsnprintf(szText, sizeof szText, szFormat, arguments);
    va_end(arguments);
    return NSRunAlertPanel(Utf8String(szTitle), PanelFormat(szText), @"OK", @"Cancel", nil) == 1;
}

void Alert(const char* szTitle, const char* szFormat, ...)
{
    TGL_ASSERT(szFormat != NULL);
    char szText[kPanelTextSize];
    va_list arguments;
    va_start(arguments, szFormat);
    vsnprintf(szText, sizeof szText, szFormat, arguments);
    va_end(arguments);
    CFOptionFlags response = 0;
    CFUserNotificationDisplayAlert(0, kCFUserNotificationPlainAlertLevel, nullptr, nullptr, nullptr,
                                   (CFStringRef)Utf8String(szTitle),
                                   (CFStringRef)Utf8String(szText), nullptr, nullptr, nullptr,
                                   &response);
}

} // namespace TGL
