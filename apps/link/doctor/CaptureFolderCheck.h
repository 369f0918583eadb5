// Whether the server can read what captures leave behind.
#pragma once

#include "apps/link/doctor/Examiner.h"

namespace Tarvane::Link
{

/// Writes a short sound file into the folder, asks whether the first track has it already, which
/// changes nothing, and removes the file again. Then asks once more: a server that does not miss
/// the file does not tell what it can read. Throws CUsageError when there is no such folder.
Finding CheckCaptureFolder(const CExaminer& examiner);

} // namespace Tarvane::Link
