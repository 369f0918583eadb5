#include "apps/link/doctor/EventBus.h"

namespace Tarvane::Link
{

BusState LookAtEventBus(SInt32)
{
    return {BusState::Works, "Apple events are part of the system", ""};
}

std::string CarriersError()
{
    return "";
}

} // namespace Tarvane::Link
