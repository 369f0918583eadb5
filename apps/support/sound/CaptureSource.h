// What is to be captured from, and where it lies on the timeline.
#pragma once

#include <filesystem>

namespace Tarvane
{

/// A sound file, and where on the host's timeline its first sample lies.
struct CCaptureSource
{
    std::filesystem::path file;
    double dPosition = 0; ///< samples
};

/// Where the next file lies when it is laid behind this one: its end, in samples of the next file's
/// rate, rounded up. A rate of 0 is that of the next file.
double PositionBehind(double dPosition, double dFrames, double dRate, double dNextRate);

} // namespace Tarvane
