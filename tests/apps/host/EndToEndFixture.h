// A real server and a real host with the real bundle, on a bus of the test's own.
#pragma once

#include "tests/apps/host/HostFixture.h"
#include "tests/support/PrivateBus.h"

namespace TarvaneTest
{

class EndToEnd : public testing::Test
{
protected:
    EndToEnd()
    {
        // Short, so that no test waits for sound; of different lengths, so that none is another.
        WriteSound(folder / "one.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 4800);
        WriteSound(folder / "two.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 9600, 2);
    }

    std::filesystem::path SessionFile() const { return folder / "session.tarvane"; }

    void StartServer()
    {
        server.emplace(std::vector<std::string>{SERVER_PROGRAM, "--session", SessionFile(),
                                                "--track", "Dialogue", "--track", "ADR", "--track",
                                                "Foley", "--link-offset", "2.0"});
        ASSERT_TRUE(server->WaitForLine("ready", kLong)) << server->ErrorOutput();
    }

    /// As when its process is lost, not as when it is closed.
    void KillServer()
    {
        server->Kill();
        server->WaitForEnd(kLong);
    }

    std::vector<std::string> HostCommand(std::vector<std::string> options) const
    {
        options.insert(options.end(), {"--capture-folder", folder / "captures", "--results",
                                       folder / "out", "--log", folder / "host.log"});
        return Host(options);
    }

    Ended RunHost(std::vector<std::string> options) const
    {
        options.insert(options.end(), {"--headless", "--speed", "max"});
        return RunToEnd(HostCommand(options));
    }

    /// The next delivery of a capture that was told of before, or by an earlier host.
    static nlohmann::json NextLate(Tarvane::CHostClient& host)
    {
        const auto strLine = host.Process().WaitForLine("\"event\":\"late\"", kLong);
        return strLine ? nlohmann::json::parse(*strLine) : nlohmann::json();
    }

    /// The regions of the script document.
    std::vector<Tarvane::Server::Region> Regions() const
    {
        return Session().GetDocument(Tarvane::Server::DocumentKind::Script).regions;
    }
    std::string TrackOf(const Tarvane::Server::Region& region) const
    {
        const auto session = Session();
        const auto* pTrack =
            session.GetDocument(Tarvane::Server::DocumentKind::Script).FindTrack(region.nTrackId);
        return pTrack != nullptr ? pTrack->strName : "";
    }
    Tarvane::Server::CSession Session() const
    {
        return Tarvane::Server::CSessionStore(SessionFile()).Load().value();
    }

    std::string One() const { return folder / "one.wav"; }
    std::string Two() const { return folder / "two.wav"; }

    CTemporaryFolder folder;
    TarvaneTests::PrivateBus bus;
    std::optional<Tarvane::CChildProcess> server;
};

} // namespace TarvaneTest
