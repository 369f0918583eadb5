#include "signal/TakeFormat.h"

#include <sndfile.h>

namespace Tarvane
{

int TakeFormat24Bit()
{
    return SF_FORMAT_RF64 | SF_FORMAT_PCM_24;
}

int TakeFormatFloat()
{
    return SF_FORMAT_RF64 | SF_FORMAT_FLOAT;
}

} // namespace Tarvane
