#pragma once

#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "tests/support/ScriptedAppleEvents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

using Call = TarvaneTests::ScriptedAppleEvents::Call;

/// A script link whose server is what the test says. Every test also checks that whatever a command
/// made was given back.
class ScriptFixture : public ::testing::Test
{
protected:
    void TearDown() override { EXPECT_EQ(m_events.LiveDescriptors(), 0u); }

    /// Sends a command and keeps what came of it in m_nStatus and m_result.
    void Send(const char* szScript, int nTimeoutTicks = -1)
    {
        static char szOld[] = "left from before";
        char* szResult = szOld;
        m_nStatus = m_script.SendCommand(szScript, &szResult, nTimeoutTicks);
        m_result.reset(szResult);
    }

    std::string OnlyScript() const
    {
        const auto scripts = m_events.Scripts();
        return scripts.size() == 1 ? scripts[0] : std::to_string(scripts.size()) + " scripts";
    }

    TarvaneTests::ScriptedAppleEvents m_events;
    CTarvaneScript m_script;
    int m_nStatus = 12345;
    std::unique_ptr<char[]> m_result;
};

inline constexpr char szNotRunning[] = "Error - Tarvane not running.";
inline constexpr char szLaunchIt[] = "Locate and launch Tarvane.";
