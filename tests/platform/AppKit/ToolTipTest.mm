#import <AppKit/AppKit.h>

#include "tests/support/Canvas.h"

#include <gtest/gtest.h>

#include <cmath>

using TarvaneTests::Canvas;
using TarvaneTests::Picture;

// What GNUstep shows a tip in.
@interface GSTTView : NSView
- (void)setText:(NSAttributedString*)text;
@end

namespace
{

// Room that GNUstep leaves around a text, in points.
constexpr CGFloat kRoom = 4;

NSAttributedString* TipOf(NSString* text)
{
    NSDictionary* attributes =
        [NSDictionary dictionaryWithObject:[NSFont toolTipsFontOfSize:[NSFont smallSystemFontSize]]
                                    forKey:NSFontAttributeName];
    return [[[NSAttributedString alloc] initWithString:text attributes:attributes] autorelease];
}

// The last column, from 0, with a dark pixel in it, of those between the two; -1 without.
int LastInk(const Picture& picture, int nFrom, int nTo)
{
    for (int x = nTo - 1; x >= nFrom; --x)
        for (int y = 2; y < picture.Height() - 2; ++y)
            if (picture.At(x, y).nRed < 128)
                return x - nFrom;
    return -1;
}

int LastInkOfText(NSAttributedString* text)
{
    const NSSize size = [text size];
    Canvas canvas(NSMakeSize(std::ceil(size.width) + 20, std::ceil(size.height) + 8));
    [text drawAtPoint:NSMakePoint(0, 4)];
    const Picture picture = canvas.Take();
    return LastInk(picture, 0, picture.Width());
}

// As the display has it: on whole pixels.
int LastInkOfTip(NSAttributedString* text)
{
    const NSSize size = [text size];
    const NSSize whole =
        NSMakeSize(std::floor(size.width + kRoom), std::floor(size.height + kRoom));
    Canvas canvas(whole);
    GSTTView* view = [[[NSClassFromString(@"GSTTView") alloc]
        initWithFrame:NSMakeRect(0, 0, whole.width, whole.height)] autorelease];
    [view setText:text];
    const Picture picture = canvas.TakeView(view);
    return LastInk(picture, 2, picture.Width() - 1);
}

} // namespace

TEST(ToolTip, IsShownWholeWhateverItsLength)
{
    NSString* words = @"The track that receives the next capture";
    for (NSUInteger n = 5; n <= [words length]; n += 5)
    {
        NSAttributedString* text = TipOf([words substringToIndex:n]);
        EXPECT_NEAR(LastInkOfTip(text), LastInkOfText(text), 2) << [[text string] UTF8String];
    }
}
