// Where captures of sound files go, and what they are made of.
#pragma once

#include "apps/support/sound/SoundFile.h"
#include "signal/TakeFormat.h"

#include <filesystem>

namespace Tarvane
{

/// Container and sample form are those of the source, so the samples are the same bit for bit. A
/// lossy form cannot be written again unchanged: what it decodes to is kept as 32-bit float WAV.
CTakeFormat TakeFormatFor(const CSoundReader& source);

/// Throw CUsageError and touch nothing. The first looks at the path of a source's capture, whether
/// or not the folder is there: it must fit the record in which it is published, and a script must
/// be able to name it. The second looks at the folder: it must be there, and one may write into it.
void CheckCapturePath(const std::filesystem::path& folder, const CSoundReader& source);
void CheckCaptureFolder(const std::filesystem::path& folder);

} // namespace Tarvane
