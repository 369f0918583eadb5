#include "apps/server/command/CommandQueue.h"

#include "apps/server/script/ScriptFunctions.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Tarvane::Server
{

namespace
{

constexpr std::chrono::milliseconds kLook{50};
constexpr std::size_t kMostServedKept = 1000;

CommandReply Refusal(const Command& command, const std::string& strError)
{
    return {"", strError, NamesChange(command.strScript)};
}

} // namespace

CCommandQueue::CCommandQueue(const WorkerSettings& settings, const QueueLimits& limits)
    : m_settings(settings), m_nUpdateCount(CSessionDatabase(settings.sessionFile).UpdateCount()),
      m_limits(limits), m_pIdle(std::make_unique<CScriptWorker>(m_settings)),
      m_readAhead(std::in_place, m_settings), m_timer([this] { Step(); })
{
}

CCommandQueue::~CCommandQueue() = default;

void CCommandQueue::Add(Command command)
{
    if (m_nWaitingBytes + command.strScript.size() > m_limits.nWaitingBytes)
    {
        command.end(Refusal(command, "too many commands are waiting"));
        return;
    }
    m_nWaitingBytes += command.strScript.size();
    m_waiting.push_back({std::move(command)});
    Step();
}

void CCommandQueue::Step()
{
    UnblockAll();
    LookAtTimes();
    StartNext();
    LetOneLongRun();
    SetTimer();
}

void CCommandQueue::StartNext()
{
    // One in its turn at a time.
    while (std::all_of(m_running.begin(), m_running.end(),
                       [](const Running& run) { return run.fLong && !run.fAlone; }))
    {
        const auto rank = [this](const Waiting& waiting)
        {
            return std::find(m_served.begin(), m_served.end(), waiting.command.nClient) ==
                           m_served.end()
                       ? -1
                       : std::find(m_served.begin(), m_served.end(), waiting.command.nClient) -
                             m_served.begin();
        };
        auto best = m_waiting.end();
        for (auto next = m_waiting.begin(); next != m_waiting.end(); ++next)
        {
            if (CanStart(*next) && (best == m_waiting.end() || rank(*next) < rank(*best)))
                best = next;
        }
        if (best == m_waiting.end())
            return;
        Waiting waiting = std::move(*best);
        m_waiting.erase(best);
        m_nWaitingBytes -= waiting.command.strScript.size();
        Start(std::move(waiting));
    }
}

bool CCommandQueue::CanStart(const Waiting& waiting) const
{
    const auto isOfClient = [&](const Running& run)
    { return run.command.nClient == waiting.command.nClient; };
    return std::none_of(m_running.begin(), m_running.end(), isOfClient);
}

void CCommandQueue::Start(Waiting waiting)
{
    const std::int64_t nClient = waiting.command.nClient;
    std::erase(m_served, nClient);
    m_served.push_back(nClient);
    if (m_served.size() > kMostServedKept)
        m_served.pop_front();
    try
    {
        const Trouble trouble = waiting.command.begin();
        std::unique_ptr<CScriptWorker> pWorker = TakeWorker();
        pWorker->Begin(waiting.command.strScript, trouble);
        m_running.push_back({std::move(waiting.command),
                             waiting.fAlone,
                             std::move(pWorker),
                             nullptr,
                             {},
                             Clock::now()});
        const auto run = std::prev(m_running.end());
        run->pWatch =
            std::make_unique<CReadWatch>(run->pWorker->Descriptor(), [this, run] { Take(run); });
    }
    catch (const std::exception& error)
    {
        waiting.command.end(Refusal(waiting.command, error.what()));
    }
}

std::unique_ptr<CScriptWorker> CCommandQueue::TakeWorker()
{
    if (m_pIdle)
        return std::move(m_pIdle);
    return std::make_unique<CScriptWorker>(m_settings);
}

CCommandQueue::Clock::duration CCommandQueue::Ran(const Running& run) const
{
    return run.before +
           (run.fStopped || run.fBlocked ? Clock::duration() : Clock::now() - run.since);
}

void CCommandQueue::LookAtTimes()
{
    for (Running& run : m_running)
    {
        if (Ran(run) > m_limits.longest && !run.pWorker->IsSaving())
        {
            const auto nSeconds =
                std::chrono::duration_cast<std::chrono::seconds>(m_limits.longest).count();
            // The watch tells that it has ended.
            run.pWorker->Kill("the script takes more than " + std::to_string(nSeconds) +
                              " seconds");
        }
        run.fLong |= Ran(run) > m_limits.turn;
    }
}

// The one that has run least; and none beside one that must run alone.
void CCommandQueue::LetOneLongRun()
{
    const bool fAlone = std::any_of(m_running.begin(), m_running.end(),
                                    [](const Running& run) { return run.fAlone; });
    const Running* pLeast = nullptr;
    for (const Running& run : m_running)
    {
        if (run.fLong && !run.fBlocked && (pLeast == nullptr || Ran(run) < Ran(*pLeast)))
            pLeast = &run;
    }
    for (Running& run : m_running)
    {
        const bool fMayRun =
            run.pWorker->IsSaving() || (fAlone ? run.fAlone : !run.fLong || &run == pLeast);
        if (!fMayRun && !run.fStopped)
        {
            run.before = Ran(run);
            run.fStopped = true;
            run.pWorker->Stop();
        }
        else if (fMayRun && run.fStopped)
        {
            run.fStopped = false;
            run.since = Clock::now();
            run.pWorker->Continue();
        }
    }
}

void CCommandQueue::SetTimer()
{
    if (m_running.empty())
        m_timer.Cancel();
    else
        m_timer.Set(kLook);
}

void CCommandQueue::Take(Runs::iterator run)
{
    std::optional<WorkerReport> report = run->pWorker->Receive();
    if (!report)
        return;
    if (report->fBlocked)
    {
        run->before = Ran(*run);
        run->fBlocked = true;
    }
    else
    {
        Finish(run, *std::move(report));
    }
    Step();
}

void CCommandQueue::UnblockAll()
{
    const auto isSaving = [](const Running& run) { return run.pWorker->IsSaving(); };
    if (m_fHeld || std::any_of(m_running.begin(), m_running.end(), isSaving))
        return;
    for (Running& run : m_running)
    {
        if (run.fBlocked && !run.fAgain)
            Unblock(run);
    }
}

void CCommandQueue::Unblock(Running& run)
{
    const bool fGivesWay =
        run.fLong && !run.fAlone &&
        std::any_of(m_running.begin(), m_running.end(),
                    [](const Running& other) { return !other.fLong || other.fAlone; });
    if (!fGivesWay)
        MakeRoomFor(run);
    run.fBlocked = false;
    run.since = Clock::now();
    run.pWorker->TryAgain(!fGivesWay);
}

// Which of the others is in the middle of a change is not known. They begin again when this one is
// done.
void CCommandQueue::MakeRoomFor(Running& run)
{
    run.fAlone = true;
    for (Running& other : m_running)
    {
        if (&other == &run || other.fAgain)
            continue;
        other.fAgain = true;
        other.pWorker->Kill("it was ended to make room");
    }
}

void CCommandQueue::BeginAgain(Command command, bool fAlone)
{
    m_nWaitingBytes += command.strScript.size();
    m_waiting.push_front({std::move(command), fAlone});
}

void CCommandQueue::Finish(Runs::iterator run, WorkerReport report)
{
    Running ended = std::move(*run);
    // What is below may come back in here.
    m_running.erase(run);
    ended.pWatch.reset();
    Execution& execution = report.execution;
    CommandReply& reply = execution.reply;
    m_settings.identity = report.identity;
    // It may have been stopped when it had said all.
    ended.pWorker->Continue();
    if (ended.pWorker->IsAlive())
        m_pIdle = std::move(ended.pWorker);
    ended.pWorker.reset();
    if (execution.fConflict || (ended.fAgain && report.fEnded))
    {
        BeginAgain(std::move(ended.command), true);
        return;
    }
    if (reply.fChanged)
    {
        m_nUpdateCount = execution.nUpdateCount;
        m_readAhead->Changed(m_settings.identity);
    }
    if (report.fEnded)
        reply.fRefused = NamesChange(ended.command.strScript);
    ended.command.end(reply);
}

void CCommandQueue::HoldChanges()
{
    m_fHeld = true;
}

void CCommandQueue::LetChanges()
{
    m_fHeld = false;
    Step();
}

void CCommandQueue::StartOver(const std::function<WorkerSettings()>& change)
{
    for (Running& run : m_running)
    {
        run.pWorker->Kill("");
        BeginAgain(std::move(run.command), run.fAlone);
    }
    m_running.clear();
    if (m_pIdle)
        m_pIdle->Kill("");
    m_pIdle.reset();
    m_readAhead.reset();
    m_settings = change();
    m_readAhead.emplace(m_settings);
    m_nUpdateCount = CSessionDatabase(m_settings.sessionFile).UpdateCount();
    Step();
}

void CCommandQueue::Change(const std::function<void(CSessionDatabase&)>& change)
{
    CSessionDatabase database(m_settings.sessionFile);
    try
    {
        database.Begin();
        change(database);
        database.Commit();
        m_nUpdateCount = database.UpdateCount();
    }
    catch (const SQLite::Exception& error)
    {
        throw std::runtime_error("the session could not be saved: " + database.Reason(error));
    }
}

} // namespace Tarvane::Server
