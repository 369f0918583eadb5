#include "plugin/view/SocketUnit.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/UnitComponent.h"
#include "apps/support/delivery/DeliveryWatch.h"
#include "plugin/view/PlugInConnection.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <shared_mutex>

namespace Tarvane
{
namespace
{

std::atomic<CPlugInConnection*> s_pConnection{nullptr};
std::atomic<CDeliveryWatch*> s_pDeliveries{nullptr};
// Held while a notification is raised: a unit goes only when none is under way.
std::shared_mutex s_unitMutex;
CSocketUnit* s_pUnit = nullptr;

void BeginDelivery(const void* pData, UInt32 nSize)
{
    TNCaptureElement record;
    if (nSize != sizeof record)
        return;
    std::memcpy(&record, pData, sizeof record);
    s_pDeliveries.load()->Begin(record);
}

// Ahead of the acknowledge, which says no more than that it was delivered or not.
void TellOutcome(CPlugInConnection& connection, const void* pData, UInt32 nSize)
{
    TNElementAck ack;
    if (nSize != sizeof ack)
        return;
    std::memcpy(&ack, pData, sizeof ack);
    const CDeliveryReport report = s_pDeliveries.load()->Conclude(ack.fNotDelivered != 0);
    CFrame frame{.kind = FrameKind::Outcome,
                 .nId = static_cast<std::uint32_t>(report.outcome),
                 .nElement = static_cast<std::uint32_t>(ack.nElement)};
    frame.data.resize(sizeof report.dExpectedPosition);
    std::memcpy(frame.data.data(), &report.dExpectedPosition, sizeof report.dExpectedPosition);
    connection.Tell(frame, report.strWords);
}

} // namespace

AudioComponent CSocketUnit::Register(CPlugInConnection& connection, CDeliveryWatch& deliveries)
{
    s_pConnection = &connection;
    s_pDeliveries = &deliveries;
    static const AudioComponent pComponent =
        UnitComponent<CSocketUnit>::Register('TnLk', "Tarvane: Link");
    return pComponent;
}

void CSocketUnit::Raise(AudioUnitPropertyID nId)
{
    const std::shared_lock lock(s_unitMutex);
    if (s_pUnit != nullptr)
        s_pUnit->m_listeners.Notify(s_pUnit->m_pUnit, nId, kAudioUnitScope_Global, 0);
}

CSocketUnit::CSocketUnit()
{
    const std::unique_lock lock(s_unitMutex);
    s_pUnit = this;
}

CSocketUnit::~CSocketUnit()
{
    const std::unique_lock lock(s_unitMutex);
    s_pUnit = nullptr;
}

OSStatus CSocketUnit::StatusWithoutReply() const
{
    return m_listeners.IsNotifyingOnThisThread() ? kAudioUnitErr_CannotDoInCurrentContext
                                                 : kAudioUnitErr_Uninitialized;
}

OSStatus CSocketUnit::GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                      AudioUnitElement nElement, UInt32* pnSize,
                                      Boolean* pfWritable)
{
    if (nScope != kAudioUnitScope_Global)
        return kAudioUnitErr_InvalidScope;
    const auto reply =
        s_pConnection.load()->Ask({.kind = FrameKind::Info, .nId = nId, .nElement = nElement});
    if (!reply)
        return StatusWithoutReply();
    if (reply->nStatus == noErr && pnSize != nullptr)
        *pnSize = reply->nSize;
    if (reply->nStatus == noErr && pfWritable != nullptr)
        *pfWritable = reply->nId == 1;
    return reply->nStatus;
}

OSStatus CSocketUnit::GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    if (nScope != kAudioUnitScope_Global)
        return kAudioUnitErr_InvalidScope;
    if (pData == nullptr || pnSize == nullptr)
        return kAudioUnitErr_InvalidParameter;
    const auto reply = s_pConnection.load()->Ask(
        {.kind = FrameKind::Get, .nId = nId, .nElement = nElement, .nSize = *pnSize});
    if (!reply)
        return StatusWithoutReply();
    if (reply->nStatus != noErr)
        return reply->nStatus;
    if (reply->data.size() > *pnSize)
        return kAudioUnitErr_InvalidParameter;
    std::memcpy(pData, reply->data.data(), reply->data.size());
    *pnSize = static_cast<UInt32>(reply->data.size());
    if (nId == TNProperty_ElementInfo)
        BeginDelivery(pData, *pnSize);
    return noErr;
}

OSStatus CSocketUnit::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    if (nScope != kAudioUnitScope_Global)
        return kAudioUnitErr_InvalidScope;
    if (pData == nullptr || nSize > kMaxFrameData)
        return kAudioUnitErr_InvalidPropertyValue;
    if (nId == TNProperty_ElementDone)
        TellOutcome(*s_pConnection, pData, nSize);
    const auto* pBytes = static_cast<const std::uint8_t*>(pData);
    const auto reply = s_pConnection.load()->Ask({.kind = FrameKind::Set,
                                                  .nId = nId,
                                                  .nElement = nElement,
                                                  .data = {pBytes, pBytes + nSize}});
    return reply ? reply->nStatus : StatusWithoutReply();
}

} // namespace Tarvane
