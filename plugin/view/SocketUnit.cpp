#include "plugin/view/SocketUnit.h"

#include "apps/support/UnitComponent.h"
#include "plugin/view/PlugInConnection.h"

#include <atomic>
#include <cstring>

namespace Tarvane
{
namespace
{

std::atomic<CPlugInConnection*> s_pConnection{nullptr};
std::atomic<CSocketUnit*> s_pUnit{nullptr};

} // namespace

AudioComponent CSocketUnit::Register(CPlugInConnection& connection)
{
    s_pConnection = &connection;
    static const AudioComponent pComponent =
        UnitComponent<CSocketUnit>::Register('TnLk', "Tarvane: Link");
    return pComponent;
}

void CSocketUnit::Raise(AudioUnitPropertyID nId)
{
    if (CSocketUnit* pUnit = s_pUnit)
        pUnit->m_listeners.Notify(pUnit->m_pUnit, nId, kAudioUnitScope_Global, 0);
}

CSocketUnit::CSocketUnit()
{
    s_pUnit = this;
}

CSocketUnit::~CSocketUnit()
{
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
    return noErr;
}

OSStatus CSocketUnit::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    if (nScope != kAudioUnitScope_Global)
        return kAudioUnitErr_InvalidScope;
    if (pData == nullptr || nSize > kMaxFrameData)
        return kAudioUnitErr_InvalidPropertyValue;
    const auto* pBytes = static_cast<const std::uint8_t*>(pData);
    const auto reply = s_pConnection.load()->Ask({.kind = FrameKind::Set,
                                                  .nId = nId,
                                                  .nElement = nElement,
                                                  .data = {pBytes, pBytes + nSize}});
    return reply ? reply->nStatus : StatusWithoutReply();
}

} // namespace Tarvane
