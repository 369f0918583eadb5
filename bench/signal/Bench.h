// The measurements; each prints its figures and answers whether they are within its bounds.
#pragma once

#include <filesystem>

namespace BenchSignal
{

/// Process of 64 frames of stereo in real time, beside the bare copy into a ring of the same kind.
bool MeasureAudioThread(const std::filesystem::path& folder);

/// 64 channels at 96 kHz for as many seconds, while the disk stands still for two of them.
bool CaptureOnASlowDisk(const std::filesystem::path& folder, int nSeconds);

} // namespace BenchSignal
