#include "apps/server/event/EventFlood.h"

#include <stdexcept>
#include <string>

namespace Tarvane::Server
{

namespace
{

constexpr AEEventClass kFloodClass = 'TKNE';
constexpr AEEventID kFloodId = 'Flod';

// More than the receiver handles in one turn of its run loop.
constexpr int kUnderWay = 100;

OSErr MakeEvent(OSType nSignature, AppleEvent* pEvent)
{
    AEDesc target{typeNull, nullptr};
    OSErr nStatus =
        AECreateDesc(typeApplSignature, &nSignature, static_cast<Size>(sizeof nSignature), &target);
    if (nStatus == noErr)
        nStatus = AECreateAppleEvent(kFloodClass, kFloodId, &target, kAutoGenerateReturnID,
                                     kAnyTransactionID, pEvent);
    AEDisposeDesc(&target);
    return nStatus;
}

OSErr Send(const AppleEvent* pEvent)
{
    return AESend(pEvent, nullptr, kAENoReply, kAENormalPriority, kAEDefaultTimeout, nullptr,
                  nullptr);
}

} // namespace

CEventFlood::~CEventFlood()
{
    if (m_event.descriptorType == typeNull)
        return;
    AERemoveEventHandler(kFloodClass, kFloodId, Receive, false);
    AEDisposeDesc(&m_event);
}

void CEventFlood::Begin(OSType nSignature)
{
    if (m_event.descriptorType != typeNull)
        return;
    OSErr nStatus = MakeEvent(nSignature, &m_event);
    if (nStatus == noErr)
        nStatus = AEInstallEventHandler(kFloodClass, kFloodId, Receive, this, false);
    for (int n = 0; n < kUnderWay && nStatus == noErr; ++n)
        nStatus = Send(&m_event);
    if (nStatus != noErr)
        throw std::runtime_error("the planned flood of events has failed with status " +
                                 std::to_string(nStatus));
}

OSErr CEventFlood::Receive(const AppleEvent*, AppleEvent*, void* pFlood)
{
    return Send(&static_cast<CEventFlood*>(pFlood)->m_event);
}

} // namespace Tarvane::Server
