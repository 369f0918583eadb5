#include "apps/server/CommandQueue.h"

#include "apps/server/ScriptFunctions.h"

#include <algorithm>
#include <exception>
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

CCommandQueue::CCommandQueue(CCommandProcessor& processor, const QueueLimits& limits)
    : m_processor(processor), m_limits(limits), m_timer([this] { Step(); })
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
        Trouble trouble = waiting.command.begin();
        m_processor.Begin(trouble);
        std::unique_ptr<CScriptWorker> pWorker = TakeWorker();
        pWorker->Begin(waiting.command.strScript, trouble);
        m_running.push_back({std::move(waiting.command),
                             trouble,
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
    std::unique_ptr<CScriptWorker> pIdle = std::move(m_pIdle);
    if (pIdle && pIdle->UpdateCount() == m_processor.Session().UpdateCount())
        return pIdle;
    pIdle.reset();
    return std::make_unique<CScriptWorker>(m_processor);
}

CCommandQueue::Clock::duration CCommandQueue::Ran(const Running& run) const
{
    return run.before + (run.fStopped ? Clock::duration() : Clock::now() - run.since);
}

void CCommandQueue::LookAtTimes()
{
    for (auto run = m_running.begin(); run != m_running.end();)
    {
        const auto next = std::next(run);
        if (Ran(*run) > m_limits.longest)
        {
            const auto nSeconds =
                std::chrono::duration_cast<std::chrono::seconds>(m_limits.longest).count();
            Running ended = std::move(*run);
            m_running.erase(run);
            ended.command.end(Refusal(ended.command, "the script takes more than " +
                                                         std::to_string(nSeconds) + " seconds"));
        }
        else if (Ran(*run) > m_limits.turn)
        {
            run->fLong = true;
        }
        run = next;
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
        if (run.fLong && (pLeast == nullptr || Ran(run) < Ran(*pLeast)))
            pLeast = &run;
    }
    for (Running& run : m_running)
    {
        const bool fMayRun = fAlone ? run.fAlone : !run.fLong || &run == pLeast;
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
    std::optional<Execution> execution = run->pWorker->Receive();
    if (!execution)
        return;
    Finish(run, *std::move(execution));
    Step();
}

void CCommandQueue::Finish(Runs::iterator run, Execution execution)
{
    Running ended = std::move(*run);
    // What is below may come back in here.
    m_running.erase(run);
    ended.pWatch.reset();
    const bool fStale = ended.pWorker->UpdateCount() != m_processor.Session().UpdateCount();
    if (execution.changed && fStale)
    {
        m_nWaitingBytes += ended.command.strScript.size();
        m_waiting.push_front({std::move(ended.command), true});
        return;
    }
    if (!execution.changed && ended.pWorker->IsAlive())
        m_pIdle = std::move(ended.pWorker);
    else if (!ended.pWorker->IsAlive())
        execution.reply.fRefused = NamesChange(ended.command.strScript);
    ended.command.end(m_processor.Conclude(std::move(execution)));
}

} // namespace Tarvane::Server
