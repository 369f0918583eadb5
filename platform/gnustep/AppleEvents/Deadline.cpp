#include "platform/gnustep/AppleEvents/Deadline.h"

#include <ctime>

namespace AppleEvents
{

std::uint64_t MonotonicMicroseconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::uint64_t(now.tv_sec) * 1'000'000 + std::uint64_t(now.tv_nsec) / 1'000;
}

Deadline Deadline::After(std::uint64_t microseconds)
{
    return Deadline(MonotonicMicroseconds() + microseconds);
}

std::uint64_t Deadline::Remaining() const
{
    if (m_instant == kForever)
        return kForever;
    const std::uint64_t now = MonotonicMicroseconds();
    return now < m_instant ? m_instant - now : 0;
}

} // namespace AppleEvents
