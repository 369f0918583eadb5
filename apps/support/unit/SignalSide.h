// The signal-processing side of the plug-in, played from sound files: what stands behind the link
// view where no real plug-in does. It is a capture core, and a player that plays to it as a host
// would; it is written against the public AudioUnit interface, so a host finds and opens it as it
// would any other component.
#pragma once

#include "apps/support/PropertyListeners.h"
#include "apps/support/sound/CaptureSource.h"
#include "apps/support/sound/SoundFile.h"
#include "apps/support/unit/CaptureReport.h"
#include "signal/CaptureCore.h"

#include <AudioUnit/AudioUnit.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace Tarvane
{

/// Gives a host the CSignalSide* of an instance, valid until the instance is disposed of. Read
/// only, global scope, element 0. The link view knows nothing of it.
constexpr AudioUnitPropertyID kSignalSideProperty_Self = 65000;

struct CSignalSettings
{
    std::filesystem::path captureFolder = "."; ///< must exist by the first capture
    double dSpeed = 1.0;                       ///< times real time; 0 is as fast as the disk allows
    SInt32 nTrack = 0;                         ///< what 64009 says until it is written
    /// Goes on with what an earlier run left in the capture folder, and leaves to the next what is
    /// not delivered.
    bool fContinues = true;
};

/// Calls to whoever sees what passes between view and server, on the view's thread.
struct CDeliveryHooks
{
    /// The view has read a record.
    std::function<void(const TNCaptureElement&)> fnBegins;
    /// The view acknowledges, which takes effect behind this call: the moment for TellOutcome.
    std::function<void(const TNElementAck&)> fnEnds;
};

/// One plug-in instance.
///
/// It captures while it is armed and has a source: the file is played in blocks of 512 frames on a
/// thread of the instance's own, and the next block comes when the one before is in its file and
/// has been reported by 64010. At the file's end it disarms itself; disarming earlier ends the
/// capture with the samples so far. A finished capture becomes an element: it is published under
/// the next index, 64000 is raised, and it waits at the end of a queue until its acknowledge has
/// come. What could not reach a server waits until one appears, and is then published anew; what
/// waits when the process ends is found again by the next instance with the same capture folder.
///
/// Order of notifications: 64004 for a change of the armed state comes before the first 64010 of
/// the capture that it starts and, at a file's end, before the element's 64000; 64004 for an
/// acknowledge comes after it has been taken in. 64006 is never raised.
///
/// All operations: any thread; none holds a lock while listeners, the log or the observer run.
class CSignalSide
{
public:
    static constexpr std::uint32_t kBlockFrames = 512;

    /// Makes the component known to the process, once. Open it with AudioComponentInstanceNew.
    static AudioComponent Register();
    /// Null when the unit is not one of ours.
    static CSignalSide* Of(AudioUnit pUnit);

    CSignalSide();
    /// As End.
    ~CSignalSide();

    /// Throws CUsageError when the speed is none. Takes effect with the next capture.
    void Configure(const CSignalSettings& settings);

    /// Where a line for every property write goes, with a reason where the write is refused, and
    /// one for what went wrong with a capture or its journal. Called on the thread concerned.
    void SetLog(std::function<void(const std::string&)> log);
    /// Writes a line there.
    void Log(const std::string& strLine);
    /// Told of every change of a capture's state but its beginning, after the listeners have been.
    /// Any thread.
    void SetObserver(std::function<void(const CCaptureReport&)> observer);

    /// The file that the next arming captures, or that is captured at once when the instance is
    /// armed and idle. Replaces one that still waits. Throws CUsageError, and keeps what was there,
    /// when the file or the path of its capture cannot be used.
    void SetSource(const CCaptureSource& source);

    /// How many captures have begun; those of earlier runs do not count.
    size_t CapturesBegun() const;
    /// True from the publication of the capture of this number to its acknowledge.
    bool IsWaiting(size_t nNumber) const;
    bool IsArmed() const { return m_core.IsArmed(); }
    /// True from a capture's start until it is published or has failed.
    bool IsCapturing() const;

    /// Captures that wait for a view, and those that wait for a server to appear; of earlier runs
    /// too.
    size_t Waiting() const { return m_core.Waiting(); }
    size_t Unreachable() const { return m_core.Unreachable(); }

    /// Ends capturing for good, as disposal does: a capture that is under way gets its file, and
    /// the observer is told of it. Nothing is raised any more. The properties can still be read and
    /// written. Not inside a notification.
    void End();

    /// Before anybody reads or writes a property. Without hooks an acknowledge alone says what
    /// became of its take.
    void SetDeliveryHooks(CDeliveryHooks hooks) { m_deliveryHooks = std::move(hooks); }
    /// What the process that holds the view tells; see CCaptureCore.
    void TellOutcome(SInt32 nElement, TakeOutcome outcome, const std::string& strWords,
                     double dExpectedPosition)
    {
        m_core.TellOutcome(nElement, outcome, strWords, dExpectedPosition);
    }
    void ServerAppeared() { m_core.ServerAppeared(); }
    void ViewJoined() { m_core.ViewJoined(); }

    /// What the component's entry points call. Sizes are those of the link protocol: a read takes a
    /// size of at least that, a write exactly that.
    void SetUnit(AudioUnit pUnit) { m_pUnit = pUnit; }
    OSStatus GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                             AudioUnitElement nElement, UInt32* pnSize, Boolean* pfWritable) const;
    OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         void* pData, UInt32* pnSize);
    OSStatus SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         const void* pData, UInt32 nSize);
    /// Asks the capture thread to end, for good, and waits for nothing.
    void Stop();
    CPropertyListeners& Listeners() { return m_listeners; }

private:
    struct Source
    {
        CSoundReader reader;
        double dPosition;
    };
    OSStatus Write(AudioUnitPropertyID nId, const void* pData, UInt32 nSize);
    void SetReady();

    void Work();
    void Play(Source& source);
    uint64_t PlayBlocks(Source& source);
    bool WaitForBlock(uint64_t nFrames, double dSampleRate,
                      std::chrono::steady_clock::time_point start);
    void EndPlaying();

    static void Hear(void* pUserData, CCaptureCore*, std::uint32_t nId, std::uint32_t nScope,
                     std::uint32_t nElement);
    void TakeChanged(const CTake& take);
    void Observe(const CCaptureReport& report);

    AudioUnit m_pUnit = nullptr;
    CPropertyListeners m_listeners;
    CDeliveryHooks m_deliveryHooks;

    mutable std::mutex m_mutex; ///< guards all up to the core
    std::condition_variable m_wake;
    CSignalSettings m_settings;
    std::function<void(const std::string&)> m_log;
    std::function<void(const CCaptureReport&)> m_observer;
    std::unique_ptr<Source> m_pSource;
    size_t m_nBegun = 0;
    CCaptureReport m_playing; ///< what is known of the capture being played
    std::map<std::uint32_t, CCaptureReport> m_captures; ///< not settled; by the number of the take
    bool m_fReady = false;                              ///< armed, and told so
    bool m_fBegin = false;                              ///< the player is to take the source
    bool m_fPlaying = false;                            ///< the player has taken it
    bool m_fStop = false;                               ///< disarmed while capturing
    bool m_fClosing = false;

    CCaptureCore m_core;
    std::thread m_thread;
};

} // namespace Tarvane
