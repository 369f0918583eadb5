#include "apps/support/event/EventReceiver.h"

#include <stdexcept>
#include <string>

namespace Tarvane
{
namespace
{

std::string WhyNotInstalled(OSErr nStatus)
{
    switch (nStatus)
    {
    case errAEDuplicateHandler:
        return "another server answers on this session bus; end it first";
    case procNotFound:
        return "there is no session bus; start one, with dbus-run-session for instance";
    default:
        return "cannot receive events: status " + std::to_string(nStatus);
    }
}

} // namespace

void ReceiveEvents(AEEventClass eventClass, AEEventID id, AEEventHandlerUPP handler, void* pRefcon)
{
    const OSErr nStatus = AEInstallEventHandler(eventClass, id, handler, pRefcon, false);
    if (nStatus != noErr)
        throw std::runtime_error(WhyNotInstalled(nStatus));
}

} // namespace Tarvane
