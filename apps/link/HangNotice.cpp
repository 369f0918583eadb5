#include "apps/link/HangNotice.h"

#include "apps/support/text/PlainText.h"

#include <iostream>

namespace Tarvane::Link
{

namespace
{

constexpr std::chrono::milliseconds kBetweenLooks{250};

} // namespace

CHangNotice::CHangNotice(const CCommandWatch& commands)
    : m_commands(commands), m_thread([this] { Work(); })
{
}

CHangNotice::~CHangNotice()
{
    {
        const std::lock_guard lock(m_mutex);
        m_fEnding = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void CHangNotice::Work()
{
    std::chrono::steady_clock::time_point told{};
    std::unique_lock lock(m_mutex);
    while (!m_wake.wait_for(lock, kBetweenLooks, [this] { return m_fEnding; }))
    {
        const std::optional<CommandUnderWay> command = m_commands.UnderWay();
        if (!command || command->since == told ||
            std::chrono::steady_clock::now() - command->since < kLongWait)
            continue;
        told = command->since;
        std::cerr << "tarvane-link: still no answer to " + PlainText(TextOf(*command)) +
                         "; the server hangs, or is at work for long\n"
                  << std::flush;
    }
}

} // namespace Tarvane::Link
