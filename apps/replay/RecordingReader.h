// From the file to what it holds.
#pragma once

#include "apps/replay/Recording.h"

#include <istream>

namespace Tarvane::Replay
{

/// Reads every line that is good and leaves the others out; the first of those is named. Throws
/// CUsageError, beginning with the name, when the first line does not say that this is a recording,
/// or says that it is of a later format.
Recording ReadRecording(std::istream& stream, const std::string& strName);

/// The same of a file. Throws CUsageError as well when it cannot be read.
Recording ReadRecordingFile(const std::string& strFile);

} // namespace Tarvane::Replay
