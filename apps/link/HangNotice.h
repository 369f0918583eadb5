// Word of a server that does not answer, while somebody waits for it.
#pragma once

#include "apps/support/recording/CommandWatch.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace Tarvane::Link
{

/// While an object lives, each command that has had no answer for kLongWait is named on the
/// standard error stream, once.
class CHangNotice
{
public:
    /// The watch must outlive the object.
    explicit CHangNotice(const CCommandWatch& commands);
    ~CHangNotice();
    CHangNotice(const CHangNotice&) = delete;
    CHangNotice& operator=(const CHangNotice&) = delete;

    static constexpr std::chrono::seconds kLongWait{2};

private:
    void Work();

    const CCommandWatch& m_commands;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_fEnding = false;
    std::thread m_thread;
};

} // namespace Tarvane::Link
