// What the tests in real hosts share: the takes, a server, and waiting for what is sure to come.
#pragma once

#include "apps/server/database/SessionStore.h"
#include "apps/support/process/ChildProcess.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/plugin/TimelineAudio.h"
#include "tests/support/PrivateBus.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <sndfile.h>
#include <string>
#include <thread>
#include <vector>

namespace TarvaneTest
{

constexpr std::chrono::minutes kLong{1};

struct CTakeFile
{
    std::filesystem::path file;
    std::int64_t nPosition = 0;
    int nChannels = 0;
    int nRate = 0;
    std::vector<float> samples;

    std::int64_t Frames() const
    {
        return static_cast<std::int64_t>(samples.size()) / std::max(nChannels, 1);
    }
    /// How many of the frames from nFrom up to nTo are not those of the timeline.
    std::int64_t FlawedFrames(std::int64_t nFrom, std::int64_t nTo) const
    {
        std::int64_t nFlawed = 0;
        for (std::int64_t n = nFrom; n < nTo; ++n)
        {
            bool fFlawed = false;
            for (int nChannel = 0; nChannel < nChannels; ++nChannel)
                fFlawed =
                    fFlawed || samples[static_cast<std::size_t>(n * nChannels + nChannel)] !=
                                   TimelineFloat(nPosition + n, static_cast<unsigned>(nChannel));
            nFlawed += fFlawed;
        }
        return nFlawed;
    }
};

/// With the position that the file itself tells.
inline CTakeFile ReadTake(const std::filesystem::path& file)
{
    CTakeFile take;
    take.file = file;
    SF_INFO info{};
    SNDFILE* pFile = sf_open(file.c_str(), SFM_READ, &info);
    EXPECT_NE(pFile, nullptr) << file;
    if (pFile == nullptr)
        return take;
    SF_BROADCAST_INFO broadcast{};
    EXPECT_TRUE(sf_command(pFile, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast));
    take.nPosition = broadcast.time_reference_low | std::int64_t{broadcast.time_reference_high}
                                                        << 32;
    take.nChannels = info.channels;
    take.nRate = info.samplerate;
    take.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    EXPECT_EQ(sf_readf_float(pFile, take.samples.data(), info.frames), info.frames);
    sf_close(pFile);
    return take;
}

/// Of a program that ends with the exit code nExpected.
inline std::string OutputOf(const std::vector<std::string>& command, int nExpected = 0)
{
    Tarvane::CChildProcess process(command);
    process.CloseInput();
    EXPECT_EQ(process.WaitForEnd(kLong), nExpected) << command[0] << process.ErrorOutput();
    return process.Output();
}
/// Of one that may fail.
inline std::string WhatSays(const std::vector<std::string>& command)
{
    Tarvane::CChildProcess process(command);
    process.CloseInput();
    process.WaitForEnd(kLong);
    return process.Output();
}

template <typename Condition> bool Comes(Condition&& fCondition)
{
    const auto deadline = std::chrono::steady_clock::now() + kLong;
    while (!fCondition())
    {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

inline void Pause(int nMilliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(nMilliseconds));
}

/// Where a host finds the plug-in and where that leaves what it captures, and a server beside it.
class CHostSurroundings
{
public:
    explicit CHostSurroundings(const std::string& strPlugIns = LV2_FOLDER)
    {
        ::setenv("LV2_PATH", (strPlugIns + ":/usr/lib/lv2").c_str(), 1);
        ::setenv("TARVANE_LINK_CAPTURES", Captures().c_str(), 1);
        ::setenv("XDG_STATE_HOME", (folder / "state").c_str(), 1);
    }

    std::filesystem::path Captures() const { return folder / "captures"; }

    void StartServer()
    {
        std::vector<std::string> command{SERVER_PROGRAM, "--session", SessionFile()};
        if (!std::filesystem::exists(SessionFile()))
            for (const char* szTrack : {"Dialogue", "ADR", "Foley"})
                command.insert(command.end(), {"--track", szTrack});
        server.emplace(command);
        ASSERT_TRUE(server->WaitForLine("ready", kLong)) << server->ErrorOutput();
    }
    Tarvane::Server::Document Session() const
    {
        const auto session = Tarvane::Server::CSessionStore(SessionFile()).Load();
        return session ? session->GetDocument(Tarvane::Server::DocumentKind::Script)
                       : Tarvane::Server::Document();
    }
    std::vector<Tarvane::Server::Region> Regions() const { return Session().regions; }
    bool RegionsCome(std::size_t nCount) const
    {
        return Comes([&] { return Regions().size() >= nCount; });
    }

    /// The files of the takes that are finished, in their order.
    std::vector<std::filesystem::path> TakeFiles() const { return FilesCalled("take-"); }
    /// Of those that are being written.
    std::vector<std::filesystem::path> HiddenFiles() const { return FilesCalled(".capture"); }

    CTemporaryFolder folder;
    TarvaneTests::PrivateBus bus;
    std::optional<Tarvane::CChildProcess> server;

private:
    std::filesystem::path SessionFile() const { return folder / "session.tarvane"; }
    std::vector<std::filesystem::path> FilesCalled(const char* szBeginning) const
    {
        std::vector<std::filesystem::path> files;
        std::error_code missing;
        for (const auto& entry : std::filesystem::directory_iterator(Captures(), missing))
        {
            if (entry.path().filename().string().starts_with(szBeginning))
                files.push_back(entry.path());
        }
        std::sort(files.begin(), files.end());
        return files;
    }
};

} // namespace TarvaneTest
