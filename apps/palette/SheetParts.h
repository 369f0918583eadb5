// What the sheet is put together from: words, swatches and controls that keep still. Main thread.
#pragma once

#include "colours/ComponentColour.h"
#import "controls/GraphicUtils.h"
#import "controls/TKToggleSwitch.h"

#import <AppKit/AppKit.h>

#include <string>

namespace Tarvane
{

NSColor* SheetBackground();

enum class CWords
{
    Title,   ///< of the sheet
    Section, ///< in capitals over a group
    Strong,  ///< what a row is about
    Detail,  ///< everything else
};

/// A line of text that fits the rectangle or is cut at its end.
NSTextField* MakeWords(CWords kind, NSString* strText, NSRect frame,
                       NSTextAlignment alignment = NSLeftTextAlignment);

NSString* ToNSString(const std::string& strText);

} // namespace Tarvane

/// Holds what stands on the sheet; its y axis runs downward. Also holds still: see setStill:.
@interface SheetGroup : NSView
{
    bool m_fStill;
}
/// A still group takes no clicks, and neither does what stands in it.
- (void)setStill:(bool)fStill;
@end

/// One fill of a palette entry, as an unflipped view such as the link view shows it. Where the
/// entry lets something through, a chequered ground shows.
@interface Swatch : NSView
{
    CComponentCode m_Code;
    FillDirection m_direction;
    float m_fRadius;
}
/// fRadius: 0 is the plain fill.
- (id)initWithFrame:(NSRect)frame
               code:(CComponentCode)code
          direction:(FillDirection)direction
             radius:(float)fRadius;
@end

/// Paints a cell in one of the two button styles.
@interface CellSpecimen : NSView
{
    NSCell* m_cell; ///< owned
    int m_nStyle;
}
- (id)initWithFrame:(NSRect)frame cell:(NSCell*)cell style:(int)nStyle;
@end

/// A toggle that is held down for good, or not at all.
@interface ToggleSpecimen : TKToggleSwitch
- (void)setHeldDown:(bool)fDown;
@end
