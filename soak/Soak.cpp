#include "soak/Soak.h"

#include "apps/server/database/SessionStore.h"
#include "apps/support/file/AtomicFile.h"
#include "apps/support/sound/SoundFile.h"
#include "soak/Invariants.h"
#include "soak/Logs.h"
#include "soak/ProcessSample.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <tuple>

namespace fs = std::filesystem;

namespace Tarvane::Soak
{

namespace
{

constexpr int kSoundsOfAView = 6;
constexpr std::int64_t kFrames = 480;
// What a server may keep of each region, such as pages of its session.
constexpr long kServerMemoryOfARegion = 4; // KiB
// What is open in passing: the process that ran a server's last script, a connection to the bus
// that comes or goes, a journal. One that each capture left open would soon be many.
constexpr long kDescriptorsInPassing = 4;
constexpr std::chrono::milliseconds kGlance{1};

Sound MakeSound(const fs::path& path, unsigned nSeed)
{
    const bool fHigh = nSeed % 2 != 0;
    SF_INFO info{};
    info.samplerate = fHigh ? 96000 : 48000;
    info.channels = fHigh ? 2 : 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    const SoundFileHandle pFile(sf_open(path.c_str(), SFM_WRITE, &info));
    if (!pFile)
        throw std::runtime_error("cannot write " + path.string());
    std::mt19937 noise(nSeed);
    std::vector<short> samples(static_cast<size_t>(kFrames * info.channels));
    for (short& nSample : samples)
        nSample = static_cast<short>(noise());
    sf_writef_short(pFile.get(), samples.data(), kFrames);
    return {path,
            {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(short)},
            kFrames,
            static_cast<std::int64_t>(kLinkOffset * info.samplerate)};
}

SeenRegion SeenFrom(const Server::Document& document, const Server::Region& region)
{
    SeenRegion seen{region.strPath, -1,          region.nPosition,
                    region.nStart,  region.nEnd, fs::exists(region.strPath)};
    for (size_t n = 0; n < document.tracks.size(); ++n)
    {
        if (document.tracks[n].nId == region.nTrackId)
            seen.nTrack = static_cast<int>(n);
    }
    return seen;
}

std::string Describe(const ProcessSample& sample)
{
    return std::to_string(sample.nMemory) + " KiB, " + std::to_string(sample.nDescriptors) +
           " descriptors, " + std::to_string(sample.nThreads) + " threads, " +
           std::to_string(sample.nObjects) + " objects";
}

} // namespace

CSoak::CSoak(const SoakSettings& settings, fs::path folder, long nAllowance)
    : m_settings(settings), m_folder(std::move(folder)), m_nAllowance(nAllowance),
      m_plan(MakePlan(settings)), m_barrier(Views() + 1)
{
    fs::create_directories(m_folder / "sounds");
    std::ofstream(m_folder / "plan.txt") << DescribePlan(m_plan);
    for (int nView = 0; nView < Views(); ++nView)
        m_drivers.push_back(std::make_unique<CHostDriver>(
            nView, nView < settings.nViews ? ViewPlace::InHost : ViewPlace::OfItsOwn,
            m_folder / "captures" / ("view-" + std::to_string(nView)), MakeSounds(nView),
            m_shared));
}

std::vector<Sound> CSoak::MakeSounds(int nView) const
{
    std::vector<Sound> sounds;
    for (int n = 0; n < kSoundsOfAView; ++n)
    {
        const int nSeed = nView * kSoundsOfAView + n;
        const fs::path path = m_folder / "sounds" / ("take " + std::to_string(nSeed) + ".wav");
        sounds.push_back(MakeSound(path, static_cast<unsigned>(nSeed)));
    }
    return sounds;
}

std::vector<Finding> CSoak::Run()
{
    std::vector<std::thread> threads;
    for (int nView = 0; nView < Views(); ++nView)
        threads.emplace_back([this, nView] { Drive(nView); });
    RunRounds();
    m_nRound = m_plan.rounds.size();
    m_barrier.arrive_and_wait();
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& pDriver : m_drivers)
        TakeFindings(pDriver->Findings());
    Summarise();
    return m_findings;
}

// The drivers wait for the next round whenever something is thrown here.
void CSoak::RunRounds()
{
    try
    {
        for (size_t nRound = 0; nRound < m_plan.rounds.size() && !m_shared.fBroken; ++nRound)
            RunRound(nRound);
    }
    catch (const std::exception& error)
    {
        TakeFindings({{"soak-goes-on", error.what()}});
    }
}

// A host ends with the thread that has started it, so each driver has one for the whole soak.
void CSoak::Drive(int nView)
{
    CHostDriver& driver = *m_drivers[static_cast<size_t>(nView)];
    for (m_barrier.arrive_and_wait(); m_nRound < m_plan.rounds.size(); m_barrier.arrive_and_wait())
    {
        const PlannedRound& round = m_plan.rounds[m_nRound];
        const auto nFirst = (static_cast<std::int64_t>(m_nRound) * Views() + nView) * round.nPlaces;
        driver.RunRound(round, nFirst);
        m_barrier.arrive_and_wait();
    }
    driver.Close();
}

void CSoak::RunRound(size_t nRound)
{
    m_round = m_folder / ("round-" + std::to_string(nRound));
    m_session = m_round / "session.tarvane";
    fs::create_directories(m_round);
    m_pServer = std::make_unique<CServerProcess>(m_session);
    m_shared.nDelivered = 0;
    m_shared.nSettled = 0;
    m_shared.fServerWanted = false;
    m_nRound = nRound;
    m_barrier.arrive_and_wait();
    try
    {
        MakeFaults(m_plan.rounds[nRound]);
        LetAllArrive();
    }
    catch (const std::exception& error)
    {
        TakeFindings({{"server-comes-back", error.what()}});
    }
    m_barrier.arrive_and_wait();
    CloseRound(nRound);
}

void CSoak::MakeFaults(const PlannedRound& round)
{
    for (const PlannedFault& fault : round.faults)
    {
        while (m_shared.nDelivered < fault.nAfter && !m_shared.fBroken)
            std::this_thread::sleep_for(kGlance);
        if (m_shared.fBroken)
            return;
        std::this_thread::sleep_for(fault.delay);
        Make(fault);
    }
}

void CSoak::Make(const PlannedFault& fault)
{
    if (fault.kind == FaultKind::DiskFill)
    {
        FillDisk(fault);
        return;
    }
    ++m_shared.nAbsence;
    if (fault.kind == FaultKind::ServerKill)
    {
        m_pServer->Kill();
        std::this_thread::sleep_for(fault.away);
        m_pServer->Restart();
        ++m_totals.nServerKills;
    }
    else
    {
        m_bus.Kill();
        std::this_thread::sleep_for(fault.away);
        m_bus.Start();
        m_pServer->AwaitAnswer();
        ++m_totals.nBusRestarts;
    }
    ++m_shared.nAbsence;
}

// A take whose server did not answer waits for one that appears.
void CSoak::LetAllArrive()
{
    while (m_shared.nSettled < Views() && !m_shared.fBroken)
    {
        std::this_thread::sleep_for(kGlance);
        if (!m_shared.fServerWanted.exchange(false))
            continue;
        ++m_shared.nAbsence;
        m_pServer->Kill();
        m_pServer->Restart();
        ++m_shared.nAbsence;
        ++m_totals.nServersWanted;
    }
}

void CSoak::FillDisk(const PlannedFault& fault)
{
    LimitFiles(m_pServer->Pid(), fault.nFileLimit);
    for (const auto& pDriver : m_drivers)
        pDriver->Limit(fault.nFileLimit);
    std::this_thread::sleep_for(fault.away);
    UnlimitFiles(m_pServer->Pid());
    for (const auto& pDriver : m_drivers)
        pDriver->Unlimit();
    ++m_totals.nDiskFills;
}

void CSoak::CloseRound(size_t nRound)
{
    ProcessSample first, last;
    try
    {
        first = m_pServer->FirstSample();
        last = SampleAtRest(m_pServer->Pid());
    }
    catch (const std::exception& error)
    {
        TakeFindings({{"server-comes-back", error.what()}});
    }
    if (const int nCode = m_pServer->Close(); nCode != 0)
        TakeFindings({{"server-ends", "the server did not end as it was asked to, code " +
                                          std::to_string(nCode) + ": " + m_pServer->ErrorLog()}});
    RoundEvidence evidence;
    try
    {
        evidence = Gather();
        TakeFindings(CheckRound(evidence));
    }
    catch (const std::exception& error)
    {
        TakeFindings({{"session-sound", error.what()}});
    }
    const long nRegions = static_cast<long>(evidence.regions.size());
    TakeFindings(CheckGrowth("the server of round " + std::to_string(nRound), first, last,
                             m_nAllowance + kServerMemoryOfARegion * nRegions,
                             kDescriptorsInPassing));
    WatchHosts();
    Count(evidence);
    if (m_shared.fBroken)
    {
        KeepEvidence(evidence);
        return;
    }
    for (const auto& pDriver : m_drivers)
        pDriver->ClearRound();
    fs::remove_all(m_round);
    Progress(nRound);
}

RoundEvidence CSoak::Gather() const
{
    RoundEvidence evidence;
    const auto append = [](auto& to, const auto& from)
    { to.insert(to.end(), from.begin(), from.end()); };
    for (const auto& pDriver : m_drivers)
    {
        append(evidence.attempts, pDriver->Attempts());
        append(evidence.lives, pDriver->Lives());
        append(evidence.strayFiles, pDriver->StrayFiles());
    }
    evidence.answers = ReadServerAnswers(m_pServer->Log());
    evidence.regions = ReadSession();
    return evidence;
}

std::vector<SeenRegion> CSoak::ReadSession() const
{
    const auto session = Server::CSessionStore(m_session).Load();
    if (!session)
        throw std::runtime_error("the session " + m_session.string() + " has gone");
    if (fs::exists(m_session.string() + ".flawed"))
        throw std::runtime_error("a server has found the session " + m_session.string() +
                                 " flawed: " + m_pServer->ErrorLog());
    const Server::Document& document = session->GetDocument(Server::DocumentKind::Script);
    std::vector<SeenRegion> regions;
    for (const Server::Region& region : document.regions)
        regions.push_back(SeenFrom(document, region));
    return regions;
}

void CSoak::Count(const RoundEvidence& evidence)
{
    std::set<std::string> inSession;
    for (const SeenRegion& region : evidence.regions)
        inSession.insert(region.strPath);
    for (const Attempt& attempt : evidence.attempts)
    {
        ++m_totals.nAttempts;
        m_totals.nDelivered += attempt.outcome == Outcome::Delivered;
        m_totals.nDuplicates += attempt.outcome == Outcome::Duplicate;
        m_totals.nTakenAnew += attempt.outcome == Outcome::Duplicate && attempt.fViewKilled &&
                               inSession.count(attempt.strPath) != 0;
        m_totals.nUndelivered += attempt.outcome == Outcome::Undelivered;
        m_totals.nFailed += attempt.outcome == Outcome::NotPublished;
        m_totals.nUnanswered += attempt.outcome == Outcome::Unanswered;
        m_totals.nLate += attempt.fLate;
    }
    std::set<std::tuple<int, std::int64_t, std::int64_t>> places;
    for (const SeenRegion& region : evidence.regions)
        m_totals.nTwice += !places.insert({region.nTrack, region.nPosition, region.nEnd}).second;
    for (const ServerAnswer& answer : evidence.answers)
        m_totals.nRefused += !answer.strError.empty();
    m_totals.nHostKills = 0;
    m_totals.nViewKills = 0;
    m_totals.nWithoutOffset = 0;
    for (const auto& pDriver : m_drivers)
    {
        m_totals.nHostKills += pDriver->Kills();
        m_totals.nViewKills += pDriver->ViewKills();
        m_totals.nWithoutOffset += pDriver->PlacedWithoutOffset();
    }
}

// Caches fill in a host's first round and in the part of a round before it.
void CSoak::WatchHosts()
{
    m_growth.clear();
    for (const auto& pDriver : m_drivers)
    {
        const std::string strHost = "host " + std::to_string(pDriver->LifeNumber());
        Watch(strHost, pDriver->Samples());
        Watch("the view of " + strHost, pDriver->ViewSamples());
    }
}

void CSoak::Watch(const std::string& strProcess, const std::vector<ProcessSample>& samples)
{
    constexpr size_t kSettled = 1;
    if (samples.size() <= kSettled + 1)
        return;
    TakeFindings(CheckGrowth(strProcess, samples[kSettled], samples.back(), m_nAllowance,
                             kDescriptorsInPassing));
    m_growth.push_back(strProcess + ", " + std::to_string(samples.size()) + " rounds: " +
                       Describe(samples[kSettled]) + " -> " + Describe(samples.back()));
}

void CSoak::KeepEvidence(const RoundEvidence& evidence) const
{
    std::ofstream(m_round / "server.log") << m_pServer->Log();
    std::ofstream(m_round / "server-errors.log") << m_pServer->ErrorLog();
    for (size_t n = 0; n < m_drivers.size(); ++n)
        std::ofstream(m_round / ("host-" + std::to_string(n) + ".log")) << m_drivers[n]->Log();
    std::ofstream attempts(m_round / "attempts.txt");
    for (const Attempt& attempt : evidence.attempts)
        attempts << "host " << attempt.nLife << " element " << attempt.nElement << " track "
                 << attempt.nTrack << " sample " << attempt.nPosition << " outcome "
                 << static_cast<int>(attempt.outcome) << " server away " << attempt.fServerAway
                 << " view killed " << attempt.fViewKilled << " " << attempt.strPath << "\n";
}

void CSoak::TakeFindings(const std::vector<Finding>& findings)
{
    m_findings.insert(m_findings.end(), findings.begin(), findings.end());
    m_shared.fBroken = m_shared.fBroken || !m_findings.empty();
}

double CSoak::Seconds() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_shared.begin).count();
}

void CSoak::Progress(size_t nRound) const
{
    std::fprintf(stderr,
                 "round %zu of %zu: %ld delivered, %.1f a second; kills: server %ld, host %ld, "
                 "view %ld, bus %ld; disk fills %ld\n",
                 nRound + 1, m_plan.rounds.size(), m_totals.nDelivered,
                 static_cast<double>(m_totals.nDelivered) / Seconds(), m_totals.nServerKills,
                 m_totals.nHostKills, m_totals.nViewKills, m_totals.nBusRestarts,
                 m_totals.nDiskFills);
}

void CSoak::Summarise() const
{
    std::ostringstream text;
    text << "seed " << m_settings.nSeed << ", " << m_settings.nViews << " views in hosts, "
         << m_settings.nPlugIns << " in processes of their own, " << static_cast<long>(Seconds())
         << " s\n"
         << "captures attempted    " << m_totals.nAttempts << "\n"
         << "  delivered           " << m_totals.nDelivered << ", "
         << static_cast<double>(m_totals.nDelivered) / Seconds() << " a second\n"
         << "  duplicates          " << m_totals.nDuplicates << ", " << m_totals.nTakenAnew
         << " of them added by a view that was killed\n"
         << "  not delivered       " << m_totals.nUndelivered << "\n"
         << "    refused           " << m_totals.nRefused << " (the server's disk was full)\n"
         << "  not captured        " << m_totals.nFailed << " (the host's disk was full)\n"
         << "  host killed         " << m_totals.nUnanswered << "\n"
         << "sent again by hosts   " << m_totals.nLate << "\n"
         << "without the offset    " << m_totals.nWithoutOffset
         << " (it could not be had, and counted as 0)\n"
         << "standing twice        " << m_totals.nTwice << " (the question for duplicates failed)\n"
         << "servers started       " << m_totals.nServersWanted << " (for what had no answer)\n"
         << "server kills          " << m_totals.nServerKills << "\n"
         << "host kills            " << m_totals.nHostKills << "\n"
         << "view kills            " << m_totals.nViewKills << "\n"
         << "bus restarts          " << m_totals.nBusRestarts << "\n"
         << "disk fills            " << m_totals.nDiskFills << "\n";
    for (const std::string& strLine : m_growth)
        text << strLine << "\n";
    std::fputs(text.str().c_str(), stdout);
    std::fflush(stdout);
}

} // namespace Tarvane::Soak
