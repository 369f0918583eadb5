// The script link as it ships: on the platform's own Apple events, with a server process at the
// other end of a bus.

#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "apps/support/process/ChildProcess.h"
#include "tests/TarvaneLinkShared/BusServer.h"
#include "tests/support/PrivateBus.h"
#include "utils/FileIO/FileName.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>

using ::testing::ElementsAre;

namespace
{
constexpr std::chrono::seconds kAnyTime{60};
constexpr char szNotRunning[] = "Error - Tarvane not running.";
constexpr char szLaunchIt[] = "Locate and launch Tarvane.";

class BusWithoutServer : public ::testing::Test
{
protected:
    int Send(const std::string& script, int nTimeoutTicks = -1)
    {
        char* szResult = nullptr;
        const int nStatus = m_script.SendCommand(script.c_str(), &szResult, nTimeoutTicks);
        m_result.reset(szResult);
        return nStatus;
    }

    TarvaneTests::PrivateBus m_bus;
    CTarvaneScript m_script;
    std::unique_ptr<char[]> m_result;
};

class BusWithServer : public BusWithoutServer
{
protected:
    void SetUp() override { StartServer(); }
    void StartServer()
    {
        m_server.emplace(std::vector<std::string>{BUS_SERVER_PROGRAM});
        ASSERT_TRUE(m_server->WaitForLine(BusServer::szReady, kAnyTime));
    }

    std::optional<Tarvane::CChildProcess> m_server;
};
} // namespace

TEST_F(BusWithoutServer, IsToldInWords)
{
    EXPECT_EQ(Send("x"), -600);
    EXPECT_EQ(m_result, nullptr);
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
    EXPECT_EQ(m_script.m_strAdvice, szLaunchIt);
}

TEST_F(BusWithoutServer, IsNotToldApartFromNoBus)
{
    m_bus.Kill();
    EXPECT_EQ(Send("x"), -600);
    EXPECT_EQ(m_script.m_strLastError, szNotRunning);
}

TEST_F(BusWithServer, CarriesScriptsAndResultsUnchanged)
{
    for (const std::string& script :
         {std::string(), std::string(99, 'a'), std::string(100, 'a'), std::string(101, 'a'),
          std::string(102400, 'a'),
          std::string("print(\"V\xC3\xB6x \xE5\xA3\xB0 \xF0\x9F\x8E\x99\")\n")})
    {
        ASSERT_EQ(Send(script), 0);
        EXPECT_EQ(std::string(m_result.get()), script);
        EXPECT_EQ(m_script.m_strLastError, "");
    }
}

TEST_F(BusWithServer, CarriesTheServersError)
{
    EXPECT_EQ(Send(BusServer::szError), 0);
    EXPECT_STREQ(m_result.get(), "");
    EXPECT_EQ(m_script.m_strLastError, BusServer::szErrorText);
}

TEST_F(BusWithServer, AReplyWithoutAResultIsAFailure)
{
    EXPECT_EQ(Send(BusServer::szSilent), -1701);
    EXPECT_EQ(m_result, nullptr);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1701");
}

TEST_F(BusWithServer, AStatusOfTheServerIsTheCommands)
{
    EXPECT_EQ(Send(BusServer::szRefuse), BusServer::kRefusal);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1234");
}

TEST_F(BusWithServer, ALateReplyIsNotTheNextCommands)
{
    EXPECT_EQ(Send(BusServer::szSlow, 3), -1712);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-1712");

    EXPECT_EQ(Send("next"), 0);
    EXPECT_STREQ(m_result.get(), "next");
    EXPECT_EQ(m_script.m_strLastError, "");
}

TEST_F(BusWithServer, AServerThatComesBackAnswersTheNextCommand)
{
    EXPECT_EQ(Send(BusServer::szEnd), -609);
    EXPECT_EQ(m_script.m_strLastError, "AEError ID:-609");
    EXPECT_TRUE(m_server->WaitForEnd(kAnyTime));
    EXPECT_EQ(Send("x"), -600);

    StartServer();
    EXPECT_EQ(Send("back"), 0);
    EXPECT_STREQ(m_result.get(), "back");
    EXPECT_EQ(m_script.m_strLastError, "");
    EXPECT_EQ(m_script.m_strAdvice, "");
}

TEST_F(BusWithServer, ListsTracks)
{
    std::vector<std::string> tracks;
    EXPECT_TRUE(m_script.ListTracks(false, &tracks));
    EXPECT_THAT(tracks, ElementsAre("V\xC3\xB6x", "Mic \xF0\x9F\x8E\x99"));
}

TEST_F(BusWithServer, DeliversACapture)
{
    CFileName file("/a/b.wav");
    EXPECT_TRUE(m_script.CheckDuplicateRegion(false, 0, &file, 1, 2, 3));
    EXPECT_EQ(m_script.m_strLastError, "Same audio captured previously.");
    EXPECT_EQ(m_script.GetLinkSMPTEOffset(false), -1.5);
    EXPECT_EQ(m_script.SendFile(false, 0, &file, 1, 2, 3, 0), 0);
    EXPECT_EQ(m_script.m_strLastError, "");
}
