// A plug-in that has always one and the same capture to deliver.
#pragma once

#include <AudioUnit/AudioUnit.h>

#include <string>

namespace Bench
{

/// Opened on first use; lives as long as the process.
AudioUnit Unit();

/// The file of the capture: UTF-8, a full path.
void SetCaptureFile(const std::string& strPath);

/// How many captures were acknowledged as delivered, and as not.
struct Acknowledged
{
    int nDelivered = 0;
    int nNotDelivered = 0;
};
Acknowledged AcknowledgedSoFar();

} // namespace Bench
