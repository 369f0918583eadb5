#include "apps/conform/plugin/PlugInPeer.h"

#include <CoreFoundation/CoreFoundation.h>

#include <chrono>
#include <thread>

namespace Tarvane::Conform
{

bool WaitUntil(double dSeconds, const std::function<bool()>& condition)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(dSeconds);
    while (!condition())
    {
        if (Clock::now() >= end)
            return false;
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.0, true);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void LetPass(double dSeconds)
{
    WaitUntil(dSeconds, [] { return false; });
}

CPlugInPeer::CPlugInPeer(const PlugInBench& bench) : m_bench(bench)
{
    const OSStatus nStatus = AudioComponentInstanceNew(bench.library.Component(), &m_pUnit);
    if (nStatus != noErr || m_pUnit == nullptr)
        throw CBroken("no instance can be opened: status " + std::to_string(nStatus));
    m_pListener = &CListener::Add(m_pUnit);
}

void CPlugInPeer::Dispose()
{
    if (m_pUnit != nullptr)
        AudioComponentInstanceDispose(m_pUnit);
    m_pUnit = nullptr;
}

OSStatus CPlugInPeer::Get(AudioUnitPropertyID nId, AudioUnitElement nElement, void* pData,
                          UInt32& nSize) const
{
    return AudioUnitGetProperty(m_pUnit, nId, kAudioUnitScope_Global, nElement, pData, &nSize);
}

OSStatus CPlugInPeer::Set(AudioUnitPropertyID nId, const void* pData, UInt32 nSize) const
{
    return AudioUnitSetProperty(m_pUnit, nId, kAudioUnitScope_Global, 0, pData, nSize);
}

void CPlugInPeer::AskToArm(bool fArm) const
{
    const TNArmRequest request{static_cast<UInt8>(fArm), 0};
    Set(TNProperty_SetArmCapture, &request, sizeof request);
}

void CPlugInPeer::Arm() const
{
    AskToArm(true);
    if (!WaitUntil(m_bench.dTimeout, [this] { return IsArmed(true); }))
        throw CNotExaminable("the plug-in does not arm");
}

void CPlugInPeer::Play() const
{
    if (!m_bench.library.CanPlay())
        throw CNotExaminable("the library exports no TarvaneConformPlay, which makes the plug-in "
                             "capture for a moment (apps/support/PlugInEntry.h)");
    Arm();
    const OSStatus nStatus = m_bench.library.Play(m_pUnit);
    if (nStatus != noErr)
        throw CNotExaminable("TarvaneConformPlay answered with status " + std::to_string(nStatus));
}

bool CPlugInPeer::PlayUntilAnnounced() const
{
    const std::size_t nBefore = Heard().Count(TNProperty_Elements);
    Play();
    return WaitUntil(m_bench.dTimeout,
                     [&] { return Heard().Count(TNProperty_Elements) > nBefore; });
}

void CPlugInPeer::Capture() const
{
    if (!PlayUntilAnnounced())
        throw CNotExaminable("no capture is announced");
}

SInt32 CPlugInPeer::NextElement() const
{
    const std::optional<SInt32> index = Read<SInt32>(TNProperty_NextElement);
    if (index.value_or(-1) < 0)
        throw CNotExaminable("an element is announced, and there is none");
    return *index;
}

SInt32 CPlugInPeer::CaptureElement() const
{
    Capture();
    return NextElement();
}

TNCaptureElement CPlugInPeer::Record(SInt32 nElement) const
{
    TNCaptureElement record;
    UInt32 nSize = sizeof record;
    Get(TNProperty_ElementInfo, static_cast<AudioUnitElement>(nElement), &record, nSize);
    return record;
}

void CPlugInPeer::Acknowledge(SInt32 nElement, UInt8 nPadding) const
{
    const TNElementAck ack{nElement, 1, 0, 1};
    UInt8 bytes[sizeof ack];
    std::memcpy(bytes, &ack, sizeof ack);
    bytes[sizeof ack - 1] = nPadding;
    Set(TNProperty_ElementDone, bytes, sizeof bytes);
}

bool CPlugInPeer::NothingWaits() const
{
    return WaitUntil(m_bench.dTimeout,
                     [this] { return Read<SInt32>(TNProperty_NextElement).value_or(0) < 0; });
}

} // namespace Tarvane::Conform
