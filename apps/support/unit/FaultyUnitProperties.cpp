#include "apps/support/unit/FaultyUnit.h"
#include "apps/support/unit/PropertyLog.h"
#include "apps/support/unit/SignalSide.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>

namespace Tarvane
{
namespace
{

constexpr UInt32 kShortRecord = offsetof(TNCaptureElement, tDub);
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

// The track of all instances, where that is the fault.
std::atomic<SInt32> nSharedTrack = 0;

template <typename Value> Value Take(const void* pData)
{
    Value value;
    std::memcpy(&value, pData, sizeof value);
    return value;
}

template <typename Value> OSStatus Put(void* pData, const Value& value)
{
    std::memcpy(pData, &value, sizeof value);
    return noErr;
}

template <size_t nSize> void FillUp(char (&szPath)[nSize])
{
    const size_t nLength = strnlen(szPath, nSize);
    std::memset(szPath + nLength, 'x', nSize - nLength);
}

void Spoil(TNCaptureElement& record, const SignalFaults& faults)
{
    const auto has = [&](SignalFault fault) { return faults.count(fault) != 0; };
    if (has(SignalFault::PathsUnterminated))
    {
        FillUp(record.szGuidePath);
        FillUp(record.szDubPath);
    }
    if (has(SignalFault::PathUncarried))
    {
        const std::string strPath = UncarriedPath(record.szDubPath);
        const size_t nLength = strPath.copy(record.szDubPath, kTNPathSize - 1);
        record.szDubPath[nLength] = '\0';
    }
    if (has(SignalFault::RateWrong))
    {
        record.dSampleRate /= 2.0;
    }
    if (has(SignalFault::NanPosition))
    {
        record.tDub.dPosition = kNan;
    }
    if (has(SignalFault::InfinitePosition))
    {
        record.tDub.dPosition = kInfinite;
    }
    if (has(SignalFault::NanRegion))
    {
        record.tDub.dStart = record.tDub.dEnd = kNan;
    }
    if (has(SignalFault::InfiniteRegion))
    {
        record.tDub.dEnd = kInfinite;
    }
}

} // namespace

std::string UncarriedPath(const char* szPath)
{
    std::string strPath = szPath;
    const size_t nName = strPath.rfind('/') + 1;
    return strPath.insert(nName, 1, '"');
}

SInt32 CFaultyUnit::NextOfInner() const
{
    SInt32 nElement = -1;
    UInt32 nSize = sizeof nElement;
    AudioUnitGetProperty(m_inner.Unit(), TNProperty_NextElement, kAudioUnitScope_Global, 0,
                         &nElement, &nSize);
    return nElement;
}

OSStatus CFaultyUnit::RecordOfInner(SInt32 nElement, TNCaptureElement& record) const
{
    UInt32 nSize = sizeof record;
    return AudioUnitGetProperty(m_inner.Unit(), TNProperty_ElementInfo, kAudioUnitScope_Global,
                                static_cast<AudioUnitElement>(nElement), &record, &nSize);
}

OSStatus CFaultyUnit::GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                      AudioUnitElement nElement, UInt32* pnSize,
                                      Boolean* pfWritable) const
{
    if (Has(SignalFault::InfoMissing))
    {
        return kAudioUnitErr_InvalidProperty;
    }
    return AudioUnitGetPropertyInfo(m_inner.Unit(), nId, nScope, nElement, pnSize, pfWritable);
}

bool CFaultyUnit::IsRefused(AudioUnitPropertyID nId) const
{
    return Has(SignalFault::ReadsRefused) &&
           (nId == TNProperty_ArmCapture || nId == TNProperty_NextElement ||
            nId == TNProperty_SelectedTrack || nId == kTNProperty_CurrentCaptureLength);
}

OSStatus CFaultyUnit::GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    if (IsRefused(nId))
    {
        return kAudioUnitErr_InvalidProperty;
    }
    if (Has(SignalFault::Overrun))
    {
        return GetWhole(nId, nElement, pData, pnSize);
    }
    if (nId == TNProperty_ElementInfo)
    {
        return GetRecord(nElement, pData, pnSize);
    }
    if (nId == kTNProperty_CurrentCaptureLength && Has(SignalFault::LengthShort))
    {
        return GetShortLength(pData, pnSize);
    }
    const OSStatus nStatus =
        AudioUnitGetProperty(m_inner.Unit(), nId, nScope, nElement, pData, pnSize);
    if (nStatus == kAudioUnitErr_InvalidProperty && Has(SignalFault::UnknownAccepted))
    {
        return noErr;
    }
    if (nStatus != noErr)
    {
        return nStatus;
    }
    if (nId == TNProperty_NextElement)
    {
        return Put(pData, SpoilIndex(Take<SInt32>(pData)));
    }
    if (nId == TNProperty_SelectedTrack && Has(SignalFault::StateShared))
    {
        return Put(pData, nSharedTrack.load());
    }
    if (nId == kTNProperty_CurrentCaptureLength && Has(SignalFault::NanLength))
    {
        return Put(pData, kNan);
    }
    return noErr;
}

OSStatus CFaultyUnit::GetShortLength(void* pData, UInt32* pnSize) const
{
    Float64 dLength = 0.0;
    UInt32 nSize = sizeof dLength;
    const OSStatus nStatus = AudioUnitGetProperty(m_inner.Unit(), kTNProperty_CurrentCaptureLength,
                                                  kAudioUnitScope_Global, 0, &dLength, &nSize);
    if (nStatus != noErr || *pnSize < sizeof(Float32))
    {
        return nStatus != noErr ? nStatus : kAudioUnitErr_InvalidParameter;
    }
    *pnSize = sizeof(Float32);
    return Put(pData, static_cast<Float32>(dLength));
}

OSStatus CFaultyUnit::GetWhole(AudioUnitPropertyID nId, AudioUnitElement nElement, void* pData,
                               UInt32* pnSize)
{
    std::array<std::byte, sizeof(TNCaptureElement)> value;
    UInt32 nSize = value.size();
    const OSStatus nStatus = AudioUnitGetProperty(m_inner.Unit(), nId, kAudioUnitScope_Global,
                                                  nElement, value.data(), &nSize);
    if (nStatus == noErr)
    {
        std::memcpy(pData, value.data(), nSize);
        *pnSize = nSize;
    }
    return nStatus;
}

SInt32 CFaultyUnit::SpoilIndex(SInt32 nIndex)
{
    if (IsHidden())
    {
        return -1;
    }
    if (!Has(SignalFault::IndexNeverNegative))
    {
        return nIndex;
    }
    if (nIndex >= 0)
    {
        m_nLastElement = nIndex;
    }
    return m_nLastElement;
}

OSStatus CFaultyUnit::GetRecord(AudioUnitElement nElement, void* pData, UInt32* pnSize) const
{
    TNCaptureElement record;
    if (*pnSize < sizeof record)
    {
        return kAudioUnitErr_InvalidParameter;
    }
    const OSStatus nStatus = RecordOfInner(static_cast<SInt32>(nElement), record);
    if (nStatus != noErr || IsHidden())
    {
        return nStatus != noErr ? nStatus : kAudioUnitErr_InvalidElement;
    }
    if (Has(SignalFault::LastFirst))
    {
        std::lock_guard lock(m_mutex);
        if (nElement < m_records.size())
        {
            record = m_records[nElement];
        }
    }
    Spoil(record, m_faults);
    *pnSize = Has(SignalFault::RecordShort) ? kShortRecord : UInt32(sizeof record);
    std::memcpy(pData, &record, *pnSize);
    return noErr;
}

bool CFaultyUnit::IsIgnored(AudioUnitPropertyID nId, const void* pData) const
{
    constexpr size_t kPadding = sizeof(TNElementAck) - 1;
    return (nId == TNProperty_ElementDone && Has(SignalFault::AckIgnored)) ||
           (nId == TNProperty_ElementDone && Has(SignalFault::AckPadding) &&
            static_cast<const UInt8*>(pData)[kPadding] != 0) ||
           (nId == TNProperty_SetArmCapture && Has(SignalFault::ArmIgnored)) ||
           (nId == TNProperty_SelectedTrack && Has(SignalFault::TrackForgotten));
}

OSStatus CFaultyUnit::TakeAck(TNElementAck ack)
{
    if (Has(SignalFault::AckUnmatched))
    {
        ack.nElement = NextOfInner();
    }
    return AudioUnitSetProperty(m_inner.Unit(), TNProperty_ElementDone, kAudioUnitScope_Global, 0,
                                &ack, sizeof ack);
}

OSStatus CFaultyUnit::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    if (nId == kFaultyUnitProperty_Faults)
    {
        Begin(*static_cast<const SignalFaults*>(pData));
        return noErr;
    }
    if (IsIgnored(nId, pData))
    {
        CSignalSide::Of(m_inner.Unit())->Log(DescribeWrite(nId, pData, nSize) + " - ignored");
        return noErr;
    }
    if (nId == TNProperty_ElementDone && nSize == sizeof(TNElementAck))
    {
        return TakeAck(Take<TNElementAck>(pData));
    }
    if (nId == TNProperty_SelectedTrack && Has(SignalFault::StateShared))
    {
        nSharedTrack = Take<SInt32>(pData);
    }
    if (nId == TNProperty_SetArmCapture)
    {
        m_fArmReported = false;
    }
    const OSStatus nStatus =
        AudioUnitSetProperty(m_inner.Unit(), nId, nScope, nElement, pData, nSize);
    return nStatus == kAudioUnitErr_InvalidProperty && Has(SignalFault::UnknownAccepted) ? noErr
                                                                                         : nStatus;
}

} // namespace Tarvane
