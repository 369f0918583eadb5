// Who is served when: the commands of several clients, on processes that run their scripts.
//
// Clients take turns, and a client's own commands run one after the other. A command runs on the
// session as it is when it begins. One that takes longer than a turn makes room: the next begins
// beside it, and of those that are over their turn one at a time goes on, the one that has run
// least. So a short question waits for the turns of those before it, never for the whole of a long
// script. What a command changes is kept only if nobody has changed the session since it began, and
// is in the middle of changing it now; otherwise it runs again, and the second time alone. Of two
// in the middle of a change the one that is over its turn gives way. One that is being saved is
// waited for.
#pragma once

#include "apps/server/command/CommandProcessor.h"
#include "apps/server/command/ReadAhead.h"
#include "apps/server/command/ScriptWorker.h"
#include "apps/server/loop/LoopWatch.h"

#include <chrono>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>

namespace Tarvane::Server
{

struct Command
{
    std::int64_t nClient = 0; ///< whoever sends has one number
    std::string strScript;
    /// Asked when the command's turn comes: what is amiss then. May throw; the text is the answer.
    std::function<Trouble()> begin;
    /// Told once what is to be answered, when what the command changed is on disk.
    std::function<void(const CommandReply&)> end;
};

struct QueueLimits
{
    std::chrono::milliseconds turn{100};
    /// While it runs; waiting for others does not count, nor does saving.
    std::chrono::milliseconds longest{20'000};
    std::size_t nWaitingBytes = 64 << 20; ///< of scripts that wait
};

/// Main thread, in its run loop.
class CCommandQueue
{
public:
    /// Begins with a worker on the session that the settings name.
    explicit CCommandQueue(const WorkerSettings& settings, const QueueLimits& limits = {});
    ~CCommandQueue();
    CCommandQueue(const CCommandQueue&) = delete;
    CCommandQueue& operator=(const CCommandQueue&) = delete;

    /// The command is answered at once when too much is waiting.
    void Add(Command command);

    /// Of the session, as far as commands have been answered.
    std::int64_t UpdateCount() const { return m_nUpdateCount; }

    /// While held, commands that change wait in the middle; questions are answered.
    void HoldChanges();
    void LetChanges();
    /// Ends all that runs, has change done to the session without any connection open, and begins
    /// what ran anew on the session that change returns settings for.
    void StartOver(const std::function<WorkerSettings()>& change);
    /// Changes the session behind the clients' backs. Throws, and changes nothing, when it cannot
    /// be saved.
    void Change(const std::function<void(CSessionDatabase&)>& change);

private:
    using Clock = std::chrono::steady_clock;

    struct Waiting
    {
        Command command;
        bool fAlone = false; ///< has met with a change of others before
    };

    /// A command on its worker.
    struct Running
    {
        Command command;
        bool fAlone = false;
        std::unique_ptr<CScriptWorker> pWorker;
        std::unique_ptr<CReadWatch> pWatch;
        Clock::duration before{}; ///< that it has run until it was stopped last
        Clock::time_point since;
        bool fStopped = false;
        bool fLong = false;    ///< its turn is over
        bool fBlocked = false; ///< waits for others to end their change
        bool fAgain = false;   ///< was ended to make room
    };
    using Runs = std::list<Running>;

    void Step();
    void StartNext();
    bool CanStart(const Waiting& waiting) const;
    void Start(Waiting waiting);
    void LookAtTimes();
    void LetOneLongRun();
    void SetTimer();
    void Take(Runs::iterator run);
    void Finish(Runs::iterator run, WorkerReport report);
    void UnblockAll();
    void Unblock(Running& run);
    void MakeRoomFor(Running& run);
    void BeginAgain(Command command, bool fAlone);
    Clock::duration Ran(const Running& run) const;
    std::unique_ptr<CScriptWorker> TakeWorker();

    WorkerSettings m_settings;
    std::int64_t m_nUpdateCount;
    const QueueLimits m_limits;
    bool m_fHeld = false;
    std::deque<Waiting> m_waiting;
    std::size_t m_nWaitingBytes = 0;
    std::deque<std::int64_t> m_served; ///< clients, the one served longest ago first
    Runs m_running;
    std::unique_ptr<CScriptWorker> m_pIdle;
    std::optional<CReadAhead> m_readAhead; ///< always, but for a StartOver
    CLoopTimer m_timer;
};

} // namespace Tarvane::Server
