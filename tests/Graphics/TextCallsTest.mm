#import "Graphics/TGLGraphics.h"
#include "colours/ComponentsColors.h"
#include "tests/Graphics/RecordedCalls.h"
#include "tests/support/LiveObjects.h"
#include "tests/support/ReplacedMethod.h"

#include <CoreFoundation/CoreFoundation.h>

#include <memory>

using namespace TarvaneTests;
using testing::ElementsAre;

namespace
{

constexpr CComponentCode kInk(9, 1);
const CGRect kRect = CGRectMake(1.5, 2, 30, 40);

class TextCalls : public RecordedCalls
{
  protected:
    TextCalls()
    {
        CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
        gAppColours.Add(new CComponentColour(kInk, "", 0.25, 0.5, 0.75, 1, space, true));
        CGColorSpaceRelease(space);
    }
    ~TextCalls() override
    {
        gAppColours.Clear();
        Keep(nil);
    }

    static void Draw(TGL::TextAlignment alignment, CComponentCode colour = kInk,
                     const __CFString* fontName = (const __CFString*)@"DejaVu Sans")
    {
        TGL::DrawText(nullptr, "Grüße", kRect, colour, fontName, 12.1f, alignment);
    }

    static NSParagraphStyle* Style()
    {
        return [attributes objectForKey:NSParagraphStyleAttributeName];
    }

    static void Keep(NSDictionary* dictionary)
    {
        [dictionary retain];
        [attributes release];
        attributes = dictionary;
    }

    static inline NSDictionary* attributes = nil; // of the last text

    const ReplacedMethod m_font
    {
        object_getClass([NSFont class]), @selector(fontWithName:size:),
            [](id, SEL, NSString* name, CGFloat dSize) -> NSFont*
        {
            Note("fontWithName " + Text(name) + " size " + Text(dSize));
            return [name isEqualToString:@"none"] ? nil : [NSFont systemFontOfSize:10];
        }
    };
    const ReplacedMethod m_text
    {
        [NSString class], @selector(drawWithRect:options:attributes:),
            [](id text, SEL, NSRect rect, NSStringDrawingOptions options, NSDictionary* dictionary)
        {
            Note("drawWithRect " + Text((NSString*)text) + " in " + Text(rect) + " options " +
                 std::to_string(int(options)));
            Keep(dictionary);
        }
    };
    const ReplacedMethod m_attributed
    {
        [NSAttributedString class], @selector(drawWithRect:options:),
            [](id text, SEL, NSRect rect, NSStringDrawingOptions options)
        {
            Note("drawWithRect " + Text([(NSAttributedString*)text string]) + " in " + Text(rect) +
                 " options " + std::to_string(int(options)));
        }
    };
};

} // namespace

TEST_F(TextCalls, DrawTextAsksForTheFontAndDrawsWithOptions33)
{
    Draw(TGL::kTextLeft);
    EXPECT_THAT(Calls(), ElementsAre("fontWithName DejaVu Sans size " + Text(double(12.1f)),
                                     "drawWithRect Grüße in 1.5 2 30 40 options 33"));
}

TEST_F(TextCalls, AttributesAreFontParagraphStyleAndThePalettesColour)
{
    Draw(TGL::kTextLeft);
    EXPECT_EQ([attributes count], 3u);
    EXPECT_EQ([attributes objectForKey:NSFontAttributeName], [NSFont systemFontOfSize:10]);
    EXPECT_EQ([attributes objectForKey:NSForegroundColorAttributeName],
              gAppColours.FindNSColor(kInk));
    EXPECT_EQ(int([Style() lineBreakMode]), 0);
}

TEST_F(TextCalls, AlignmentsAreThePlatformsNumbers)
{
    const int table[][2] = {{0, 0}, {1, 2}, {2, 1}, {3, 1}, {99, 1}, {-1, 1}};
    for (const auto& [nAlignment, nPlatform] : table)
    {
        Draw(TGL::TextAlignment(nAlignment));
        EXPECT_EQ(int([Style() alignment]), nPlatform) << nAlignment;
    }
}

TEST_F(TextCalls, ACodeWithoutAnEntryLeavesTheColourOut)
{
    Draw(TGL::kTextCentre, CComponentCode(9, 77));
    EXPECT_EQ([attributes count], 2u);
    EXPECT_NE([attributes objectForKey:NSFontAttributeName], nil);
    EXPECT_EQ(int([Style() alignment]), 2);
}

TEST_F(TextCalls, AMissingFontEndsTheAttributes)
{
    Draw(TGL::kTextCentre, kInk, (const __CFString*)@"none");
    EXPECT_NE(attributes, nil);
    EXPECT_EQ([attributes count], 0u);
}

TEST_F(TextCalls, DrawTextKeepsNothing)
{
    const auto draw = []
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        Draw(TGL::kTextRight);
        Keep(nil);
        [pool drain];
    };
    draw();
    const long nBefore = LiveObjects();
    draw();
    EXPECT_EQ(LiveObjects(), nBefore);
}

TEST_F(TextCalls, AttributedStringsAreDrawnWithTheSameOptions)
{
    TGL::CAttributedString held;
    held.SetString([[NSAttributedString alloc] initWithString:@"as it is"]);
    TGL::drawWithRect(nullptr, &held, kRect);
    held.DeleteString();
    EXPECT_THAT(Calls(), ElementsAre("drawWithRect as it is in 1.5 2 30 40 options 33"));
}
