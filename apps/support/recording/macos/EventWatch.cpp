#include "apps/support/recording/EventWatch.h"

namespace Tarvane
{

bool RecordEvents(CRecorder*)
{
    return false;
}

} // namespace Tarvane
