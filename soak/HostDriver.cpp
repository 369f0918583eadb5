#include "soak/HostDriver.h"

#include "apps/support/file/AtomicFile.h"
#include "soak/Logs.h"
#include "soak/ProcessSample.h"

#include <algorithm>
#include <csignal>
#include <iomanip>
#include <set>
#include <sstream>
#include <system_error>
#include <thread>
#include <utility>

namespace fs = std::filesystem;

namespace Tarvane::Soak
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::minutes kPatience{3};
constexpr std::chrono::minutes kEndPatience{1};
// A user who tries again; long enough for a server to come back within a few tries.
constexpr std::chrono::milliseconds kRest{20};
constexpr std::chrono::milliseconds kGlance{10};
constexpr std::int64_t kPlaceDistance = 1000; // samples
constexpr std::size_t kLargestSound = 1 << 20;
constexpr const char* kJournals = ".takes-";
// Who has waited so long for a server that is there needs one that appears.
constexpr std::chrono::seconds kServerPatience{3};

std::string CaptureCommand(const Sound& sound, std::int64_t nPosition)
{
    std::ostringstream command;
    command << "capture " << std::quoted(sound.path.string()) << " " << nPosition;
    return command.str();
}

// A capture that the disk has cut short holds the sound's beginning.
FileState StateOf(const Attempt& attempt, const Sound& sound)
{
    try
    {
        const auto nBytes = sound.strSamples.size() * static_cast<size_t>(attempt.nFrames) /
                            static_cast<size_t>(sound.nFrames);
        const std::string strFile = ReadFile(attempt.strPath, kLargestSound);
        return strFile.find(sound.strSamples.substr(0, nBytes)) != std::string::npos
                   ? FileState::Intact
                   : FileState::Changed;
    }
    catch (const std::system_error&)
    {
        return FileState::Missing;
    }
}

// The first capture of a host starts its view, and one that is killed is started again. 0 when
// there is none for long.
pid_t AwaitViewProcess(pid_t nHost)
{
    const auto deadline = Clock::now() + kEndPatience;
    std::vector<pid_t> views = ChildrenOf(nHost);
    for (; views.empty() && Clock::now() < deadline; views = ChildrenOf(nHost))
        std::this_thread::sleep_for(kGlance);
    return views.empty() ? 0 : views.front();
}

bool IsJournal(const fs::path& path)
{
    return path.filename().string().starts_with(kJournals);
}

} // namespace

CHostDriver::CHostDriver(int nView, ViewPlace place, fs::path captureFolder,
                         std::vector<Sound> sounds, Shared& shared)
    : m_nView(nView), m_place(place), m_captureFolder(std::move(captureFolder)),
      m_sounds(std::move(sounds)), m_shared(shared), m_nTrack(nView % kTracks)
{
    fs::create_directories(m_captureFolder);
}

void CHostDriver::Break(const std::string& strInvariant, const std::string& strWhat)
{
    m_findings.push_back({strInvariant, "view " + std::to_string(m_nView) + ": " + strWhat});
    m_shared.fBroken = true;
}

const Sound& CHostDriver::SoundFor(std::int64_t nPlace) const
{
    return m_sounds[static_cast<size_t>(nPlace) % m_sounds.size()];
}

void CHostDriver::Start()
{
    m_life = Life();
    m_life.nLife = m_shared.nLives++;
    m_nElements = 0;
    m_nLateOnes = 0;
    m_samples.clear();
    const bool fInHost = m_place == ViewPlace::InHost;
    std::vector<std::string> command{
        ProgramNamed(fInHost ? "tarvane-host" : "tarvane-soak-plug-in"), "--capture-folder",
        m_captureFolder, "--track", std::to_string(m_nTrack)};
    if (fInHost)
        command.insert(command.end(), {"--speed", "max", "--log", "-", "--count-objects"});
    auto pClient = std::make_unique<CHostClient>(command);
    const std::lock_guard lock(m_mutex);
    m_pClient = std::move(pClient);
}

void CHostDriver::RunRound(const PlannedRound& round, std::int64_t nFirst)
{
    try
    {
        if (!m_pClient)
            Start();
        // What is offered again goes to the track that is chosen then, so that the choice stays
        // until all has arrived.
        ChooseTrack(static_cast<int>(nFirst / round.nPlaces) % kTracks);
        RunPlaces(round, nFirst);
        AwaitArrival();
        AwaitAcknowledges();
        InspectFiles();
        TakeSamples();
    }
    catch (const std::exception& error)
    {
        Break("host-goes-on", error.what());
    }
    ++m_shared.nSettled;
}

void CHostDriver::TakeSamples()
{
    const pid_t nHost = m_pClient->Process().Pid();
    m_samples.push_back(SampleProcess(nHost));
    if (m_place == ViewPlace::InHost)
    {
        m_samples.back().nObjects = m_pClient->Ask("objects", kPatience)["objects"];
        return;
    }
    const pid_t nView = AwaitViewProcess(nHost);
    if (nView == 0)
        throw std::runtime_error("the view has no process");
    if (std::exchange(m_nViewProcess, nView) != nView)
        m_viewSamples.clear();
    m_viewSamples.push_back(SampleProcess(nView));
}

void CHostDriver::RunPlaces(const PlannedRound& round, std::int64_t nFirst)
{
    for (int n = 0; n < round.nPlaces && !m_shared.fBroken; ++n)
    {
        std::this_thread::sleep_until(m_shared.begin + round.beginning + n * round.interval);
        const std::int64_t nPlace = nFirst + n;
        bool fDone = false;
        const auto fnKill = [&](const std::vector<PlannedKill>& kills, Victim victim)
        {
            for (const PlannedKill& kill : kills)
            {
                if (kill.nView == m_nView && kill.nBefore == n)
                    fDone = Try(nPlace, victim, kill.delay);
            }
        };
        fnKill(round.hostKills, Victim::Host);
        fnKill(round.viewKills, Victim::View);
        const auto deadline = Clock::now() + kPatience;
        while (!fDone && !Try(nPlace) && !m_shared.fBroken)
        {
            if (Clock::now() > deadline)
                throw std::runtime_error("nothing is captured any more");
            std::this_thread::sleep_for(kRest);
        }
        ++m_shared.nDelivered;
    }
}

void CHostDriver::AwaitArrival()
{
    const auto begin = Clock::now();
    for (auto asked = begin; !m_shared.fBroken; std::this_thread::sleep_for(kRest))
    {
        const nlohmann::json state = m_pClient->Ask("state", kPatience);
        if (state["waiting"] == 0 && state["unreachable"] == 0)
            break;
        if (Clock::now() > begin + kPatience)
            throw std::runtime_error("not everything arrives: " + state.dump());
        if (Clock::now() > asked + kServerPatience)
        {
            asked = Clock::now();
            m_shared.fServerWanted = true;
        }
    }
    // What is told of the last of them comes ahead of this answer.
    m_pClient->Ask("state", kPatience);
    TakeLateOnes();
}

// What the host has delivered by itself since its start.
void CHostDriver::TakeLateOnes()
{
    size_t nLateOnes = 0;
    for (const nlohmann::json& event : m_pClient->Everything())
    {
        if (event.value("event", "") != "late" || nLateOnes++ < m_nLateOnes)
            continue;
        Attempt attempt;
        attempt.nLife = m_life.nLife;
        attempt.nTrack = event["track"];
        attempt.nPosition = event["position"];
        const Sound& sound = SoundFor(attempt.nPosition / kPlaceDistance);
        attempt.nOffset = sound.nOffset;
        attempt.fServerAway = true;
        attempt.fLate = true;
        TakeAnswer(event, attempt);
        m_attempts.push_back(attempt);
        m_captured.push_back(&sound);
    }
    m_nLateOnes = nLateOnes;
}

// Where the menu is empty, because the server is away, the track stays what it was.
void CHostDriver::ChooseTrack(int nTrack)
{
    if (nTrack == m_nTrack)
        return;
    try
    {
        m_pClient->Ask("track " + std::to_string(nTrack), kPatience);
        m_nTrack = nTrack;
    }
    catch (const CHostRefusal&)
    {
    }
}

bool CHostDriver::Try(std::int64_t nPlace, Victim victim, std::chrono::microseconds delay)
{
    const Sound& sound = SoundFor(nPlace);
    Attempt attempt;
    attempt.nLife = m_life.nLife;
    attempt.nTrack = m_nTrack;
    attempt.nPosition = nPlace * kPlaceDistance;
    attempt.nOffset = sound.nOffset;
    attempt.nFrames = sound.nFrames;
    const unsigned nAbsence = m_shared.nAbsence;
    bool fWhole = false; // and not refused
    const std::string strCommand = CaptureCommand(sound, attempt.nPosition);
    if (victim == Victim::Host)
        KillHost(strCommand, delay);
    else
    {
        attempt.fViewKilled = victim == Victim::View;
        const nlohmann::json answer = attempt.fViewKilled
                                          ? AskWhileTheViewIsKilled(strCommand, delay)
                                          : m_pClient->Ask(strCommand, kPatience);
        TakeAnswer(answer, attempt);
        fWhole = attempt.nFrames == sound.nFrames && answer["fate"] != "refused";
    }
    attempt.fServerAway = nAbsence % 2 != 0 || nAbsence != m_shared.nAbsence;
    m_attempts.push_back(attempt);
    m_captured.push_back(&sound);
    if (victim == Victim::Host)
        Start();
    return fWhole && attempt.outcome != Outcome::NotPublished;
}

nlohmann::json CHostDriver::AskWhileTheViewIsKilled(const std::string& strCommand,
                                                    std::chrono::microseconds delay)
{
    const pid_t nHost = m_pClient->Process().Pid();
    const std::jthread killer(
        [this, nHost, delay]
        {
            std::this_thread::sleep_for(delay);
            const pid_t nView = AwaitViewProcess(nHost);
            if (nView == 0 || ::kill(nView, SIGKILL) != 0)
                return;
            ++m_nViewKills;
            // Nobody is to find it again while it dies.
            for (auto views = ChildrenOf(nHost); std::ranges::count(views, nView) != 0;
                 views = ChildrenOf(nHost))
                std::this_thread::sleep_for(kRest);
        });
    return m_pClient->Ask(strCommand, kPatience);
}

void CHostDriver::KillHost(const std::string& strCommand, std::chrono::microseconds delay)
{
    CChildProcess& process = m_pClient->Process();
    process.WriteLine(strCommand);
    std::this_thread::sleep_for(delay);
    const std::lock_guard lock(m_mutex);
    process.Kill();
    process.WaitForEnd(kPatience);
    m_strEnded = process.ErrorOutput();
    TakeLateOnes();
    m_life.fKilled = true;
    m_life.acknowledges = ReadAcknowledges(m_strEnded);
    m_killed.push_back(m_life);
    m_pClient.reset();
    ++m_nKills;
}

void CHostDriver::TakeAnswer(const nlohmann::json& answer, Attempt& attempt)
{
    const std::string strOutcome = answer["outcome"];
    if (strOutcome == "delivered")
        attempt.outcome = Outcome::Delivered;
    else if (strOutcome == "duplicate")
        attempt.outcome = Outcome::Duplicate;
    else if (strOutcome == "not delivered")
        attempt.outcome = Outcome::Undelivered;
    else if (strOutcome == "failed")
        attempt.outcome = Outcome::NotPublished;
    else
        throw std::runtime_error("the host says " + answer.dump());
    if (attempt.outcome == Outcome::NotPublished)
        return;
    attempt.nElement = answer["element"];
    attempt.strPath = answer["dub"];
    attempt.nFrames = answer["frames"];
    m_nWithoutOffset += answer["withoutOffset"] == true;
    m_nElements = std::max(m_nElements, attempt.nElement + 1);
}

// What a process has written may reach us a little after its answer on another stream.
void CHostDriver::AwaitAcknowledges()
{
    const auto deadline = Clock::now() + std::chrono::seconds(2);
    do
    {
        m_life.acknowledges = ReadAcknowledges(m_pClient->Process().ErrorOutput());
        if (m_life.acknowledges.size() >= static_cast<size_t>(m_nElements))
            return;
        std::this_thread::sleep_for(kGlance);
    } while (Clock::now() < deadline);
}

void CHostDriver::InspectFiles()
{
    for (size_t n = 0; n < m_attempts.size(); ++n)
    {
        if (!m_attempts[n].strPath.empty())
            m_attempts[n].file = StateOf(m_attempts[n], *m_captured[n]);
    }
}

std::vector<Life> CHostDriver::Lives() const
{
    std::vector<Life> lives = m_killed;
    lives.push_back(m_life);
    return lives;
}

std::vector<std::string> CHostDriver::StrayFiles() const
{
    std::set<std::string> known;
    for (const Attempt& attempt : m_attempts)
        known.insert(attempt.strPath);
    std::vector<std::string> strays;
    for (const auto& entry : fs::directory_iterator(m_captureFolder))
    {
        if (known.count(entry.path()) == 0 && !IsJournal(entry.path()))
            strays.push_back(entry.path());
    }
    return strays;
}

void CHostDriver::ClearRound()
{
    m_attempts.clear();
    m_captured.clear();
    m_killed.clear();
    m_life.nElementsBefore = m_nElements;
    // A journal is its host's, which goes on.
    for (const auto& entry : fs::directory_iterator(m_captureFolder))
    {
        if (!IsJournal(entry.path()))
            fs::remove(entry);
    }
}

void CHostDriver::Close()
{
    if (!m_pClient)
        return;
    CChildProcess& process = m_pClient->Process();
    process.CloseInput();
    const auto nCode = process.WaitForEnd(kEndPatience);
    m_strEnded = process.ErrorOutput();
    // 1 says that some capture was not delivered.
    if (!nCode || (*nCode != 0 && *nCode != 1))
        Break("host-ends", "the host did not end as it was asked to, code " +
                               std::to_string(nCode.value_or(-1)));
}

void CHostDriver::Limit(std::uint64_t nBytes)
{
    const std::lock_guard lock(m_mutex);
    if (!m_pClient)
        return;
    // The host first: what it starts from then on is as it is.
    LimitFiles(m_pClient->Process().Pid(), nBytes);
    for (const pid_t nView : ChildrenOf(m_pClient->Process().Pid()))
        LimitFiles(nView, nBytes);
}

void CHostDriver::Unlimit()
{
    const std::lock_guard lock(m_mutex);
    if (!m_pClient)
        return;
    UnlimitFiles(m_pClient->Process().Pid());
    for (const pid_t nView : ChildrenOf(m_pClient->Process().Pid()))
        UnlimitFiles(nView);
}

} // namespace Tarvane::Soak
