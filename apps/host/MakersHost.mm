#import "apps/host/MakersHost.h"

#import "apps/host/LinkView.h"
#import "apps/support/window/MainThread.h"

#include "apps/support/recording/EventWatch.h"

#import <AppKit/AppKit.h>

#include <cstdio>
#include <iostream>
#include <stdexcept>

namespace Tarvane
{

CMakersHost::CUnit::CUnit(AudioComponent pComponent)
{
    if (AudioComponentInstanceNew(pComponent, &pUnit) != noErr)
    {
        throw std::runtime_error("the plug-in makes no instance.");
    }
}

CMakersHost::CUnit::~CUnit() { AudioComponentInstanceDispose(pUnit); }

CMakersHost::CMakersHost(const HostOptions& options, const std::filesystem::path& bundle)
    : m_options(options), m_library(options.strPlugIn),
      m_unit(CWatchedUnit::Register(m_library.Component())),
      m_pWatched(CWatchedUnit::Of(m_unit.pUnit))
{
    WatchEvents({&m_seenCommands, &m_answerWords});
    m_pWatched->SetHooks({[this](const TNCaptureElement& record)
                          {
                              m_record = record;
                              m_deliveries.Begin(record);
                          },
                          [this](const TNElementAck& ack, OSStatus nStatus)
                          { Acknowledged(ack, nStatus); },
                          [this] { CallOnMainThread([this] { ArmChanged(); }); }});
    const SInt32 nTrack = options.nTrack;
    AudioUnitSetProperty(m_unit.pUnit, TNProperty_SelectedTrack, kAudioUnitScope_Global, 0, &nTrack,
                         sizeof nTrack);
    m_pView = std::make_unique<CLinkView>(bundle, m_unit.pUnit);
    m_windowClosed = [MakeCall([this] { End(m_nExitCode); }) retain];
    [[NSNotificationCenter defaultCenter] addObserver:m_windowClosed
                                             selector:@selector(run:)
                                                 name:NSWindowWillCloseNotification
                                               object:m_pView->Window()];
}

CMakersHost::~CMakersHost()
{
    [[NSNotificationCenter defaultCenter] removeObserver:m_windowClosed];
    [m_windowClosed release];
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    m_pView.reset();
    [pool drain];
    // Calls that wait for the main thread still speak of this object.
    RunWhatWaits();
}

int CMakersHost::Run()
{
    std::printf("Hosting %s.%s\n", m_options.strPlugIn.c_str(),
                m_library.CanPlay() ? ""
                                    : " It exports no TarvaneConformPlay, so it has to play by "
                                      "itself.");
    std::fflush(stdout);
    NSDate* over = [[NSDate alloc] initWithTimeIntervalSinceNow:m_options.dAckTimeout];
    [NSApp finishLaunching];
    [NSApp activateIgnoringOtherApps:YES];
    if (m_options.fHeadless)
    {
        CallOnMainThread([this] { Arm(); });
    }
    constexpr NSUInteger kAnyEvent = NSUIntegerMax; // the systems have different names for it
    while (!m_fEnded)
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        NSEvent* event = [NSApp nextEventMatchingMask:kAnyEvent
                                            untilDate:[NSDate dateWithTimeIntervalSinceNow:0.1]
                                               inMode:NSDefaultRunLoopMode
                                              dequeue:YES];
        if (event != nil)
        {
            [NSApp sendEvent:event];
        }
        if (m_options.fHeadless && !m_fEnded && [over timeIntervalSinceNow] < 0)
        {
            std::cerr << "tarvane-host: no capture was acknowledged in time - "
                         "tarvane-conform plugin tells what is wrong with a plug-in."
                      << std::endl;
            End(kExitFailed);
        }
        [pool drain];
    }
    [over release];
    return m_nExitCode == kExitDone && m_fUndelivered ? int(kExitFailed) : m_nExitCode;
}

void CMakersHost::End(int nExitCode)
{
    m_nExitCode = nExitCode;
    m_fEnded = true;
}

void CMakersHost::Arm()
{
    if (!IsArmed())
    {
        m_pView->Arm(m_unit.pUnit);
    }
}

bool CMakersHost::IsArmed() const
{
    UInt8 fArmed = 0;
    UInt32 nSize = sizeof fArmed;
    AudioUnitGetProperty(m_unit.pUnit, TNProperty_ArmCapture, kAudioUnitScope_Global, 0, &fArmed,
                         &nSize);
    return fArmed != 0;
}

void CMakersHost::ArmChanged()
{
    if (!IsArmed())
    {
        m_fPlayed = false;
        return;
    }
    if (m_fPlayed || m_fEnded || !m_library.CanPlay())
    {
        return;
    }
    m_fPlayed = true;
    const OSStatus nStatus = m_library.Play(m_pWatched->PlugIn());
    if (nStatus != noErr)
    {
        std::cerr << "tarvane-host: TarvaneConformPlay answers with " << nStatus << "."
                  << std::endl;
        m_fUndelivered = true;
        if (m_options.fHeadless)
        {
            End(kExitFailed);
        }
    }
}

// The view hands what it is told to the main thread, and is told first: by the time that the call
// below runs, what the view shows is settled.
void CMakersHost::Acknowledged(const TNElementAck& ack, OSStatus nStatus)
{
    const CDeliveryReport delivery = m_deliveries.Conclude(ack.fNotDelivered != 0);
    CCaptureReport report;
    report.nNumber = m_nTold++;
    report.state = CaptureState::Acknowledged;
    report.nElement = ack.nElement;
    report.dub = m_record.szDubPath;
    report.times = m_record.tDub;
    report.dSampleRate = m_record.dSampleRate;
    report.pAck = ack;
    // Whether the take is offered again when a server appears is the plug-in's affair.
    if (delivery.outcome != TakeOutcome::Unreachable)
    {
        report.outcome = delivery.outcome;
    }
    report.strWords = delivery.strWords;
    report.dExpectedPosition = delivery.dExpectedPosition;
    if (nStatus != noErr)
    {
        report.strFailure =
            "the plug-in refuses the acknowledge with status " + std::to_string(nStatus);
        m_fUndelivered = true;
    }
    CallOnMainThread([=, this] { Tell(report); });
}

void CMakersHost::Tell(const CCaptureReport& report)
{
    CCaptureEntry entry{report, m_pView->Words()};
    entry.report.nTrack = m_pView->SelectedTrack();
    m_fUndelivered = m_fUndelivered || !entry.IsGood();
    m_pView->ShowWord(WordOfDelivery(entry));
    std::fputs(TellCapture(entry).c_str(), stdout);
    std::fflush(stdout);
    if (m_options.fHeadless)
    {
        End(m_nExitCode);
    }
}

} // namespace Tarvane
