#import "Graphics/TGLGraphics.h"
#include "tests/Graphics/RecordedCalls.h"
#include "tests/support/ReplacedMethod.h"

using namespace TarvaneTests;
using testing::ElementsAre;

namespace
{

const CGContextRef kContext = (CGContextRef)0x1234;
constexpr CComponentCode kColour(9, 1);
constexpr CComponentCode kBackground(8, 2);
const CGRect kRect = CGRectMake(1.5, 2, 30, 40);

std::string Text(CComponentCode code)
{
    return std::to_string(code.m_nModule) + "/" + std::to_string(code.m_nComponent);
}

std::string Arguments(CGContextRef context, CComponentCode colour, CComponentCode background,
                      CGRect rect, FillDirection direction, bool fFlipped)
{
    return std::string(context == kContext ? "in the context" : "elsewhere") + " " + Text(colour) +
           " on " + Text(background) + " in " + TarvaneTests::Text(rect) + " direction " +
           std::to_string(direction) + (fFlipped ? " flipped" : "");
}

struct FillCalls : RecordedCalls
{
    const ReplacedMethod plain
    {
        object_getClass([GraphicUtils class]),
            @selector(FillRect:Color:Background:Rect:FillDirection:Flipped:),
            [](id, SEL, CGContextRef context, CComponentCode colour, CComponentCode background,
               CGRect rect, FillDirection direction, bool fFlipped)
        { Note("FillRect " + Arguments(context, colour, background, rect, direction, fFlipped)); }
    };
    const ReplacedMethod round
    {
        object_getClass([GraphicUtils class]),
            @selector(FillRoundRect:Color:Background:Rect:Radius:FillDirection:Flipped:),
            [](id, SEL, CGContextRef context, CComponentCode colour, CComponentCode background,
               CGRect rect, float fRadius, FillDirection direction, bool fFlipped)
        {
            Note("FillRoundRect " +
                 Arguments(context, colour, background, rect, direction, fFlipped) + " radius " +
                 TarvaneTests::Text(fRadius));
        }
    };
};

} // namespace

TEST_F(FillCalls, FillRectPassesAllSixOn)
{
    TGL::FillRect(kContext, kColour, kBackground, kRect, kFillDiagonal, true);
    TGL::FillRect(nullptr, kBackground, kColour, kRect, kFillTopToBottom, false);
    EXPECT_THAT(
        Calls(),
        ElementsAre("FillRect in the context 9/1 on 8/2 in 1.5 2 30 40 direction 10 flipped",
                    "FillRect elsewhere 8/2 on 9/1 in 1.5 2 30 40 direction 1"));
}

TEST_F(FillCalls, FillRoundRectPassesAllSevenOn)
{
    TGL::FillRoundRect(kContext, kColour, kBackground, kRect, 3.5f, kFillLeftToRight, true);
    TGL::FillRoundRect(nullptr, kBackground, kColour, kRect, 0, kFillRightToLeft, false);
    EXPECT_THAT(
        Calls(),
        ElementsAre(
            "FillRoundRect in the context 9/1 on 8/2 in 1.5 2 30 40 direction 3 flipped radius 3.5",
            "FillRoundRect elsewhere 8/2 on 9/1 in 1.5 2 30 40 direction 4 radius 0"));
}
