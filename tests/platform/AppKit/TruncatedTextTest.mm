#import "platform/gnustep/AppKit/TruncatedText.h"

#include "tests/support/Canvas.h"

#include <gtest/gtest.h>

using platform::TruncatedText;
using TarvaneTests::Canvas;
using TarvaneTests::Picture;

namespace
{

std::string Utf8(NSString* text) { return [text UTF8String]; }

NSDictionary* Attributes(NSLineBreakMode mode)
{
    NSMutableParagraphStyle* style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setLineBreakMode:mode];
    return [NSDictionary dictionaryWithObjectsAndKeys:style, NSParagraphStyleAttributeName,
                                                      [NSFont systemFontOfSize:12],
                                                      NSFontAttributeName, nil];
}

NSAttributedString* Text(NSString* text, NSLineBreakMode mode)
{
    return [[[NSAttributedString alloc] initWithString:text
                                            attributes:Attributes(mode)] autorelease];
}

NSString* const kLong = @"Dialogue of the second unit, both lavaliers, Studio 3";

std::string Shortened(NSLineBreakMode mode, CGFloat width = 150)
{
    return Utf8([TruncatedText(Text(kLong, mode), width) string]);
}

const std::string kEllipsis = "\u2026";

NSString* Ns(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

constexpr NSRect kRect = {{0, 0}, {150, 20}};

} // namespace

TEST(TruncatedText, LosesItsMiddleEndOrBeginningAsItsStyleSays)
{
    const std::string middle = Shortened(NSLineBreakByTruncatingMiddle);
    EXPECT_EQ(middle.find("Dialogue"), 0u) << middle;
    EXPECT_NE(middle.find(kEllipsis), std::string::npos) << middle;
    EXPECT_EQ(middle.rfind("Studio 3"), middle.size() - 8) << middle;
    const std::string tail = Shortened(NSLineBreakByTruncatingTail);
    EXPECT_EQ(tail.find("Dialogue of the"), 0u) << tail;
    EXPECT_EQ(tail.rfind(kEllipsis), tail.size() - kEllipsis.size()) << tail;
    const std::string head = Shortened(NSLineBreakByTruncatingHead);
    EXPECT_EQ(head.find(kEllipsis), 0u) << head;
    EXPECT_EQ(head.rfind("lavaliers, Studio 3"), head.size() - 19) << head;
}

TEST(TruncatedText, LosesNoMoreThanItMust)
{
    for (CGFloat width = 30; width < 300; width += 7)
    {
        NSAttributedString* shown = TruncatedText(Text(kLong, NSLineBreakByTruncatingTail), width);
        EXPECT_LE([shown size].width, width);
        NSString* more = [kLong substringToIndex:[shown length]];
        EXPECT_GT([Text([more stringByAppendingString:@"\u2026"], NSLineBreakByTruncatingTail) size]
                      .width,
                  width);
    }
}

TEST(TruncatedText, IsTheSameObjectWhereNothingIsToBeDone)
{
    NSAttributedString* fits = Text(@"Vox", NSLineBreakByTruncatingMiddle);
    EXPECT_EQ(TruncatedText(fits, 150), fits);
    EXPECT_EQ(TruncatedText(fits, [fits size].width), fits);
    for (const NSLineBreakMode mode :
         {NSLineBreakByWordWrapping, NSLineBreakByCharWrapping, NSLineBreakByClipping})
    {
        NSAttributedString* text = Text(kLong, mode);
        EXPECT_EQ(TruncatedText(text, 20), text);
    }
    NSAttributedString* lines = Text(@"Dialogue\nStudio", NSLineBreakByTruncatingMiddle);
    EXPECT_EQ(TruncatedText(lines, 20), lines);
    NSAttributedString* none = Text(@"", NSLineBreakByTruncatingMiddle);
    EXPECT_EQ(TruncatedText(none, 20), none);
}

TEST(TruncatedText, WithoutRoomIsTheEllipsisAlone)
{
    for (const CGFloat width : {0.0, 3.0})
        EXPECT_EQ(Shortened(NSLineBreakByTruncatingMiddle, width), kEllipsis);
}

TEST(TruncatedText, CutsNoCharacterInTwo)
{
    NSMutableString* notes = [NSMutableString string];
    for (int n = 0; n < 40; ++n)
        [notes appendString:@"\U0001D11E"]; // two units each
    for (CGFloat width = 20; width < 200; width += 3)
    {
        NSString* shown = [TruncatedText(Text(notes, NSLineBreakByTruncatingMiddle), width) string];
        EXPECT_EQ([shown length] % 2, 1u) << "whole pairs and the ellipsis";
    }
}

TEST(TruncatedText, IsWhatStringsAndAttributedStringsDraw)
{
    NSString* shown = Ns(Shortened(NSLineBreakByTruncatingMiddle));
    NSDictionary* clipping = Attributes(NSLineBreakByClipping);
    const Picture expected = [&]
    {
        const Canvas canvas(kRect.size);
        [shown drawInRect:kRect withAttributes:clipping];
        return canvas.Take();
    }();
    {
        const Canvas canvas(kRect.size);
        [kLong drawInRect:kRect withAttributes:Attributes(NSLineBreakByTruncatingMiddle)];
        EXPECT_TRUE(canvas.Take() == expected);
    }
    const Canvas canvas(kRect.size);
    [Text(kLong, NSLineBreakByTruncatingMiddle) drawInRect:kRect];
    EXPECT_TRUE(canvas.Take() == expected);
}

TEST(TruncatedText, IsWhatATextFieldShows)
{
    const auto field = [](NSString* text, NSLineBreakMode mode)
    {
        NSTextField* words = [[[NSTextField alloc] initWithFrame:kRect] autorelease];
        [words setBezeled:NO];
        [words setDrawsBackground:NO];
        [words setEditable:NO];
        [words setSelectable:NO];
        [[words cell] setLineBreakMode:mode];
        [words setFont:[NSFont systemFontOfSize:12]];
        [words setStringValue:text];
        const Canvas canvas(NSMakeSize(200, 30));
        return canvas.TakeView(words);
    };
    const Picture shown = field(kLong, NSLineBreakByTruncatingTail);
    const CGFloat width =
        [[[[NSTextFieldCell alloc] initTextCell:@""] autorelease] titleRectForBounds:kRect]
            .size.width;
    EXPECT_TRUE(shown ==
                field(Ns(Shortened(NSLineBreakByTruncatingTail, width)), NSLineBreakByClipping));
    EXPECT_FALSE(shown == field(kLong, NSLineBreakByClipping));
}
