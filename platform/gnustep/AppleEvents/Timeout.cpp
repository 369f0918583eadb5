#include "platform/gnustep/AppleEvents/Timeout.h"

#include <AE/AppleEvents.h>

#include <charconv>
#include <cstdlib>
#include <cstring>

namespace AppleEvents
{
namespace
{

constexpr std::uint64_t kTicksPerSecond = 60;
constexpr std::uint64_t kMicrosecondsPerSecond = 1'000'000;
constexpr SInt32 kOneMinuteInTicks = 3600;

} // namespace

SInt32 DefaultTimeoutTicks(const char* szVariable)
{
    if (!szVariable)
        return kOneMinuteInTicks;
    const char* const end = szVariable + std::strlen(szVariable);
    SInt32 ticks = 0;
    const auto [stop, error] = std::from_chars(szVariable, end, ticks);
    const bool sensible =
        error == std::errc() && stop == end && ticks >= 1 && ticks <= kOneMinuteInTicks;
    return sensible ? ticks : kOneMinuteInTicks;
}

std::optional<Deadline> DeadlineForTicks(SInt32 ticks)
{
    if (ticks == kNoTimeOut)
        return Deadline::Never();
    if (ticks == kAEDefaultTimeout)
        ticks = DefaultTimeoutTicks(std::getenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS"));
    if (ticks < 0)
        return std::nullopt;
    return Deadline::After(std::uint64_t(ticks) * kMicrosecondsPerSecond / kTicksPerSecond);
}

} // namespace AppleEvents
