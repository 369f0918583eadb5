#include "tests/apps/host/EndToEndFixture.h"

#include <gmock/gmock.h>

using namespace TarvaneTest;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

namespace
{

// The real bundle, with files taken out of it.
class MissingResources : public EndToEnd
{
protected:
    MissingResources() { fs::copy(LINK_BUNDLE, Bundle(), fs::copy_options::recursive); }

    fs::path Bundle() const { return folder / "TarvaneLink.bundle"; }

    void TakeOut(const std::string& strName)
    {
        ASSERT_TRUE(fs::remove(Bundle() / "Resources" / strName)) << strName;
    }

    Ended Capture() { return RunHost({One(), "--bundle", Bundle()}); }
};

} // namespace

TEST_F(MissingResources, WithoutItsNibThereIsALineInTheLogAndNoView)
{
    StartServer();
    TakeOut("TarvaneLinkCocoaUIView.xib");
    const Ended outcome = Capture();
    EXPECT_EQ(outcome.nExitCode, 2);
    EXPECT_THAT(outcome.strError, HasSubstr("] Unable to load nib for view.\n"));
    EXPECT_THAT(outcome.strError, HasSubstr("made no view - see above for its reason"));
}

TEST_F(MissingResources, WithoutItsImagesTheViewDeliversAndShowsAllElse)
{
    StartServer();
    ASSERT_EQ(Capture().nExitCode, 0);
    const std::string strWhole = FileText(folder / "out/link-view.png");
    for (const char* szName : {"LinkActive17.png", "LinkInactive17.png", "PopupArrow.png"})
    {
        TakeOut(szName);
    }
    const Ended outcome = RunHost({Two(), "--bundle", Bundle()});
    EXPECT_EQ(outcome.nExitCode, 0) << outcome.strError;
    EXPECT_EQ(CapturesIn(folder / "out")[0]["outcome"], "delivered");
    EXPECT_EQ(Regions().size(), 2U);
    EXPECT_THAT(outcome.strError, Not(HasSubstr("Unable")));
    EXPECT_NE(FileText(folder / "out/link-view.png"), strWhole) << "the icon and the arrow";
}
