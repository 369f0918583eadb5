// A child process that never outlives its owner.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace Tarvane
{

/// Starts a program, keeps all that it writes, and ends it when the object goes.
///
/// The child's three standard streams are pipes of ours; a thread of the object's own reads both
/// outputs to their end, so a talkative child never stalls. The child is also ended when the thread
/// that started it ends, so start it from one that lives as long as the child is to, the main one.
///
/// All operations: any one thread at a time. Times are upper bounds; a call returns as soon as it
/// knows. No operation throws but the constructor.
class CChildProcess
{
public:
    /// arguments[0] is the program: a path, or a name that PATH finds. Throws std::system_error
    /// when the program cannot be started.
    explicit CChildProcess(const std::vector<std::string>& arguments);

    /// Ends the child: SIGCONT and SIGTERM, two seconds of patience, then SIGKILL. Reaps it.
    ~CChildProcess();

    CChildProcess(const CChildProcess&) = delete;
    CChildProcess& operator=(const CChildProcess&) = delete;

    pid_t Pid() const;

    /// Waits for a whole line on the child's standard output that contains the text, among the
    /// lines that no earlier call has handed out, and consumes all lines up to and with it. Empty
    /// when the time is over or the output has ended without one; the lines are then still there.
    std::optional<std::string> WaitForLine(std::string_view strPart,
                                           std::chrono::milliseconds timeout);

    /// Writes one line, the line end added, to the child's standard input. False when the child no
    /// longer reads.
    bool WriteLine(std::string_view strLine);
    /// The child sees the end of its standard input.
    void CloseInput();

    /// The exit code once the child has ended, 128 plus the signal's number when a signal ended it;
    /// empty when it still runs at the end of the time. Stays callable with the same answer.
    std::optional<int> WaitForEnd(std::chrono::milliseconds timeout);
    bool IsRunning() { return !WaitForEnd(std::chrono::milliseconds(0)); }

    /// Signals; nothing happens once the child has ended.
    void Terminate();
    void Kill();
    void Stop();
    void Continue();

    /// SIGTERM, then SIGKILL when the patience is over; returns the exit code as WaitForEnd does.
    int End(std::chrono::milliseconds patience);

    /// All that the child has written until now. After WaitForEnd has given a code: all of it,
    /// unless a grandchild still holds the streams.
    std::string Output() const;
    std::string ErrorOutput() const;

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

/// The program that a process runs, "unknown" when that cannot be found out.
std::string ProgramOf(std::int64_t nProcess);

/// The folder that holds the program now running, or its application where programs are in such.
std::filesystem::path ProgramFolder();
/// One of the programs beside it, for a child: an application's own file, not the application.
std::filesystem::path ProgramNamed(const std::string& strName);

} // namespace Tarvane
