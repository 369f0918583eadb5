// Tells when the server leaves a command without an answer.
#pragma once

#include "apps/support/recording/CommandWatch.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace Tarvane
{

/// The main thread waits meanwhile and can tell nothing, so that a thread of its own looks on.
class CSilenceWatch
{
public:
    /// Calls, on that thread and once for each command that has had no answer for the patience,
    /// with "GetTrackCount, since 04:05:12, for 5 s".
    CSilenceWatch(const CCommandWatch& commands, std::chrono::milliseconds patience,
                  std::function<void(const std::string&)> fnTell);
    /// Returns when no call is under way.
    ~CSilenceWatch();
    CSilenceWatch(const CSilenceWatch&) = delete;
    CSilenceWatch& operator=(const CSilenceWatch&) = delete;

    /// The last such command since this was asked last, with how long it had been by then. Empty
    /// when there was none. Any thread.
    std::string Take();

private:
    void Watch();

    const CCommandWatch& m_commands;
    const std::chrono::milliseconds m_patience;
    const std::function<void(const std::string&)> m_fnTell;

    std::mutex m_mutex; ///< guards these
    std::condition_variable m_wake;
    bool m_fEnding = false;
    std::string m_strLast;

    std::chrono::steady_clock::time_point m_told; ///< when the command began that was told last
    std::thread m_thread;
};

} // namespace Tarvane
