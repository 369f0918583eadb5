// One host of a soak, with one view, and what it captures.
#pragma once

#include "apps/demo/HostClient.h"
#include "soak/Evidence.h"
#include "soak/Plan.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Tarvane::Soak
{

constexpr int kTracks = 4;

/// What the hosts and the one who makes the faults know of each other. Any thread.
struct Shared
{
    std::atomic<int> nDelivered{0}; ///< in this round, duplicates included: places that are done
    std::atomic<int> nLives{0};
    /// Odd while server or bus are away; changes with each time.
    std::atomic<unsigned> nAbsence{0};
    std::atomic<bool> fBroken{false};
    std::atomic<int> nSettled{0};           ///< drivers that are through with the round
    std::atomic<bool> fServerWanted{false}; ///< something waits for one to appear
    const std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
};

/// A sound to capture.
struct Sound
{
    std::filesystem::path path;
    std::string strSamples; ///< their bytes
    std::int64_t nFrames = 0;
    std::int64_t nOffset = 0; ///< the server's timeline minus the host's, in samples of its rate
};

enum class ViewPlace
{
    InHost,   ///< of tarvane-host
    OfItsOwn, ///< a process, started by the plug-in's parts in tarvane-soak-plug-in
};

/// All operations but Limit: one thread, which lives as long as the object; the host ends with it.
class CHostDriver
{
public:
    /// Starts nothing yet. The capture folder is of this view alone.
    CHostDriver(int nView, ViewPlace place, std::filesystem::path captureFolder,
                std::vector<Sound> sounds, Shared& shared);

    /// Captures at so many places, and waits until all of it has arrived: what the server refuses,
    /// and what the host's full disk cuts short, is captured again; what reaches no server is the
    /// host's to send again. nFirst: the first place's number, of no other view or round. What goes
    /// wrong is found in Findings afterwards.
    void RunRound(const PlannedRound& round, std::int64_t nFirst);

    /// Between rounds: what the round has left. The files are looked at by now.
    const std::vector<Attempt>& Attempts() const { return m_attempts; }
    std::vector<Life> Lives() const;
    std::vector<std::string> StrayFiles() const;
    const std::vector<Finding>& Findings() const { return m_findings; }
    int Kills() const { return m_nKills; }
    int ViewKills() const { return m_nViewKills; }
    int PlacedWithoutOffset() const { return m_nWithoutOffset; }
    /// What the host has written to its standard error stream since its start.
    std::string Log() const { return m_pClient ? m_pClient->Process().ErrorOutput() : m_strEnded; }
    /// Of the host that is there, and of the process of its view if it has one, one sample a round.
    const std::vector<ProcessSample>& Samples() const { return m_samples; }
    const std::vector<ProcessSample>& ViewSamples() const { return m_viewSamples; }
    int LifeNumber() const { return m_life.nLife; }

    /// Forgets the round and removes its files.
    void ClearRound();

    /// Closes the host and looks at how it ends.
    void Close();

    /// Fills the host's disk, or frees it again. Any thread.
    void Limit(std::uint64_t nBytes);
    void Unlimit();

private:
    enum class Victim
    {
        Nobody,
        Host,
        View,
    };

    void Start();
    void TakeSamples();
    void RunPlaces(const PlannedRound& round, std::int64_t nFirst);
    void AwaitArrival();
    void TakeLateOnes();
    void ChooseTrack(int nTrack);
    /// Returns whether the place is done. The victim is killed so long after the command.
    bool Try(std::int64_t nPlace, Victim victim = Victim::Nobody,
             std::chrono::microseconds delay = {});
    void KillHost(const std::string& strCommand, std::chrono::microseconds delay);
    nlohmann::json AskWhileTheViewIsKilled(const std::string& strCommand,
                                           std::chrono::microseconds delay);
    void TakeAnswer(const nlohmann::json& answer, Attempt& attempt);
    void InspectFiles();
    void AwaitAcknowledges();
    void Break(const std::string& strInvariant, const std::string& strWhat);
    const Sound& SoundFor(std::int64_t nPlace) const;

    const int m_nView;
    const ViewPlace m_place;
    const std::filesystem::path m_captureFolder;
    const std::vector<Sound> m_sounds;
    Shared& m_shared;

    std::mutex m_mutex; ///< the process, against being replaced while it is limited
    std::unique_ptr<CHostClient> m_pClient;
    Life m_life;
    int m_nElements = 0;    ///< of this life
    size_t m_nLateOnes = 0; ///< of this life, that have been taken in
    int m_nTrack = 0;
    int m_nKills = 0;
    int m_nViewKills = 0;
    int m_nWithoutOffset = 0;
    std::string m_strEnded; ///< the log of the host that ended last
    std::vector<ProcessSample> m_samples;
    pid_t m_nViewProcess = 0; ///< that the next are of
    std::vector<ProcessSample> m_viewSamples;
    std::vector<Life> m_killed;
    std::vector<Attempt> m_attempts;
    std::vector<const Sound*> m_captured; ///< by attempt
    std::vector<Finding> m_findings;
};

} // namespace Tarvane::Soak
