// The signal-processing side of the plug-in, played from sound files: what stands behind the link
// view where no real plug-in does. It is written against the public AudioUnit interface, so a host
// finds and opens it as it would any other component.
#pragma once

#include "apps/support/CaptureReport.h"
#include "apps/support/PropertyListeners.h"
#include "apps/support/SoundFile.h"

#include <AudioUnit/AudioUnit.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace Tarvane
{

class CDubFile;

// Gives a host the CSignalSide* of an instance, valid until the instance is disposed of. Read only,
// global scope, element 0. The link view knows nothing of it.
constexpr AudioUnitPropertyID kSignalSideProperty_Self = 65000;

// A sound file, and where on the host's timeline its first sample lies.
struct CCaptureSource
{
    std::filesystem::path file;
    double dPosition = 0; // samples
};

// Where the next file lies when it is laid behind this one: its end, in samples of the next file's
// rate, rounded up. A rate of 0 is that of the next file.
double PositionBehind(double dPosition, double dFrames, double dRate, double dNextRate);

struct CSignalSettings
{
    std::filesystem::path captureFolder = "."; // must exist by the first capture
    double dSpeed = 1.0;                       // times real time; 0 is as fast as the disk allows
    SInt32 nTrack = 0;                         // what 64009 says until it is written
};

// One plug-in instance.
//
// It captures while it is armed and has a source: the file is played in blocks of 512 frames on a
// thread of the instance's own, each block is written to the dub file and reported by 64010. At the
// file's end it disarms itself; disarming earlier ends the capture with the samples so far. A
// finished capture becomes an element: it is published under the next index, 64000 is raised, and
// it waits at the end of a queue until its acknowledge has come.
//
// Order of notifications: 64004 for a change of the armed state comes before the first 64010 of the
// capture that it starts and, at a file's end, before the element's 64000; 64004 for an acknowledge
// comes after it has been taken in. 64006 is never raised.
//
// All operations: any thread; none holds a lock while listeners, the log or the observer run.
class CSignalSide
{
public:
    static constexpr size_t kBlockFrames = 512;

    // Makes the component known to the process, once. Open it with AudioComponentInstanceNew.
    static AudioComponent Register();
    // Null when the unit is not one of ours.
    static CSignalSide* Of(AudioUnit pUnit);

    CSignalSide();
    // Ends the capture thread first. A capture that is not finished is dropped with its file.
    ~CSignalSide();

    // Throws CUsageError when the capture folder cannot be used. Takes effect with the next
    // capture.
    void Configure(const CSignalSettings& settings);

    // Where a line for every property write goes, with a reason where the write is refused. Called
    // on the writing thread.
    void SetLog(std::function<void(const std::string&)> log);
    // Writes a line there.
    void Log(const std::string& strLine);
    // Told of every change of a capture's state but its beginning, after the listeners have been.
    // Any thread.
    void SetObserver(std::function<void(const CCaptureReport&)> observer);

    // The file that the next arming captures, or that is captured at once when the instance is
    // armed and idle. Replaces one that still waits. Throws CUsageError, and keeps what was there,
    // when the file or the path of its dub cannot be used.
    void SetSource(const CCaptureSource& source);

    // How many captures have begun. What is over is forgotten but for this number.
    size_t CapturesBegun() const;
    // True from the publication of the capture of this number to its acknowledge.
    bool IsWaiting(size_t nNumber) const;
    bool IsArmed() const;
    // True from a capture's start until it is published, failed or dropped.
    bool IsCapturing() const;

    // Ends capturing for good, as disposal does, and returns when the capture thread has ended. The
    // properties can still be read and written. Not inside a notification.
    void End();

    // What the component's entry points call. Sizes are those of the link protocol: a read takes a
    // size of at least that, a write exactly that.
    void SetUnit(AudioUnit pUnit) { m_pUnit = pUnit; }
    OSStatus GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                             AudioUnitElement nElement, UInt32* pnSize, Boolean* pfWritable) const;
    OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         void* pData, UInt32* pnSize);
    OSStatus SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         const void* pData, UInt32 nSize);
    // Asks the capture thread to end, for good, and waits for nothing.
    void Stop();
    CPropertyListeners& Listeners() { return m_listeners; }

private:
    struct Source
    {
        CSoundReader reader;
        double dPosition;
    };
    // A capture that is published and not acknowledged.
    struct Element
    {
        CCaptureReport report;
        TNCaptureElement record;
    };

    OSStatus Write(AudioUnitPropertyID nId, const void* pData);
    OSStatus Read(AudioUnitPropertyID nId, AudioUnitElement nElement, void* pData);
    void SetArmed(bool fArmed);
    OSStatus TakeAck(const TNElementAck& ack);

    void Work();
    void Capture(Source& source, CCaptureReport report);
    std::filesystem::path CaptureFolder() const;
    uint64_t Play(Source& source, CDubFile& dub);
    bool WaitForBlock(uint64_t nFrames, double dSampleRate,
                      std::chrono::steady_clock::time_point start);
    void EndPlaying();
    void Publish(const Source& source, uint64_t nFrames, CDubFile& dub, CCaptureReport report);
    void Conclude(CCaptureReport report, const std::string& strFailure);

    void Notify(AudioUnitPropertyID nId);
    void Observe(const CCaptureReport& report);

    AudioUnit m_pUnit = nullptr;
    CPropertyListeners m_listeners;

    mutable std::mutex m_mutex; // guards all below
    std::condition_variable m_wake;
    CSignalSettings m_settings;
    std::function<void(const std::string&)> m_log;
    std::function<void(const CCaptureReport&)> m_observer;
    std::unique_ptr<Source> m_pSource;
    size_t m_nBegun = 0;
    std::deque<Element> m_waiting; // the front is the element to deliver
    int m_nNextElement = 0;
    SInt32 m_nTrack = 0;
    bool m_fArmed = false;
    bool m_fBegin = false;     // the capture thread is to take the source
    bool m_fCapturing = false; // the capture thread has taken it
    bool m_fStop = false;      // disarmed while capturing
    bool m_fClosing = false;
    double m_dPosition = 0;
    double m_dSamplesPlayed = 0;
    double m_dCaptureLength = 0; // seconds

    std::thread m_thread;
};

} // namespace Tarvane
