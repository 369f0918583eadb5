#pragma once

#include <csignal>
#include <cstddef>
#include <string>
#include <vector>

#include <sys/types.h>

namespace TarvaneTests
{

// A program that a test starts and that never outlives it: it is ended with this object, and by the
// kernel should the test itself crash. One thread; start and end on the same one.
class ChildProcess
{
public:
    ChildProcess() = default;

    // Starts arguments[0] (looked up in PATH), with this process's environment and what `settings`
    // ("NAME=value") put in its place. Its standard output can be read with ReadLine.
    // Throws std::runtime_error when the program cannot be started.
    explicit ChildProcess(const std::vector<std::string>& arguments,
                          const std::vector<std::string>& settings = {});
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;

    // 0 when there is none, or when it has been waited for.
    pid_t Pid() const { return m_nPid; }

    void Signal(int nSignal) const;

    // SIGKILL, and waits for the end. A stopped process ends too.
    void Kill();

    // Waits for the end: the exit code, or 128 and the signal's number.
    int Wait();

    // One line of standard output without its end; empty at the end of the output. Blocks.
    std::string ReadLine();

private:
    pid_t m_nPid = 0;
    int m_nOutput = -1;
};

} // namespace TarvaneTests
