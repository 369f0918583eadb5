// Audio that tells where on the timeline it belongs: a wrong position, a gap and a doubled block
// show in every sample.
#pragma once

#include <cstdint>

namespace TarvaneTest
{

/// 24 bits, in full scale of 2^23; exact as a float and in a file of 24 bits.
inline std::int32_t TimelineSample(std::int64_t nPosition, unsigned nChannel)
{
    auto nBits = static_cast<std::uint64_t>(nPosition) * 64 + nChannel;
    nBits = (nBits ^ (nBits >> 30)) * 0xBF58476D1CE4E5B9ULL;
    nBits = (nBits ^ (nBits >> 27)) * 0x94D049BB133111EBULL;
    return static_cast<std::int32_t>((nBits >> 40) & 0xFFFFFF) - 0x800000;
}

inline float TimelineFloat(std::int64_t nPosition, unsigned nChannel)
{
    return static_cast<float>(TimelineSample(nPosition, nChannel)) / 0x800000;
}

} // namespace TarvaneTest
