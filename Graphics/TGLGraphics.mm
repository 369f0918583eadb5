#import "Graphics/TGLGraphics.h"

#import "Graphics/TGLSupport.h"
#include "colours/ComponentsColors.h"
#include "utils/Assertion.h"

#import <AppKit/AppKit.h>
#include <CoreFoundation/CoreFoundation.h>

#include <cstdarg>
#include <cstdio>

namespace TGL
{

namespace
{

// Lay out from the line fragment origin; cut the last line that shows.
const auto kDrawingOptions = NSStringDrawingOptions((1 << 0) | (1 << 5));

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

constexpr size_t kPanelTextSize = 10000; // with its terminator

bool GoesOn(char c) { return (c & 0xc0) == 0x80; } // inside a UTF-8 character

// As much of the text as there is room for, in whole characters; empty for what does not convert.
std::string Expanded(const char* szFormat, va_list arguments)
{
    // A byte more than is shown tells whether the cut would fall inside a character.
    char szText[kPanelTextSize + 1];
    const int nBytes = vsnprintf(szText, sizeof szText, szFormat, arguments);
    if (nBytes < 0)
        return {};
    if (size_t(nBytes) < kPanelTextSize)
        return szText;
    size_t nShown = kPanelTextSize - 1;
    while (nShown > 0 && GoesOn(szText[nShown]))
        --nShown;
    return std::string(szText, nShown);
}

// A panel reads its text as a format once more, with no arguments to go with it. Doubled percent
// signs become one there, as they always have; a directive is shown as it stands.
std::string AsFormat(const std::string& strText)
{
    std::string strFormat;
    for (size_t i = 0; i < strText.size(); ++i)
    {
        strFormat += strText[i];
        if (strText[i] != '%')
            continue;
        strFormat += '%';
        if (strText[i + 1] == '%')
            ++i;
    }
    return strFormat;
}

NSString* Title(const char* szTitle) { return PlatformString(szTitle ? szTitle : ""); }

} // namespace

CAttributedString::CAttributedString(void* pString) : m_pString([(id)pString retain]) {}

CAttributedString::~CAttributedString() { TARVANE_ASSERT(m_pString == NULL); }

void CAttributedString::SetString(void* pString)
{
    TARVANE_ASSERT(m_pString == NULL);
    m_pString = pString;
}

void CAttributedString::DeleteString()
{
    [(id)m_pString release];
    m_pString = nullptr;
}

void DrawText(CGContextRef, const std::string& strText, CGRect rect, CComponentCode colour,
              const __CFString*& refFontName, float fSize, TextAlignment alignment)
{
    NSString* text = PlatformString(strText);
    NSMutableParagraphStyle* style = [[NSMutableParagraphStyle alloc] init];
    [style setAlignment:PlatformAlignment(alignment)];
    [style setLineBreakMode:NSLineBreakByWordWrapping];
    NSFont* font = [NSFont fontWithName:(NSString*)refFontName size:fSize];
    NSColor* platformColour = gAppColours.FindNSColor(colour);
    // The list ends at the first that is missing: without the font the text has the platform's own
    // looks throughout, without the colour the platform's colour.
    NSDictionary* attributes =
        [NSDictionary dictionaryWithObjectsAndKeys:font, NSFontAttributeName, style,
                                                   NSParagraphStyleAttributeName, platformColour,
                                                   NSForegroundColorAttributeName, nil];
    [text drawWithRect:rect options:kDrawingOptions attributes:attributes];
    [style release];
}

void drawWithRect(CGContextRef, CAttributedString* pString, CGRect rect)
{
    NSAttributedString* pAttrib = (NSAttributedString*)pString->m_pString;
    TARVANE_ASSERT(pAttrib != NULL);
    [pAttrib drawWithRect:rect options:kDrawingOptions];
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
    TARVANE_ASSERT(szFormat != NULL);
    va_list arguments;
    va_start(arguments, szFormat);
    const std::string strText = Expanded(szFormat, arguments);
    va_end(arguments);
    return NSRunAlertPanel(Title(szTitle), PlatformString(AsFormat(strText)), @"OK", @"Cancel",
                           nil) == 1;
}

void Alert(const char* szTitle, const char* szFormat, ...)
{
    TARVANE_ASSERT(szFormat != NULL);
    va_list arguments;
    va_start(arguments, szFormat);
    const std::string strText = Expanded(szFormat, arguments);
    va_end(arguments);
    CFOptionFlags response = 0;
    CFUserNotificationDisplayAlert(0, kCFUserNotificationPlainAlertLevel, nullptr, nullptr, nullptr,
                                   (CFStringRef)Title(szTitle),
                                   (CFStringRef)PlatformString(strText), nullptr, nullptr, nullptr,
                                   &response);
}

} // namespace TGL
