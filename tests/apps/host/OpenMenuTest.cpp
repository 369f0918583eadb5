#include "tests/apps/host/CommandOutput.h"
#include "tests/apps/host/EndToEndFixture.h"

#include <thread>

using namespace Tarvane;
using namespace TarvaneTest;

namespace
{

// The window under the pointer, a menu among them, by the display server's number.
std::string WindowUnderThePointer()
{
    const std::string strPlace = OutputOf("xdotool getmouselocation --shell");
    return strPlace.substr(strPlace.find("WINDOW="));
}

// The host's track menu has been opened by a click and stays open.
class OpenMenu : public EndToEnd
{
protected:
    void Open(std::vector<std::string> options = {})
    {
        StartServer();
        options.insert(options.end(), {"--speed", "max"});
        host.emplace(HostCommand(options));
        ClickOnTheMenu();
    }

    void TearDown() override
    {
        if (host && host->Process().IsRunning())
        {
            EXPECT_TRUE(MenuIsOpen()) << "the menu was not left open";
        }
    }

    bool MenuIsOpen() const { return WindowUnderThePointer() != m_strWindow; }

    void ClickOnTheMenu()
    {
        const std::string strFind = "xdotool search --sync --onlyvisible --name '^Tarvane Link$' ";
        const std::string strPoint = strFind + "windowactivate --sync mousemove --window %1 340 44";
        const auto limit = std::chrono::steady_clock::now() + kLong;
        do
        {
            OutputOf(strPoint);
            // The window manager may still be moving the window.
            m_strWindow = WindowUnderThePointer();
            OutputOf("xdotool mousedown 1 sleep 0.15 mouseup 1");
            for (int nLook = 0; nLook < 20 && !MenuIsOpen(); ++nLook)
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            }
        } while (!MenuIsOpen() && std::chrono::steady_clock::now() < limit);
        ASSERT_TRUE(MenuIsOpen());
    }

    std::optional<CHostClient> host;
    std::string m_strWindow;
};

} // namespace

TEST_F(OpenMenu, CommandsAreAnsweredAndCapturesDelivered)
{
    Open();
    EXPECT_EQ(host->Ask("arm", kLong)["armed"], true);
    EXPECT_EQ(host->Ask("disarm", kLong)["armed"], false);
    EXPECT_EQ(host->Ask("track 2", kLong)["selected"], 2);
    EXPECT_EQ(host->Capture(One(), 0, kLong)["outcome"], "delivered");
    EXPECT_EQ(TrackOf(Regions().at(0)), "Foley");
}

TEST_F(OpenMenu, CaptureThatNobodyAcknowledgesIsTold)
{
    Open({"--misbehave", "elements-unannounced", "--ack-timeout", "0.1"});
    EXPECT_EQ(host->Capture(One(), 0, kLong)["outcome"], "not acknowledged");
}

TEST_F(OpenMenu, QuitEndsTheHost)
{
    Open();
    host->Ask("quit", kLong);
    EXPECT_EQ(host->Process().WaitForEnd(kLong), 0) << host->Process().ErrorOutput();
}

TEST_F(OpenMenu, SignalEndsTheHost)
{
    Open();
    host->Process().Terminate();
    EXPECT_EQ(host->Process().WaitForEnd(kLong), 1) << host->Process().ErrorOutput();
}
