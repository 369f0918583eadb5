// The host: one plug-in, its view in a window, and the captures that are driven through both.
#pragma once

#include "apps/host/CaptureStory.h"
#import "apps/host/LineSource.h"
#include "apps/host/Options.h"
#include "apps/host/PlugIn.h"
#include "apps/host/SilenceWatch.h"
#import "apps/host/StallWatch.h"
#include "apps/support/delivery/DeliveryWatch.h"
#include "apps/support/delivery/ServerWatch.h"
#include "apps/support/file/ResultFolder.h"
#include "apps/support/recording/AnswerWords.h"
#include "apps/support/recording/Recorder.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

@class MainThreadCall;

namespace Tarvane
{

class CLinkView;

/// Main thread.
class CHost : private ILineListener
{
  public:
    /// Opens the plug-in, its view and the window. Throws CUsageError when something named on the
    /// command line cannot be used.
    CHost(const HostOptions& options, const HostPlan& plan);
    /// The view goes before the plug-in, unless the plug-in is to misbehave in just that.
    ~CHost() override;
    CHost(const CHost&) = delete;
    CHost& operator=(const CHost&) = delete;

    /// Runs the application until the captures are done, the window is closed, the commands end or
    /// a signal comes. Returns the program's exit code.
    int Run();

  private:
    /// Events are recorded until it goes.
    struct EndRecording
    {
        void operator()(CRecorder* pRecorder) const;
    };
    using CRecording = std::unique_ptr<CRecorder, EndRecording>;

    /// Watches the events until it goes.
    struct CSeenCommands : CCommandWatch
    {
        ~CSeenCommands() override { WatchEvents({}); }
    };

    /// Hears of signals, and of the end.
    class CWakeListener : public ILineListener
    {
      public:
        explicit CWakeListener(CHost& host) : m_host(host) {}
        void LineArrived(const std::string& strLine) override;
        void LinesEnded() override {}

      private:
        CHost& m_host;
    };

    void OpenView();
    void CloseView();
    void BeginRecording();
    void WatchDeliveries();
    void OpenLog();
    void WatchWindow();
    void WatchWakePipe();

    void Guarded(const std::function<void()>& fnWork);
    std::function<void()> OnMain(std::function<void()> fnWork);
    void End(int nExitCode);
    int ExitCode() const;
    /// What is under way gets its file, and nothing more is captured.
    void KeepCapture();

    void Start();
    void CaptureNext();
    void Begin(const CCaptureSource& source);
    void OfferNextByHand();
    void CaptureChanged(const CCaptureReport& report);
    void WaitForAck(const CCaptureReport& report);
    void MakeAckTimer();
    void Tell(const CCaptureReport& report);
    void TellLate(const CCaptureReport& report);
    void TellKept(const CCaptureReport& report);
    void TellSilence(const std::string& strCommand);
    void WriteResults();
    void WriteCaptures();
    void GoOn(const CCaptureEntry& entry);

    /// Commands.
    void LineArrived(const std::string& strLine) override;
    void LinesEnded() override;
    void Obey(const std::string& strLine);
    void ObeyWords(std::istream& words, const std::string& strCommand);
    void CaptureOnCommand(std::istream& words);
    void ChooseTrackOnCommand(std::istream& words);
    void PictureOnCommand(std::istream& words);
    void ArmOnCommand(bool fArm);
    nlohmann::json State() const;
    void Answer(nlohmann::json answer);
    void Refuse(const std::string& strReason);

    const HostOptions m_options;
    const HostPlan m_plan;
    std::FILE* m_pStory;
    std::shared_ptr<std::FILE> m_pLog;
    std::optional<CResultFolder> m_results;

    CStalls m_stalls;
    std::optional<CStallWatch> m_stallWatch; ///< only when stalls are to be told
    CAnswerWords m_answerWords;              ///< outlives whatever sends, as the next
    CSeenCommands m_seenCommands;
    CDeliveryWatch m_deliveries{m_seenCommands};
    CSilenceWatch m_silences;
    CRecording m_pRecorder; ///< outlives the plug-in; null when nothing is recorded
    CPlugIn m_plugIn;       ///< outlives the view
    std::optional<CServerWatch> m_serverWatch; ///< tells the plug-in
    std::unique_ptr<CLinkView> m_pView;
    LineSource* m_commands = nullptr;
    LineSource* m_wakes = nullptr;
    CWakeListener m_wakeListener{*this};
    MainThreadCall* m_windowClosed = nullptr;
    id m_ackTimer = nullptr;                 ///< NSTimer, owned by the run loop
    std::optional<CCaptureReport> m_awaited; ///< whose acknowledge the timer waits for

    /// In the order in which they came to an end. Kept for the results alone.
    std::vector<CCaptureEntry> m_entries;
    std::optional<CCaptureReport> m_last; ///< told last
    size_t m_nTold = 0;
    std::set<size_t> m_undelivered; ///< told as neither delivered nor a duplicate, and still so
    std::set<size_t> m_late;        ///< told as not acknowledged; their acknowledge may still come
    size_t m_nNextSource = 0;
    std::string m_strCommand; ///< being obeyed; empty between commands
    bool m_fCapturingOnCommand = false;
    int m_nExitCode = kExitDone;
};

} // namespace Tarvane
