#include "apps/support/FaultyUnit.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/PropertyLog.h"
#include "apps/support/SignalSide.h"
#include "apps/support/UnitComponent.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <limits>
#include <stdexcept>

namespace Tarvane
{
namespace
{

// The ids that a view listens to.
constexpr AudioUnitPropertyID kHeard[] = {TNProperty_Elements, TNProperty_ArmCapture,
                                          TNProperty_CurrentSampleInTimeLine,
                                          kTNProperty_CurrentCaptureLength};

constexpr UInt32 kShortRecord = offsetof(TNCaptureElement, tDub);
constexpr int kManyThreads = 16;
constexpr int kStormAMillisecond = 100;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

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

AudioComponent CFaultyUnit::Register()
{
    static const AudioComponent pComponent =
        UnitComponent<CFaultyUnit>::Register('TnLf', "Tarvane: Faulty Link");
    return pComponent;
}

CFaultyUnit::CFaultyUnit()
{
    if (AudioComponentInstanceNew(CSignalSide::Register(), &m_pInner) != noErr)
    {
        throw std::runtime_error("the signal side cannot be opened.");
    }
    for (const AudioUnitPropertyID nId : kHeard)
    {
        AudioUnitAddPropertyListener(m_pInner, nId, &Hear, this);
    }
}

CFaultyUnit::~CFaultyUnit()
{
    Stop();
    for (std::thread& thread : m_threads)
    {
        thread.join();
    }
    AudioComponentInstanceDispose(m_pInner);
}

void CFaultyUnit::Begin(const SignalFaults& faults)
{
    m_faults = faults;
    const int nThreads =
        Has(SignalFault::SixteenThreads) || Has(SignalFault::DisposedWhileNotifying) ? kManyThreads
                                                                                     : 0;
    for (int n = 0; n < nThreads; ++n)
    {
        m_threads.emplace_back([this] { Storm(1); });
    }
    if (Has(SignalFault::Storm))
    {
        m_threads.emplace_back([this] { Storm(kStormAMillisecond); });
    }
}

void CFaultyUnit::Storm(int nTimesAMillisecond)
{
    auto next = std::chrono::steady_clock::now();
    while (!m_fEnding)
    {
        for (int n = 0; n < nTimesAMillisecond; ++n)
        {
            Notify(kTNProperty_CurrentCaptureLength);
        }
        next += std::chrono::milliseconds(1);
        std::this_thread::sleep_until(next);
    }
}

void CFaultyUnit::Hear(void* pUserData, AudioUnit, AudioUnitPropertyID nId, AudioUnitScope,
                       AudioUnitElement)
{
    static_cast<CFaultyUnit*>(pUserData)->PassOn(nId);
}

bool CFaultyUnit::IsDropped(AudioUnitPropertyID nId) const
{
    return (nId == TNProperty_Elements && Has(SignalFault::ElementsUnannounced)) ||
           (nId == TNProperty_ArmCapture && Has(SignalFault::ArmUnreported));
}

void CFaultyUnit::PassOn(AudioUnitPropertyID nId)
{
    if (IsDropped(nId))
    {
        return;
    }
    if (nId == TNProperty_Elements && Has(SignalFault::FileDiscarded))
    {
        DiscardFile();
    }
    Notify(nId);
    if (nId == TNProperty_Elements && Has(SignalFault::IndexNeverNegative))
    {
        Notify(nId);
    }
}

void CFaultyUnit::Notify(AudioUnitPropertyID nId)
{
    m_listeners.Notify(m_pUnit, nId, kAudioUnitScope_Global, 0);
}

void CFaultyUnit::DiscardFile() const
{
    SInt32 nElement = -1;
    UInt32 nSize = sizeof nElement;
    AudioUnitGetProperty(m_pInner, TNProperty_NextElement, kAudioUnitScope_Global, 0, &nElement,
                         &nSize);
    TNCaptureElement record;
    nSize = sizeof record;
    if (AudioUnitGetProperty(m_pInner, TNProperty_ElementInfo, kAudioUnitScope_Global,
                             static_cast<AudioUnitElement>(nElement), &record, &nSize) == noErr)
    {
        std::error_code ignored;
        std::filesystem::remove(record.szDubPath, ignored);
    }
}

OSStatus CFaultyUnit::GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                      AudioUnitElement nElement, UInt32* pnSize,
                                      Boolean* pfWritable) const
{
    return AudioUnitGetPropertyInfo(m_pInner, nId, nScope, nElement, pnSize, pfWritable);
}

OSStatus CFaultyUnit::GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    if (nId == TNProperty_ElementInfo)
    {
        return GetRecord(nElement, pData, pnSize);
    }
    const OSStatus nStatus = AudioUnitGetProperty(m_pInner, nId, nScope, nElement, pData, pnSize);
    if (nStatus == noErr && nId == TNProperty_NextElement && Has(SignalFault::IndexNeverNegative))
    {
        SInt32 nIndex = 0;
        std::memcpy(&nIndex, pData, sizeof nIndex);
        if (nIndex >= 0)
        {
            m_nLastElement = nIndex;
        }
        nIndex = m_nLastElement;
        std::memcpy(pData, &nIndex, sizeof nIndex);
    }
    return nStatus;
}

OSStatus CFaultyUnit::GetRecord(AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    TNCaptureElement record;
    UInt32 nSize = std::min<UInt32>(*pnSize, sizeof record);
    const OSStatus nStatus = AudioUnitGetProperty(
        m_pInner, TNProperty_ElementInfo, kAudioUnitScope_Global, nElement, &record, &nSize);
    if (nStatus != noErr)
    {
        return nStatus;
    }
    Spoil(record, m_faults);
    *pnSize = Has(SignalFault::RecordShort) ? kShortRecord : nSize;
    std::memcpy(pData, &record, *pnSize);
    return noErr;
}

bool CFaultyUnit::IsIgnored(AudioUnitPropertyID nId) const
{
    return (nId == TNProperty_ElementDone && Has(SignalFault::AckIgnored)) ||
           (nId == TNProperty_SetArmCapture && Has(SignalFault::ArmIgnored)) ||
           (nId == TNProperty_SelectedTrack && Has(SignalFault::TrackForgotten));
}

OSStatus CFaultyUnit::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                  AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    if (nId == kFaultyUnitProperty_Faults)
    {
        Begin(*static_cast<const SignalFaults*>(pData));
        return noErr;
    }
    if (IsIgnored(nId))
    {
        CSignalSide::Of(m_pInner)->Log(DescribeWrite(nId, pData, nSize) + " - ignored");
        return noErr;
    }
    return AudioUnitSetProperty(m_pInner, nId, nScope, nElement, pData, nSize);
}

} // namespace Tarvane
