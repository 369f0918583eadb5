// The program as it is run, on a bus of the test's own, with a server beside it.
#pragma once

#include "apps/support/ChildProcess.h"
#include "tests/apps/link/ScriptedServer.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/support/PrivateBus.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace TarvaneTest
{

constexpr std::chrono::seconds kAnyTime{100};

class ProgramTest : public testing::Test
{
protected:
    using Child = std::unique_ptr<Tarvane::CChildProcess>;

    struct Ended
    {
        int nExitCode;
        std::string strOutput;
        std::string strError;

        nlohmann::json Json() const { return nlohmann::json::parse(strOutput); }
        nlohmann::json Findings() const { return Json()["findings"]; }
    };

    static Child StartLink(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), LINK_PROGRAM);
        return std::make_unique<Tarvane::CChildProcess>(arguments);
    }

    static Ended ToItsEnd(const Child& link)
    {
        const int nExitCode = link->WaitForEnd(kAnyTime).value_or(-1);
        return {nExitCode, link->Output(), link->ErrorOutput()};
    }

    static Ended RunLink(const std::vector<std::string>& arguments)
    {
        return ToItsEnd(StartLink(arguments));
    }

    static Child StartServer(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), SERVER_PROGRAM);
        return Ready(std::make_unique<Tarvane::CChildProcess>(arguments));
    }

    static Child StartScripted(std::vector<std::string> rules)
    {
        rules.insert(rules.begin(), SCRIPTED_SERVER_PROGRAM);
        return Ready(std::make_unique<Tarvane::CChildProcess>(rules));
    }

    TarvaneTests::PrivateBus m_bus;
    CTemporaryFolder m_folder;

private:
    static Child Ready(Child server)
    {
        EXPECT_TRUE(server->WaitForLine("ready", kAnyTime)) << server->ErrorOutput();
        return server;
    }
};

} // namespace TarvaneTest
