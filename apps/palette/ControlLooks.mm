#import "apps/palette/ControlLooks.h"

#import "apps/palette/SheetParts.h"
#include "colours/ComponentsColors.h"
#import "controls/ColoredTextField.h"
#import "controls/TKButtonCell.h"
#import "controls/TKPopUpButtonCell.h"

namespace Tarvane
{
namespace
{

constexpr CGFloat kNameWidth = 60;
constexpr CGFloat kColumnWidth = 80;
constexpr CGFloat kGapOfStyles = 12;
constexpr CGFloat kGroupWidth = kNameWidth + 6 * kColumnWidth + kGapOfStyles;
constexpr CGFloat kLineHeight = 15;

SheetGroup* MakeGroup(CGFloat dHeight)
{
    return [[[SheetGroup alloc] initWithFrame:NSMakeRect(0, 0, kGroupWidth, dHeight)] autorelease];
}

void AddDetail(NSView* group, NSString* strText, CGFloat x, CGFloat y, CGFloat dWidth)
{
    [group addSubview:MakeWords(CWords::Detail, strText, NSMakeRect(x, y, dWidth, kLineHeight))];
}

#pragma mark Toggles

enum class CToggleLook
{
    LinkView,
    Labelled,
    ImageAlone,
};

// As the link view sets it up.
void SetUpToggle(TKToggleSwitch* toggle)
{
    [toggle SetStateImages:1 Up:@"LinkActive17" Down:@"LinkActive17"];
    [toggle SetStateImages:0 Up:@"LinkInactive17" Down:@"LinkInactive17"];
    [toggle SetUpColorsFace:ccTransportBtnFaceUp Border:ccTransportBtnBorderUp];
    [toggle SetDownColorsFace:ccTransportBtnFaceDown Border:ccTransportBtnBorderDown];
}

TKToggleSwitch* MakeToggle(CToggleLook look, bool fOn, bool fDown, NSRect frame)
{
    ToggleSpecimen* toggle = [[[ToggleSpecimen alloc] initWithFrame:frame] autorelease];
    SetUpToggle(toggle);
    [toggle setState:fOn ? 1 : 0];
    [toggle setHeldDown:fDown];
    if (look == CToggleLook::Labelled)
    {
        [toggle SetLabel:@"Link" XOffset:28];
        [toggle SetImageOffset:-16];
    }
    [toggle SetDrawButton:look != CToggleLook::ImageAlone];
    return toggle;
}

void AddToggleRow(NSView* group, CToggleLook look, NSString* strName, CGFloat y)
{
    constexpr CGFloat dHeight = 26;
    AddDetail(group, strName, 0, y + 6, kNameWidth + 20);
    for (int n = 0; n < 4; ++n)
    {
        const CGFloat dWidth = look == CToggleLook::ImageAlone ? dHeight : 62;
        const NSRect frame = NSMakeRect(kNameWidth + 20 + n * 100, y, dWidth, dHeight);
        [group addSubview:MakeToggle(look, n >= 2, n % 2 == 1, frame)];
    }
}

#pragma mark Buttons

struct Size
{
    NSControlSize size;
    NSString* strName;
    CGFloat dHeight;
};

constexpr CGFloat kSizeRowHeight = 30;
constexpr CGFloat kGridHeight = 3 * kLineHeight + 2 * kSizeRowHeight + 22;

enum class CButtonLook
{
    Up,
    Held,
    Disabled,
};

void AddGridHeader(NSView* group, CGFloat x, NSString* strStyle)
{
    [group addSubview:MakeWords(CWords::Strong, strStyle, NSMakeRect(x, 0, 3 * kColumnWidth, 18))];
    NSString* const names[] = {@"up", @"held", @"disabled"};
    for (int n = 0; n < 3; ++n)
    {
        AddDetail(group, names[n], x + n * kColumnWidth, 20, kColumnWidth);
    }
}

using CellMaker = NSCell* (*)();

void AddCell(NSView* group, CellMaker fnMake, const Size& size, CButtonLook look, int nStyle,
             NSPoint at)
{
    NSCell* cell = fnMake();
    [cell setControlSize:size.size];
    [cell setHighlighted:look == CButtonLook::Held];
    [cell setEnabled:look != CButtonLook::Disabled];
    const NSRect frame = NSMakeRect(at.x, at.y, kColumnWidth - 8, size.dHeight);
    [group addSubview:[[[CellSpecimen alloc] initWithFrame:frame cell:cell
                                                     style:nStyle] autorelease]];
}

NSView* MakeCellGrid(CellMaker fnMake)
{
    const Size sizes[] = {{NSRegularControlSize, @"regular", 22},
                          {NSSmallControlSize, @"small", 19},
                          {NSMiniControlSize, @"mini", 15}};
    SheetGroup* group = MakeGroup(kGridHeight);
    for (const int nStyle : {1, 0})
    {
        const CGFloat x = kNameWidth + (nStyle != 0 ? 0 : 3 * kColumnWidth + kGapOfStyles);
        AddGridHeader(group, x, nStyle != 0 ? @"palette style  1" : @"shaded style  0");
        CGFloat y = 3 * kLineHeight - 3;
        for (const Size& size : sizes)
        {
            if (nStyle != 0)
            {
                AddDetail(group, size.strName, 0, y + 2, kNameWidth);
            }
            int nColumn = 0;
            for (const auto look : {CButtonLook::Up, CButtonLook::Held, CButtonLook::Disabled})
            {
                AddCell(group, fnMake, size, look, nStyle,
                        NSMakePoint(x + nColumn++ * kColumnWidth, y));
            }
            y += kSizeRowHeight;
        }
    }
    return group;
}

NSCell* MakeButtonCell()
{
    TKButtonCell* cell = [[[TKButtonCell alloc] init] autorelease];
    [cell setTitle:@"Send"];
    return cell;
}

NSCell* MakePopUpCell()
{
    TKPopUpButtonCell* cell = [[[TKPopUpButtonCell alloc] init] autorelease];
    [cell addItemWithTitle:@"Track 1"];
    [cell addItemWithTitle:@"Track 2"];
    return cell;
}

#pragma mark Text fields

ColoredTextField* MakeField(NSString* strText, NSRect frame)
{
    ColoredTextField* field = [[[ColoredTextField alloc] initWithFrame:frame] autorelease];
    [field setStringValue:strText];
    [field setFont:[NSFont systemFontOfSize:12]];
    [field setTextColor:gAppColours.FindNSColor(ccLabelText)];
    [field setBackgroundColor:SheetBackground()];
    [field setDrawsBackground:YES];
    [field setBezeled:NO];
    [field setBordered:NO];
    return field;
}

} // namespace

NSView* MakeToggleLooks()
{
    SheetGroup* group = MakeGroup(126);
    [group setStill:true];
    NSString* const names[] = {@"off, up", @"off, down", @"on, up", @"on, down"};
    for (int n = 0; n < 4; ++n)
    {
        AddDetail(group, names[n], kNameWidth + 20 + n * 100, 0, 90);
    }
    AddToggleRow(group, CToggleLook::LinkView, @"link view", 22);
    AddToggleRow(group, CToggleLook::Labelled, @"with a label", 58);
    AddToggleRow(group, CToggleLook::ImageAlone, @"image alone", 94);
    return group;
}

NSView* MakeButtonLooks() { return MakeCellGrid(&MakeButtonCell); }

NSView* MakePopUpLooks() { return MakeCellGrid(&MakePopUpCell); }

NSView* MakeTextFieldLooks()
{
    SheetGroup* group = MakeGroup(44);
    ColoredTextField* edited = MakeField(@"Scene 12, take 3", NSMakeRect(kNameWidth, 20, 200, 20));
    [edited setTag:kEditedFieldTag];
    AddDetail(group, @"edited, a word selected", kNameWidth, 0, 200);
    [group addSubview:edited];
    AddDetail(group, @"at rest", kNameWidth + 246, 0, 200);
    [group addSubview:MakeField(@"Scene 12, take 3", NSMakeRect(kNameWidth + 246, 20, 200, 20))];
    return group;
}

NSView* MakeLiveControls()
{
    SheetGroup* group = MakeGroup(30);
    TKToggleSwitch* toggle =
        [[[TKToggleSwitch alloc] initWithFrame:NSMakeRect(kNameWidth, 0, 62, 26)] autorelease];
    SetUpToggle(toggle);
    [group addSubview:toggle];

    NSButton* button =
        [[[NSButton alloc] initWithFrame:NSMakeRect(kNameWidth + 90, 2, 90, 22)] autorelease];
    [button setCell:MakeButtonCell()];
    [group addSubview:button];

    NSPopUpButton* popUp = [[[NSPopUpButton alloc]
        initWithFrame:NSMakeRect(kNameWidth + 208, 2, 160, 22)] autorelease];
    [popUp setCell:MakePopUpCell()];
    [group addSubview:popUp];
    return group;
}

} // namespace Tarvane
