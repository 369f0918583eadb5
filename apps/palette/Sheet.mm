#import "apps/palette/Sheet.h"

#import "apps/palette/ControlLooks.h"
#import "apps/palette/PaletteTable.h"
#import "apps/palette/SheetParts.h"

#include <algorithm>

// The ground of everything.
@interface SheetView : SheetGroup
@end

@implementation SheetView

- (BOOL)isOpaque
{
    return YES;
}

- (void)drawRect:(NSRect)rect
{
    [Tarvane::SheetBackground() set];
    NSRectFill(rect);
}

@end

namespace Tarvane
{
namespace
{

constexpr CGFloat kMargin = 20;
constexpr CGFloat kTitleHeight = 40;
constexpr CGFloat kGutter = 20;

// Groups one below the other, each under its name.
class CSheetColumn
{
  public:
    CSheetColumn(NSView* sheet, NSPoint top) : m_sheet(sheet), m_x(top.x), m_y(top.y) {}

    void Add(NSString* strName, NSView* group)
    {
        constexpr CGFloat dNameHeight = 24, dGap = 16;
        const NSSize size = [group frame].size;
        [m_sheet
            addSubview:MakeWords(CWords::Section, strName, NSMakeRect(m_x, m_y, size.width, 17))];
        [group setFrameOrigin:NSMakePoint(m_x, m_y + dNameHeight)];
        [m_sheet addSubview:group];
        m_y += dNameHeight + size.height + dGap;
        m_dWidth = std::max(m_dWidth, size.width);
    }

    CGFloat Right() const { return m_x + m_dWidth; }
    CGFloat Bottom() const { return m_y; }

  private:
    NSView* m_sheet;
    CGFloat m_x;
    CGFloat m_y;
    CGFloat m_dWidth = 0;
};

} // namespace

NSView* MakeSheet()
{
    SheetView* sheet = [[[SheetView alloc] initWithFrame:NSZeroRect] autorelease];
    [sheet addSubview:MakeWords(CWords::Title, @"Tarvane Link palette",
                                NSMakeRect(kMargin, kMargin - 8, 400, 26))];

    CSheetColumn palette(sheet, NSMakePoint(kMargin, kMargin + kTitleHeight - 8));
    palette.Add(@"PALETTE", MakePaletteTable());

    CSheetColumn controls(sheet,
                          NSMakePoint(palette.Right() + kGutter, kMargin + kTitleHeight - 8));
    controls.Add(@"TOGGLE SWITCH", MakeToggleLooks());
    controls.Add(@"BUTTON", MakeButtonLooks());
    controls.Add(@"POP-UP BUTTON", MakePopUpLooks());
    controls.Add(@"TEXT FIELD", MakeTextFieldLooks());
    controls.Add(@"LIVE, TO TRY", MakeLiveControls());

    [sheet setFrameSize:NSMakeSize(controls.Right() + kMargin,
                                   std::max(palette.Bottom(), controls.Bottom()) + kMargin - 16)];
    return sheet;
}

void BeginEditing(NSView* sheet)
{
    NSTextField* field = [sheet viewWithTag:kEditedFieldTag];
    [[sheet window] makeFirstResponder:field];
    [field selectText:nil];
    [[field currentEditor] setSelectedRange:NSMakeRange(0, 5)];
}

} // namespace Tarvane
