#pragma once

#include <cstdint>

namespace AppleEvents
{

inline constexpr std::uint64_t kForever = UINT64_MAX;

/// Microseconds on the clock that sd-bus counts its own timeouts with.
std::uint64_t MonotonicMicroseconds();

/// The instant at which a call gives up, whatever it is waiting for by then.
class Deadline
{
public:
    static Deadline After(std::uint64_t microseconds);
    static Deadline Never() { return Deadline(kForever); }

    bool Passed() const { return Remaining() == 0; }

    /// Microseconds; kForever when there is no end, as sd_bus_wait takes it.
    std::uint64_t Remaining() const;

private:
    explicit Deadline(std::uint64_t instant) : m_instant(instant) {}

    std::uint64_t m_instant;
};

} // namespace AppleEvents
