// Places on a timeline as people read them.
#pragma once

#include <cstdint>
#include <string>

namespace Tarvane
{

/// Seconds as h:mm:ss.mmm, to the nearest millisecond: 3723.0045 is "1:02:03.005", -1.5 is
/// "-0:00:01.500". What no clock can show (not finite, or 2^53 milliseconds and more) is
/// "-:--:--.---".
std::string FormatTimecode(double dSeconds);

/// The same for a place in samples. Without a positive rate it is "-:--:--.---".
std::string FormatTimecode(double dSamples, double dSampleRate);

/// A count of samples as a plain decimal number, to the nearest sample, never with an exponent.
std::string FormatSamples(double dSamples);

} // namespace Tarvane
