// What becomes of a capture when something fails at a point of its delivery. A host that opens asks
// twice for the tracks; a capture asks once when it is armed and once when it ends, is then
// delivered by three commands (duplicate?, offset?, send), and asks once more when it is
// acknowledged.
#pragma once

#include "tests/apps/host/EndToEndFixture.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace TarvaneTest
{

inline constexpr int kDuplicateCommand = 5;
inline constexpr int kOffsetCommand = 6;
inline constexpr int kSendCommand = 7;
inline constexpr int kCommandsOfADelivery[] = {kDuplicateCommand, kOffsetCommand, kSendCommand};

inline constexpr const char* kNotRunning = "Error - Tarvane not running.";
inline constexpr const char* kLaunch = "Locate and launch Tarvane.";
inline constexpr const char* kNoSession = "No Tarvane session is selected";

class DeliveryFaults : public EndToEnd
{
protected:
    ~DeliveryFaults() override
    {
        unsetenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS");
        unsetenv("TARVANE_AE_TRACE");
    }

    /// Takes effect in hosts that start from now on.
    void ShortenTimeout() { setenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS", "30", 1); }

    void StartServerWith(const std::vector<std::string>& options)
    {
        std::vector<std::string> command{SERVER_PROGRAM, "--session", SessionFile(), "--log",
                                         folder / "server.log"};
        command.insert(command.end(), options.begin(), options.end());
        server.emplace(command);
        ASSERT_TRUE(server->WaitForLine("ready", kLong)) << server->ErrorOutput();
    }

    void StartServerThat(const std::string& strFault, int nEvent)
    {
        StartServerWith({"--track", "Dialogue", "--link-offset", "2.0", "--misbehave",
                         strFault + "@" + std::to_string(nEvent)});
    }

    void StartHost(std::vector<std::string> options = {"--speed", "max"})
    {
        host.emplace(HostCommand(std::move(options)));
    }

    /// The host shows every command that it sends, from now on: Sent counts them.
    void TraceHost() { setenv("TARVANE_AE_TRACE", "1", 1); }
    size_t Sent() { return Count(host->Process().ErrorOutput(), " out to 'TkNe', "); }
    size_t SentInVain(int nStatus)
    {
        return Count(host->Process().ErrorOutput(), " in status " + std::to_string(nStatus) + ", ");
    }

    nlohmann::json CaptureOne(double dPosition = 100)
    {
        return host->Capture(One(), dPosition, kLong);
    }

    static size_t Count(const std::string& strText, const std::string& strPart)
    {
        size_t nCount = 0;
        for (size_t nAt = strText.find(strPart); nAt != std::string::npos;
             nAt = strText.find(strPart, nAt + 1))
            ++nCount;
        return nCount;
    }

    /// How often the server was asked something.
    size_t Asked(const std::string& strFunction) const
    {
        return Count(FileText(folder / "server.log"), strFunction);
    }

    size_t AcknowledgesOf(int nElement) const
    {
        return Count(FileText(folder / "host.log"),
                     "64008 TNProperty_ElementDone: nElement " + std::to_string(nElement) + ", f");
    }

    void ExpectNotDelivered(const nlohmann::json& capture, int nElement,
                            const std::string& strMessage, const std::string& strAdvice)
    {
        EXPECT_EQ(capture["outcome"], "not delivered");
        EXPECT_EQ(capture["ack"]["nElement"], nElement);
        EXPECT_EQ(capture["ack"]["fNotDelivered"], 1);
        EXPECT_EQ(capture["message"], strMessage);
        EXPECT_EQ(capture["advice"], strAdvice);
        EXPECT_EQ(AcknowledgesOf(nElement), 1U);
        EXPECT_TRUE(std::filesystem::exists(capture["dub"].get<std::string>()));
    }

    /// The server is there again: the same host delivers, once.
    void ExpectNextCaptureWorks(double dPosition, int nElement)
    {
        const nlohmann::json capture = CaptureOne(dPosition);
        EXPECT_EQ(capture["outcome"], "delivered") << capture;
        EXPECT_EQ(AcknowledgesOf(nElement), 1U);
        ASSERT_FALSE(Regions().empty());
        EXPECT_EQ(Regions().back().nPosition, 96000 + dPosition);
    }

    /// A server is there: what could not be delivered at 100 is, by itself, and so is the next one.
    void ExpectTheLostOneArrivesAndTheNextWorks()
    {
        const nlohmann::json late = NextLate(*host);
        EXPECT_EQ(late["outcome"], "delivered") << late;
        EXPECT_EQ(late["position"], 100);
        EXPECT_EQ(AcknowledgesOf(1), 1U);
        ASSERT_EQ(Regions().size(), 1U);
        EXPECT_EQ(Regions()[0].nPosition, 96100);
        ExpectNextCaptureWorks(10000, 2);
    }

    std::optional<Tarvane::CHostClient> host;
};

} // namespace TarvaneTest
