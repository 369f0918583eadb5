// The host of another maker's plug-in: its signal side from a shared library, with the view in a
// window.
#pragma once

#include "apps/host/CaptureStory.h"
#include "apps/host/Options.h"
#include "apps/host/WatchedUnit.h"
#include "apps/support/delivery/DeliveryWatch.h"
#include "apps/support/recording/AnswerWords.h"
#include "apps/support/unit/PlugInLibrary.h"

#import <Foundation/Foundation.h>

#include <memory>

@class MainThreadCall;

namespace Tarvane
{

class CLinkView;

/// Each time that the plug-in is armed, the library's TarvaneConformPlay has it capture for a
/// moment; one that has none plays by itself. Main thread.
class CMakersHost
{
  public:
    /// Opens the plug-in, its view and the window. Throws CUsageError when the library or the
    /// bundle cannot be used, std::runtime_error when no unit comes of it.
    CMakersHost(const HostOptions& options, const std::filesystem::path& bundle);
    /// The view goes before the plug-in.
    ~CMakersHost();
    CMakersHost(const CMakersHost&) = delete;
    CMakersHost& operator=(const CMakersHost&) = delete;

    /// Runs the application until the window is closed; headless, until one capture has been
    /// acknowledged or the time for that is over. Returns the program's exit code.
    int Run();

  private:
    struct CSeenCommands : CCommandWatch
    {
        ~CSeenCommands() override { WatchEvents({}); }
    };
    struct CUnit // owned
    {
        explicit CUnit(AudioComponent pComponent);
        ~CUnit();
        AudioUnit pUnit = nullptr;
    };

    void Arm();
    bool IsArmed() const;
    void ArmChanged();
    void Acknowledged(const TNElementAck& ack, OSStatus nStatus);
    void Tell(const CCaptureReport& report);
    void End(int nExitCode);

    const HostOptions m_options;
    CAnswerWords m_answerWords; ///< outlives whatever sends, as the next
    CSeenCommands m_seenCommands;
    CDeliveryWatch m_deliveries{m_seenCommands};
    CPlugInLibrary m_library;
    CUnit m_unit;
    CWatchedUnit* m_pWatched;
    std::unique_ptr<CLinkView> m_pView;
    MainThreadCall* m_windowClosed = nil;
    TNCaptureElement m_record; ///< read last
    size_t m_nTold = 0;
    bool m_fPlayed = false; ///< since it was armed
    bool m_fEnded = false;
    bool m_fUndelivered = false;
    int m_nExitCode = kExitDone;
};

} // namespace Tarvane
