#import "Graphics/TGLGraphics.h"
#include "tests/Graphics/RecordedCalls.h"
#include "tests/support/ReplacedMethod.h"

using namespace TarvaneTests;
using testing::ElementsAre;

namespace
{

NSImage* imageUnderTest;

std::string Name(id image) { return image == imageUnderTest ? "the image" : "another"; }

// The image's own platform calls, noted.
struct ImageCalls : RecordedCalls
{
    static id Keep(id image)
    {
        imageUnderTest = image;
        return image;
    }

    const ReplacedMethod path
    {
        [NSBundle class], @selector(pathForResource:ofType:),
            [](id bundle, SEL, NSString* name, NSString* type) -> NSString*
        {
            Note(std::string(bundle == [NSBundle mainBundle] ? "main" : "other") + " bundle " +
                 Text(name) + " " + Text(type));
            return [name isEqualToString:@"Lost"] ? nil : @"/images/the.png";
        }
    };
    const ReplacedMethod load
    {
        [NSImage class], @selector(initByReferencingFile:),
            [](id image, SEL, NSString* file) -> id
        {
            Note("initByReferencingFile " + Text(file));
            return Keep([image initWithSize:NSMakeSize(17, 13)]);
        }
    };
    const ReplacedMethod draw
    {
        [NSImage class], @selector(drawInRect:fromRect:operation:fraction:),
            [](id image, SEL, NSRect target, NSRect source, NSCompositingOperation operation,
               CGFloat dFraction)
        {
            Note("draw " + Name(image) + " in " + Text(target) + " from " + Text(source) +
                 " operation " + std::to_string(int(operation)) + " fraction " + Text(dFraction));
        }
    };
    const ReplacedMethod flip
    {
        [NSImage class], @selector(setFlipped:), [](id image, SEL, BOOL fFlipped) {
            Note("setFlipped " + Name(image) + (fFlipped ? " 1" : " 0"));
        }
    };
};

struct CursorCalls : ImageCalls
{
    const ReplacedMethod make
    {
        [NSCursor class], @selector(initWithImage:hotSpot:),
            [](id cursor, SEL, NSImage* image, NSPoint spot) -> id
        {
            Note("initWithImage " + Name(image) + " at " + Text(spot) + " of " +
                 std::to_string([image retainCount]));
            imageUnderTest = [image retain];
            return cursor;
        }
    };
    const ReplacedMethod push
    {
        [NSCursor class], @selector(push), [](id cursor, SEL) {
            Note(cursor == [NSCursor openHandCursor] ? "push the hand" : "push another");
        }
    };
    const ReplacedMethod pop
    {
        object_getClass([NSCursor class]), @selector(pop), [](id, SEL) { Note("pop of the class"); }
    };
};

// Names the class message that asked for a stock cursor.
NSCursor* NotedCursor(id, SEL selector)
{
    Note(sel_getName(selector));
    return nil;
}

} // namespace

TEST_F(ImageCalls, IsLookedUpAsPngInTheMainBundle)
{
    const TGL::CImage image("Größe");
    EXPECT_THAT(Calls(),
                ElementsAre("main bundle Größe png", "initByReferencingFile /images/the.png"));
}

TEST_F(ImageCalls, AMissingResourceGoesToThePlatformAsItIs)
{
    const TGL::CImage image("Lost");
    EXPECT_THAT(Calls(), ElementsAre("main bundle Lost png", "initByReferencingFile nil"));
}

TEST_F(ImageCalls, IsOwnedUntilTheEnd)
{
    {
        const TGL::CImage image("Any");
        EXPECT_EQ([imageUnderTest retainCount], 1u);
        [imageUnderTest retain];
    }
    EXPECT_EQ([imageUnderTest retainCount], 1u);
    [imageUnderTest release];
}

TEST_F(ImageCalls, SizeIsTheImagesWithAContextAndWithout)
{
    TGL::CImage image("Any");
    EXPECT_TRUE(NSEqualSizes(image.GetSize(), NSMakeSize(17, 13)));
    EXPECT_TRUE(NSEqualSizes(image.GetSize(nullptr), NSMakeSize(17, 13)));
}

TEST_F(ImageCalls, DrawsTheWholeImageOverWhatIsThere)
{
    TGL::CImage image("Any");
    Calls().clear();
    image.Draw(nullptr, CGRectMake(1.5, 2, 30, 40), 0.25);
    EXPECT_THAT(
        Calls(),
        ElementsAre("draw the image in 1.5 2 30 40 from 0 0 0 0 operation 2 fraction 0.25"));
}

TEST_F(ImageCalls, SetFlippedIsPassedOn)
{
    TGL::CImage image("Any");
    Calls().clear();
    image.SetFlipped(true);
    image.SetFlipped(false);
    EXPECT_THAT(Calls(), ElementsAre("setFlipped the image 1", "setFlipped the image 0"));
}

TEST(Image, IsFlippedIsTheImagesOwn)
{
    TGL::CImage image("Quarters");
    EXPECT_FALSE(image.IsFlipped());
    image.SetFlipped(true);
    EXPECT_TRUE(image.IsFlipped());
    image.SetFlipped(false);
    EXPECT_FALSE(image.IsFlipped());
}

TEST_F(CursorCalls, FromAResourceTakesTheImageAndGivesItBack)
{
    const TGL::CCursor cursor("Quarters", 3, 4.5);
    EXPECT_THAT(Calls(),
                ElementsAre("main bundle Quarters png", "initByReferencingFile /images/the.png",
                            "initWithImage the image at 3 4.5 of 1"));
    EXPECT_EQ([imageUnderTest retainCount], 1u) << "the test's own";
    [imageUnderTest release];
}

TEST_F(CursorCalls, OwnsOneReferenceOfItsCursor)
{
    NSCursor* platform;
    {
        const TGL::CCursor cursor("Quarters", 0, 0);
        platform = (NSCursor*)cursor.m_pCursor;
        EXPECT_EQ([platform retainCount], 1u);
        [platform retain];
    }
    EXPECT_EQ([platform retainCount], 1u);
    [platform release];
    [imageUnderTest release];
}

TEST_F(CursorCalls, PushIsForTheCursorAndPopForTheClass)
{
    TGL::CCursor hand(TGL::kCursorOpenHand);
    TGL::CCursor arrow(TGL::kCursorArrow);
    Calls().clear();
    hand.push();
    hand.pop();
    arrow.push();
    TGL::CCursor(TGL::StockCursor(8)).pop();
    EXPECT_THAT(Calls(), ElementsAre("push the hand", "pop of the class", "push another",
                                     "pop of the class"));
}

TEST_F(CursorCalls, StockCursorsAreOneClassMessageEach)
{
    static constexpr const char* kNames[] = {
        "arrowCursor",    "resizeLeftCursor",   "resizeRightCursor", "resizeLeftRightCursor",
        "resizeUpCursor", "resizeUpDownCursor", "resizeDownCursor",  "openHandCursor"};
    const Class owner = object_getClass([NSCursor class]);
    const ReplacedMethod all[] = {
        {owner, @selector(arrowCursor), NotedCursor},
        {owner, @selector(resizeLeftCursor), NotedCursor},
        {owner, @selector(resizeRightCursor), NotedCursor},
        {owner, @selector(resizeLeftRightCursor), NotedCursor},
        {owner, @selector(resizeUpCursor), NotedCursor},
        {owner, @selector(resizeUpDownCursor), NotedCursor},
        {owner, @selector(resizeDownCursor), NotedCursor},
        {owner, @selector(openHandCursor), NotedCursor},
    };
    for (int nCursor = 0; nCursor < 8; ++nCursor)
    {
        Calls().clear();
        const TGL::CCursor cursor{TGL::StockCursor(nCursor)};
        EXPECT_THAT(Calls(), ElementsAre(kNames[nCursor]));
    }
}

TEST_F(CursorCalls, AStockCursorIsRetainedAndGivenBack)
{
    for (int nCursor = 0; nCursor < 8; ++nCursor)
    {
        NSUInteger nHeld = 0;
        NSCursor* platform = nil;
        {
            const TGL::CCursor cursor{TGL::StockCursor(nCursor)};
            platform = (NSCursor*)cursor.m_pCursor;
            nHeld = [platform retainCount];
        }
        EXPECT_NE(platform, nil) << nCursor;
        EXPECT_EQ([platform retainCount], nHeld - 1) << nCursor;
    }
}

TEST_F(CursorCalls, AboveSevenThereIsNoCursorAndNothingIsSent)
{
    for (const int nCursor : {8, 9, -1})
    {
        TGL::CCursor cursor{TGL::StockCursor(nCursor)};
        EXPECT_EQ(cursor.m_pCursor, nullptr);
        cursor.push();
    }
    EXPECT_THAT(Calls(), ElementsAre());
}
