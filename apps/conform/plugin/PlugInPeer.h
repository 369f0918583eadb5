// The plug-in under examination, as it shows itself to a view.
#pragma once

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/conform/plugin/Listener.h"
#include "apps/conform/shared/Rule.h"
#include "apps/support/unit/PlugInLibrary.h"

#include <cstring>
#include <functional>
#include <optional>

namespace Tarvane::Conform
{

/// What the examinations work with.
struct PlugInBench
{
    const CPlugInLibrary& library;
    double dTimeout;       ///< seconds that what must come may take
    double dMoment = 0.05; ///< seconds in which what must not come would have come
};

/// Runs the main thread's loop until the condition holds; false when the time is over.
bool WaitUntil(double dSeconds, const std::function<bool()>& condition);
void LetPass(double dSeconds);

/// An instance with a listener. Does what the view does, and waits where the view would be called
/// later. Main thread.
class CPlugInPeer
{
public:
    /// Throws CBroken when there is no instance to be had.
    explicit CPlugInPeer(const PlugInBench& bench);
    ~CPlugInPeer() { Dispose(); }
    CPlugInPeer(const CPlugInPeer&) = delete;
    CPlugInPeer& operator=(const CPlugInPeer&) = delete;

    void Dispose();

    AudioUnit Unit() const { return m_pUnit; }
    /// What has been heard of the instance.
    const CListener& Heard() const { return *m_pListener; }

    /// nSize: the room, and afterwards what the plug-in says.
    OSStatus Get(AudioUnitPropertyID nId, AudioUnitElement nElement, void* pData,
                 UInt32& nSize) const;
    OSStatus Set(AudioUnitPropertyID nId, const void* pData, UInt32 nSize) const;

    /// The value in element 0; nothing when it is not written. The status says nothing to a view.
    template <typename Value> std::optional<Value> Read(AudioUnitPropertyID nId) const
    {
        Value value;
        Value untouched;
        std::memset(&value, 0x5A, sizeof value);
        std::memset(&untouched, 0x5A, sizeof untouched);
        UInt32 nSize = sizeof value;
        Get(nId, 0, &value, nSize);
        if (std::memcmp(&value, &untouched, sizeof value) == 0)
            return std::nullopt;
        return value;
    }

    /// Asks for the armed state, and waits for nothing.
    void AskToArm(bool fArm) const;
    bool IsArmed(bool fArmed) const { return Read<UInt8>(TNProperty_ArmCapture) == fArmed; }
    /// Throws CNotExaminable when it is not armed in time.
    void Arm() const;

    // Arms and plays. Throw CNotExaminable when that cannot be done.

    /// Waits for nothing.
    void Play() const;
    /// False when no element is announced in time.
    bool PlayUntilAnnounced() const;
    /// Throws CNotExaminable in that case.
    void Capture() const;

    /// What 64007 says upon an announcement. Throws CNotExaminable when that is no element.
    SInt32 NextElement() const;
    /// Captures, and returns its index.
    SInt32 CaptureElement() const;
    /// What is not written of it is zero.
    TNCaptureElement Record(SInt32 nElement) const;
    void Acknowledge(SInt32 nElement, UInt8 nPadding = 0) const;
    /// Whether 64007 comes to say that no element waits.
    bool NothingWaits() const;

private:
    const PlugInBench& m_bench;
    AudioUnit m_pUnit = nullptr;
    CListener* m_pListener = nullptr;
};

} // namespace Tarvane::Conform
