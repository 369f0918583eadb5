// A thin layer over the window system's drawing, events and cursors. Each operation forwards to one
// or two platform calls; colours are codes of the palette (colours/ComponentsColors.h).
//
// Handles are platform objects, passed untyped. Main thread only, but for CNotification::Notify.
// Texts are UTF-8. A missing image or font and a code without an entry go to the platform as they
// are.
#pragma once

#include "colours/ComponentColour.h"
#import "controls/GraphicUtils.h"

#include <CoreGraphics/CoreGraphics.h>

#include <string>

namespace TGL
{

enum TextAlignment : int
{
    kTextLeft = 0,
    kTextCentre = 1,
    kTextRight = 2, ///< And every other value.
};

/// The platform's stock cursors.
enum StockCursor : int
{
    kCursorArrow = 0,
    kCursorResizeLeft = 1,
    kCursorResizeRight = 2,
    kCursorResizeLeftRight = 3,
    kCursorResizeUp = 4,
    kCursorResizeUpDown = 5,
    kCursorResizeDown = 6,
    kCursorOpenHand = 7,
};

/// A PNG resource of the host application, not of the view's bundle. Owns the platform's image. One
/// that is missing draws nothing.
class CImage
{
  public:
    /// strName: of the resource, without extension.
    explicit CImage(const std::string& strName);
    ~CImage();
    CImage(const CImage&) = delete;
    CImage& operator=(const CImage&) = delete;

    /// In points. The context is ignored.
    CGSize GetSize(CGContextRef context);
    CGSize GetSize();

    /// Draws the whole image over what is in the rectangle of the current AppKit context; the
    /// context passed is ignored. dOpacity: 0 to 1.
    void Draw(CGContextRef context, CGRect rect, CGFloat dOpacity);

    void SetFlipped(bool fFlipped);
    bool IsFlipped();

    void* m_pImage; ///< NSImage, owned.
};

/// Holds an attributed string, with a discipline: what is held is given up by DeleteString, before
/// another string is set and before the object goes. Both are asserted.
class CAttributedString
{
  public:
    CAttributedString() = default;

    /// Retains the string: the caller keeps its reference, and DeleteString is still to be called.
    explicit CAttributedString(void* pString);
    ~CAttributedString();
    CAttributedString(const CAttributedString&) = delete;
    CAttributedString& operator=(const CAttributedString&) = delete;

    /// Takes the caller's reference over, unlike the constructor. None may be held.
    void SetString(void* pString);

    /// Releases the string; harmless when there is none.
    void DeleteString();

    void* m_pString = nullptr; ///< NSAttributedString, owned.
};

class CCursor;

/// A view, which is not retained. Without one nothing is done, and places are zero.
class CView
{
  public:
    explicit CView(void* pView);
    virtual ~CView() {}

    /// point: in window coordinates. Answers the point in the view's own.
    CGPoint convertPoint(CGPoint point);
    void setNeedsDisplay();
    void invalidateCursorRectsForView();
    /// For the whole window of the view.
    void disableCursorRects();
    void enableCursorRects();
    CGRect visibleRect();
    /// The view keeps the platform's cursor, not pCursor, which must not be null.
    void addCursorRect(const CGRect& rect, CCursor* pCursor);

    void* m_pView; ///< NSView, may be null.
};

/// An event, which is not retained.
class CEvent
{
  public:
    explicit CEvent(void* pEvent);

    CGPoint locationInWindow();
    int clickCount();

    /// Keys of this event.
    bool ShiftKey();
    bool AlternateKey();
    bool FunctionKey();

    /// Keys of the application's current event, whatever event this is; kept so.
    bool AlternateKeyPressed();
    bool CommandKey();

    void* m_pEvent; ///< NSEvent.
};

/// A cursor; owns one reference.
class CCursor
{
  public:
    /// strImage: a PNG resource of the host application, without extension. The hot spot is in
    /// points of it.
    CCursor(const std::string& strImage, CGFloat dHotSpotX, CGFloat dHotSpotY);
    /// A number without a name gives an object without a cursor, which does nothing.
    explicit CCursor(StockCursor cursor);
    ~CCursor();
    CCursor(const CCursor&) = delete;
    CCursor& operator=(const CCursor&) = delete;

    void push();
    /// Takes off whatever cursor is on top, which need not be this one.
    void pop();

    void* m_pCursor; ///< NSCursor, owned; null when there is none.
};

/// A target and a selector. Neither is retained.
class CNotification
{
  public:
    CNotification(void* pTarget, void* pSelector);
    CNotification(const CNotification&) = default;

    bool operator==(const CNotification& other) const;
    void operator=(const CNotification& other);

    /// Sends the selector to the target on the main thread, with the target as argument. Any
    /// thread; does not wait.
    void Notify();

    void* m_pTarget;
    void* m_pSelector; ///< SEL.
};

/// Draws the text in the rectangle of the current AppKit context, wrapped at words, the last line
/// that fits cut short. The context passed is ignored. fSize: points.
void DrawText(CGContextRef context, const std::string& strText, CGRect rect, CComponentCode colour,
              const __CFString*& refFontName, float fSize, TextAlignment alignment);

/// Draws a string, which must be there, laid out as DrawText does. The context is ignored.
void drawWithRect(CGContextRef context, CAttributedString* pString, CGRect rect);

/// The fills of controls/GraphicUtils.h.
void FillRect(CGContextRef context, CComponentCode colour, CComponentCode background, CGRect rect,
              FillDirection direction, bool fFlipped);
void FillRoundRect(CGContextRef context, CComponentCode colour, CComponentCode background,
                   CGRect rect, float fRadius, FillDirection direction, bool fFlipped);

/// Panels with a text of printf's making, cut after the last whole character within 9,999 bytes.
/// szFormat must not be null. They return when the user has answered.
///
/// MessageBoxOKCancel is true for OK alone. Its panel reads two percent signs in a row as one.
bool MessageBoxOKCancel(const char* szTitle, const char* szFormat, ...)
    __attribute__((format(printf, 2, 3)));
void Alert(const char* szTitle, const char* szFormat, ...) __attribute__((format(printf, 2, 3)));

} // namespace TGL
