// The program in this process, against a server that a test writes down.
#pragma once

#include "apps/link/doctor/EventBus.h"
#include "tests/support/ScriptedAppleEvents.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>
#include <utility>
#include <vector>

namespace TarvaneTest
{

/// What LookAtEventBus answers.
extern Tarvane::Link::BusState busState;
/// What CarriersError answers.
extern std::string strCarriersError;

struct Ran
{
    int nExitCode;
    std::string strOutput;
    std::string strError;

    nlohmann::json Json() const { return nlohmann::json::parse(strOutput); }
    nlohmann::json Findings() const { return Json()["findings"]; }
};

/// Runs the program with these arguments, its name left out.
Ran RunLink(const std::vector<std::string>& arguments);

/// The server answers a script by the first rule whose part is in it; by none it prints nothing.
class LinkTest : public testing::Test
{
protected:
    using Events = TarvaneTests::ScriptedAppleEvents;

    LinkTest();
    ~LinkTest() override;

    void Rule(std::string strPart, Events::Reply reply)
    {
        m_rules.emplace_back(std::move(strPart), std::move(reply));
    }
    void ForgetRules() { m_rules.clear(); }
    void Answer(std::string strPart, std::string_view printed);
    void AnswerError(std::string strPart, std::string_view error);
    void AnswerStatus(std::string strPart, OSErr status);

    Events m_events;

private:
    std::vector<std::pair<std::string, Events::Reply>> m_rules;
};

} // namespace TarvaneTest
