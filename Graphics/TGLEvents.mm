#import "Graphics/TGLGraphics.h"

#import <AppKit/AppKit.h>

namespace TGL
{

namespace
{

// Bits of an event's modifier flags.
constexpr int kShiftBit = 17;
constexpr int kAlternateBit = 19;
constexpr int kCommandBit = 20;
constexpr int kFunctionBit = 23;

bool HasBit(void* pEvent, int nBit) { return ([(NSEvent*)pEvent modifierFlags] >> nBit) & 1; }

} // namespace

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
    [(NSView*)m_pView addCursorRect:rect cursor:(NSCursor*)pCursor->m_pCursor];
}

CEvent::CEvent(void* pEvent) : m_pEvent(pEvent) {}

CGPoint CEvent::locationInWindow()
{
    return m_pEvent ? [(NSEvent*)m_pEvent locationInWindow] : CGPointMake(0, 0);
}

int CEvent::clickCount() { return int([(NSEvent*)m_pEvent clickCount]); }

bool CEvent::ShiftKey() { return HasBit(m_pEvent, kShiftBit); }

bool CEvent::AlternateKey() { return HasBit(m_pEvent, kAlternateBit); }

bool CEvent::FunctionKey() { return HasBit(m_pEvent, kFunctionBit); }

bool CEvent::AlternateKeyPressed() { return HasBit([NSApp currentEvent], kAlternateBit); }

bool CEvent::CommandKey() { return HasBit([NSApp currentEvent], kCommandBit); }

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

} // namespace TGL
