#import "Graphics/TGLGraphics.h"

#import "Graphics/TGLSupport.h"
#include "colours/ComponentsColors.h"

#import <AppKit/AppKit.h>

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

} // namespace

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
    TGL_ASSERT(pAttrib != NULL);
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

} // namespace TGL
