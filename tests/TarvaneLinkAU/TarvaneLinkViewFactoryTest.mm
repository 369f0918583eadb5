#import "TarvaneLinkAU/TarvaneLinkViewFactory.h"

#include "colours/ComponentsColors.h"
#import "tests/TarvaneLinkAU/LinkViewFixture.h"
#include "tests/support/ReplacedMethod.h"

#include <objc/runtime.h>

using testing::HasSubstr;

namespace
{
class ViewFactory : public testing::Test
{
  protected:
    ViewFactory() : m_pFactory([[TarvaneLink_CocoaViewFactory alloc] init]) {}
    ~ViewFactory() override { [m_pFactory release]; }

    TarvaneLink_CocoaViewFactory* m_pFactory;
};

TEST_F(ViewFactory, AnswersAsAHostExpects)
{
    EXPECT_TRUE([m_pFactory conformsToProtocol:NSProtocolFromString(@"AUCocoaUIBase")]);
    EXPECT_EQ([m_pFactory interfaceVersion], 0u);
    EXPECT_EQ(Utf8([m_pFactory description]), " Tarvane Link");
}

// This program has no resources.
TEST_F(ViewFactory, MissingNibGivesALineInTheLogAndNoView)
{
    testing::internal::CaptureStderr();
    NSView* pView = [m_pFactory uiViewForAudioUnit:nullptr withSize:NSMakeSize(100, 100)];
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("] Unable to load nib for view.\n"));
    EXPECT_EQ(pView, nil);
}

TEST_F(ViewFactory, MissingNibLeavesThePaletteAlone)
{
    gAppColours.Clear();
    testing::internal::CaptureStderr();
    [m_pFactory uiViewForAudioUnit:nullptr withSize:NSMakeSize(100, 100)];
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(gAppColours.m_Map.empty());
}

using ViewFactoryWithNib = LinkViewFixture;

TEST_F(ViewFactoryWithNib, PaletteIsBuiltBeforeTheViewGetsItsPlugIn)
{
    static TestLinkView* pLoaded;
    pLoaded = [m_pView retain];
    // What the nib does: the factory's outlet is the view.
    TarvaneTests::ReplacedMethod load(
        object_getClass([NSBundle class]), @selector(loadNibNamed:owner:),
        [](id, SEL, NSString*, id idOwner) -> BOOL
        {
            object_setIvar(idOwner,
                           class_getInstanceVariable([idOwner class], "uiFreshlyLoadedView"),
                           pLoaded);
            return YES;
        });
    gAppColours.Clear();
    std::vector<bool> thereBefore;
    HooksOf(m_pView).inSetAU = [&]
    { thereBefore.push_back(gAppColours.Find(ccTrackInfoBackground)); };

    NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
    TarvaneLink_CocoaViewFactory* pFactory = [[TarvaneLink_CocoaViewFactory alloc] init];
    EXPECT_EQ([pFactory uiViewForAudioUnit:m_plugIn.Unit() withSize:NSZeroSize], m_pView);
    [pFactory release];
    [pPool drain];
    HooksOf(m_pView).inSetAU = nullptr;
    EXPECT_THAT(thereBefore, testing::ElementsAre(true));
}
} // namespace
