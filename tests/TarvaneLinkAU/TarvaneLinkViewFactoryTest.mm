#import "TarvaneLinkAU/TarvaneLinkViewFactory.h"

#import "tests/TarvaneLinkAU/LinkViewFixture.h"

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
} // namespace
