#include "apps/support/text/Timecode.h"

#include <cmath>
#include <cstdio>

namespace Tarvane
{
namespace
{

constexpr const char* kNoTimecode = "-:--:--.---";

} // namespace

std::string FormatTimecode(double dSeconds)
{
    const double dMilliseconds = std::round(dSeconds * 1000.0);
    if (!(std::fabs(dMilliseconds) < 9007199254740992.0))
    {
        return kNoTimecode;
    }
    const auto nTotal = static_cast<long long>(std::fabs(dMilliseconds));
    char sz[64];
    std::snprintf(sz, sizeof sz, "%s%lld:%02lld:%02lld.%03lld", dMilliseconds < 0 ? "-" : "",
                  nTotal / 3600000, nTotal / 60000 % 60, nTotal / 1000 % 60, nTotal % 1000);
    return sz;
}

std::string FormatTimecode(double dSamples, double dSampleRate)
{
    return dSampleRate > 0 ? FormatTimecode(dSamples / dSampleRate) : kNoTimecode;
}

std::string FormatSamples(double dSamples)
{
    char sz[512];
    std::snprintf(sz, sizeof sz, "%.0f", std::round(dSamples) + 0.0);
    return sz;
}

} // namespace Tarvane
