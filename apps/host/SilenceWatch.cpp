#include "apps/host/SilenceWatch.h"

#include <utility>

namespace Tarvane
{
namespace
{

constexpr int kLooksAPatience = 5;

} // namespace

CSilenceWatch::CSilenceWatch(const CCommandWatch& commands, std::chrono::milliseconds patience,
                             std::function<void(const std::string&)> fnTell)
    : m_commands(commands), m_patience(patience), m_fnTell(std::move(fnTell)),
      m_thread([this] { Watch(); })
{
}

CSilenceWatch::~CSilenceWatch()
{
    {
        const std::lock_guard lock(m_mutex);
        m_fEnding = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

std::string CSilenceWatch::Take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_strLast, {});
}

void CSilenceWatch::Watch()
{
    std::unique_lock lock(m_mutex);
    while (!m_wake.wait_for(lock, m_patience / kLooksAPatience, [this] { return m_fEnding; }))
    {
        const auto command = m_commands.UnderWay();
        if (!command || std::chrono::steady_clock::now() - command->since < m_patience)
            continue;
        m_strLast = TextOf(*command);
        if (std::exchange(m_told, command->since) == command->since)
            continue;
        const std::string strText = m_strLast;
        lock.unlock();
        m_fnTell(strText);
        lock.lock();
    }
}

} // namespace Tarvane
