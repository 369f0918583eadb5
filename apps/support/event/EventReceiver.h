// How a program comes to receive Apple events.
#pragma once

#include <Carbon/Carbon.h>

namespace Tarvane
{

/// Has the handler called for events of this class and id; the program's signature has been set.
/// Main thread. Throws std::runtime_error, which says what to do, when another program receives
/// them already or there is no bus.
void ReceiveEvents(AEEventClass eventClass, AEEventID id, AEEventHandlerUPP handler, void* pRefcon);

} // namespace Tarvane
