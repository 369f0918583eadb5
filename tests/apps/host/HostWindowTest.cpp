#include "tests/apps/host/CommandOutput.h"
#include "tests/apps/host/EndToEndFixture.h"

#include <chrono>
#include <gmock/gmock.h>
#include <thread>

using namespace Tarvane;
using namespace TarvaneTest;
using testing::HasSubstr;

namespace
{

// The second and the third number of the hints: what the window does, and which buttons it shows.
std::pair<unsigned, unsigned> FunctionsAndButtons(const std::string& strHints)
{
    unsigned nFlags = 0;
    unsigned nFunctions = 0;
    unsigned nButtons = 0;
    const std::size_t nNumbers = strHints.find("= 0x");
    EXPECT_NE(nNumbers, std::string::npos) << strHints;
    EXPECT_EQ(
        std::sscanf(strHints.c_str() + nNumbers, "= %x, %x, %x", &nFlags, &nFunctions, &nButtons),
        3);
    return {nFunctions, nButtons};
}

class HostWindow : public EndToEnd
{
protected:
    // The window manager puts the window there some time after it is shown.
    void WaitForItsPlace() const
    {
        std::string strPlace = OutputOf(strFind + "getwindowgeometry");
        for (std::string strBefore; strBefore != strPlace;)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
            strBefore = strPlace;
            strPlace = OutputOf(strFind + "getwindowgeometry");
        }
    }

    const std::string strFind = "xdotool search --sync --onlyvisible --name '^Tarvane Link$' ";
};

} // namespace

// What a window manager may offer. Some draw a button all the same, but then as one that is off.
TEST_F(HostWindow, HasOneSizeAndOffersNoOther)
{
    constexpr unsigned kAll = 0x1;
    constexpr unsigned kResize = 0x2;
    constexpr unsigned kMaximise = 0x10;
    constexpr unsigned kResizeHandles = 0x4;
    constexpr unsigned kMaximiseButton = 0x40;
    CHostClient host(HostCommand({}));
    const std::string strAsk =
        "xprop -id $(xdotool search --sync --onlyvisible --name '^Tarvane Link$' | head -n 1) ";
    const auto [nFunctions, nButtons] = FunctionsAndButtons(OutputOf(strAsk + "_MOTIF_WM_HINTS"));
    EXPECT_EQ(nFunctions & (kAll | kResize | kMaximise), 0U);
    EXPECT_EQ(nButtons & (kAll | kResizeHandles | kMaximiseButton), 0U);

    const std::string strSizes = OutputOf(strAsk + "WM_NORMAL_HINTS");
    EXPECT_THAT(strSizes, HasSubstr("minimum size: 440 by 152"));
    EXPECT_THAT(strSizes, HasSubstr("maximum size: 440 by 152"));
}

// However short, and though the pointer arrives with it.
TEST_F(HostWindow, FirstClickOfAFreshWindowPressesTheToggle)
{
    CHostClient host(HostCommand({}));
    WaitForItsPlace();
    ASSERT_EQ(host.Ask("state", kLong)["armed"], false);
    OutputOf(strFind + "mousemove --window %1 40 32 click 1");
    const auto limit = std::chrono::steady_clock::now() + kLong;
    while (host.Ask("state", kLong)["armed"] == false && std::chrono::steady_clock::now() < limit)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_EQ(host.Ask("state", kLong)["armed"], true);
}

TEST_F(HostWindow, ClosedByItsButtonItKeepsTheCaptureUnderWay)
{
    StartServer();
    WriteSound(folder / "long.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000 * 600);
    {
        CHostClient host(HostCommand({folder / "long.wav"}));
        WaitForItsPlace();
        host.Ask("arm", kLong);
        while (host.Ask("state", kLong)["message"] == "")
        {
        }
        // The button stands at the right end of what the window manager draws above the window.
        OutputOf(strFind + "mousemove --window %1 432 0 mousemove_relative -- 0 -10 click 1");
        EXPECT_EQ(host.Process().WaitForEnd(kLong), 1);
        EXPECT_THAT(host.Process().ErrorOutput(),
                    HasSubstr("The capture under way is kept: " +
                              (folder / "captures/long-001.wav").string()));
    }
    EXPECT_GE(ReadSound(folder / "captures/long-001.wav").samples.size(), 512U);
    CHostClient next(HostCommand({"--speed", "max"}));
    EXPECT_EQ(NextLate(next)["outcome"], "delivered");
    EXPECT_EQ(Regions().size(), 1U);
}

TEST_F(HostWindow, TitleTellsTheTakeThatWasDeliveredLast)
{
    StartServer();
    CHostClient host(HostCommand({"--track", "1", "--speed", "max"}));
    ASSERT_EQ(host.Capture(One(), 0, kLong)["ok"], true);
    const std::string strTitle =
        "xdotool search --onlyvisible --name '^Tarvane Link' getwindowname";
    EXPECT_EQ(OutputOf(strTitle), "Tarvane Link - 0.100 s delivered to ADR\n");
    // The one after it is told as a duplicate, which is no delivery.
    ASSERT_EQ(host.Capture(One(), 0, kLong)["ok"], true);
    EXPECT_EQ(OutputOf(strTitle), "Tarvane Link\n");
}
