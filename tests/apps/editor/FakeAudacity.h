// A program that answers as Audacity does, with faults at will.
#pragma once

#include "apps/support/process/ChildProcess.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace TarvaneTest
{

class CFakeAudacity
{
public:
    /// It shows the project, or an empty one without a name.
    explicit CFakeAudacity(const std::filesystem::path& pipes,
                           const std::filesystem::path& project = {})
        : m_process(project.empty()
                        ? std::vector<std::string>{"python3", FAKE_AUDACITY, pipes.string()}
                        : std::vector<std::string>{"python3", FAKE_AUDACITY, pipes.string(),
                                                   project.string()})
    {
        EXPECT_TRUE(m_process.WaitForLine("ready", kLong)) << m_process.ErrorOutput();
    }

    /// As fake-audacity.py tells.
    void Prepare(const std::string& strFault)
    {
        m_process.WriteLine(strFault);
        EXPECT_TRUE(m_process.WaitForLine("prepared", kLong)) << m_process.ErrorOutput();
    }
    void Go() { m_process.WriteLine("go"); }

    /// "track clip start rate frames channels muted" of each.
    std::vector<std::string> Tracks()
    {
        m_process.WriteLine("state");
        const auto line = m_process.WaitForLine("state ", kLong);
        EXPECT_TRUE(line) << m_process.ErrorOutput();
        std::vector<std::string> tracks;
        for (const auto& track : nlohmann::json::parse(line.value_or("state []").substr(6)))
        {
            std::string strTrack = track.at("name");
            if (track.contains("clip"))
                strTrack += "|" + track.at("clip").get<std::string>() + "|" +
                            std::to_string(track.at("start").get<double>()) + "|" +
                            track.at("rate").dump() + "|" + track.at("frames").dump() + "|" +
                            track.at("channels").dump() +
                            (track.at("mute").get<bool>() ? "|muted" : "");
            tracks.push_back(strTrack);
        }
        return tracks;
    }
    /// All that it was told so far, in lines.
    std::string Done() const { return m_process.Output(); }
    Tarvane::CChildProcess& Process() { return m_process; }

private:
    static constexpr std::chrono::seconds kLong{60};
    Tarvane::CChildProcess m_process;
};

} // namespace TarvaneTest
