#import "apps/host/Host.h"

#import "apps/host/LinkView.h"
#import "apps/support/window/MainThread.h"

#include "apps/host/LiveObjects.h"
#include "apps/support/process/Pipe.h"
#include "apps/support/recording/EventWatch.h"
#include "apps/support/text/PlainText.h"
#import "apps/support/window/Application.h"

#import <AppKit/AppKit.h>

#include <csignal>
#include <cstdio>
#include <iostream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

constexpr const char* kResultsName = "captures.json";
constexpr const char* kPictureName = "link-view.png";

constexpr const char* kSignalled = "signal";

// A user wonders by then, and every command that is well has long been answered.
constexpr std::chrono::seconds kSilence{5};

// Wakes the run loop. Lives as long as the process: a signal may come at any time.
CPipe& WakePipe()
{
    static CPipe* const pPipe = new CPipe;
    return *pPipe;
}

void NoteSignal(int) { (void)!::write(WakePipe().WriteEnd(), "signal\n", 7); }

CRecorder* MakeRecorder(const std::string& strFile)
{
    return strFile.empty() ? nullptr : new CRecorder(strFile, "tarvane-host");
}

} // namespace

CHost::CHost(const HostOptions& options, const HostPlan& plan)
    : m_options(options), m_plan(plan), m_pStory(options.fCommands ? stderr : stdout),
      m_silences(m_seenCommands, kSilence,
                 [this](const std::string& strCommand) { TellSilence(strCommand); }),
      m_pRecorder(MakeRecorder(options.strRecord)), m_plugIn(options.faults, m_pRecorder.get())
{
    BeginRecording();
    WatchDeliveries();
    // The view hands what it is told to the main thread as well, and is told first: by the time
    // that this call runs, what the view shows is settled.
    m_plugIn->SetObserver([this](const CCaptureReport& report)
                          { CallOnMainThread(OnMain([=, this] { CaptureChanged(report); })); });
    m_plugIn->Configure(m_plan.settings);
    OpenView();
    OpenLog();
    if (!m_options.strResults.empty())
    {
        m_results.emplace(m_options.strResults);
        m_results->Claim(kResultsName);
        m_results->Claim(kPictureName);
    }
    MakeCaptureFolder(m_plan.settings.captureFolder);
    WriteResults();
    WatchWindow();
    WatchWakePipe();
    if (!m_options.fOnce)
    {
        // What waits since an earlier run was there before the view was.
        m_plugIn->ViewJoined();
        m_serverWatch.emplace([this] { m_plugIn->ServerAppeared(); });
    }
}

CHost::~CHost()
{
    [m_commands close];
    [m_wakes close];
    [m_ackTimer invalidate];
    if (m_windowClosed != nil)
    {
        [[NSNotificationCenter defaultCenter] removeObserver:m_windowClosed];
    }
    KeepCapture();
    // Calls that wait for the main thread still hold the view.
    RunWhatWaits();
    if (m_options.faults.count(SignalFault::DisposedWhileNotifying) != 0)
    {
        m_plugIn.Dispose();
        RunWhatWaits();
    }
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    CloseView();
    [m_commands release];
    [m_wakes release];
    [m_windowClosed release];
    [pool drain];
}

void CHost::OpenView()
{
    if (m_options.fCountObjects)
    {
        CountObjects();
    }
    const CStalls::CStay stay(m_stalls, StallCause::Opening);
    m_pView = std::make_unique<CLinkView>(m_plan.bundle, m_plugIn.Unit());
    if (m_options.fStalls)
    {
        m_stallWatch.emplace(m_pView->ViewClass(), m_stalls);
    }
}

void CHost::CloseView()
{
    {
        const CStalls::CStay stay(m_stalls, StallCause::Closing);
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        m_pView.reset();
        [pool drain];
    }
    if (m_options.fStalls)
    {
        std::fputs(m_stalls.Tell().c_str(), m_pStory);
        Guarded([this] { WriteCaptures(); });
    }
}

void CHost::EndRecording::operator()(CRecorder* pRecorder) const
{
    WatchEvents({});
    delete pRecorder;
}

void CHost::BeginRecording()
{
    std::vector<CEventWatcher*> watchers{&m_seenCommands, &m_answerWords};
    if (m_pRecorder)
    {
        watchers.push_back(m_pRecorder.get());
    }
    if (!WatchEvents(std::move(watchers)) && m_pRecorder)
    {
        std::cerr << "tarvane-host: on this system events are not recorded, properties and "
                     "notifications are."
                  << std::endl;
    }
}

void CHost::WatchDeliveries()
{
    m_plugIn->SetDeliveryHooks(
        {[this](const TNCaptureElement& record) { m_deliveries.Begin(record); },
         [this](const TNElementAck& ack)
         {
             const CDeliveryReport report = m_deliveries.Conclude(ack.fNotDelivered != 0);
             m_plugIn->TellOutcome(ack.nElement, report.outcome, report.strWords,
                                   report.dExpectedPosition);
         }});
}

void CHost::OpenLog()
{
    if (m_options.strLog.empty())
    {
        return;
    }
    if (m_options.strLog == "-")
    {
        m_pLog.reset(m_pStory, [](std::FILE*) {});
    }
    else
    {
        m_pLog.reset(std::fopen(m_options.strLog.c_str(), "a"),
                     [](std::FILE* pFile) { pFile != nullptr&& std::fclose(pFile); });
    }
    if (!m_pLog)
    {
        throw CUsageError("cannot write the log " + m_options.strLog +
                          " - name another with --log.");
    }
    const std::shared_ptr<std::FILE> pLog = m_pLog;
    m_plugIn->SetLog(
        [pLog](const std::string& strLine)
        {
            std::fprintf(pLog.get(), "%s\n", strLine.c_str());
            std::fflush(pLog.get());
        });
}

void CHost::WatchWindow()
{
    m_windowClosed = [MakeCall([this] { End(m_nExitCode); }) retain];
    [[NSNotificationCenter defaultCenter] addObserver:m_windowClosed
                                             selector:@selector(run:)
                                                 name:NSWindowWillCloseNotification
                                               object:m_pView->Window()];
}

void CHost::CWakeListener::LineArrived(const std::string& strLine)
{
    if (strLine == kSignalled)
    {
        m_host.End(kExitFailed);
    }
}

void CHost::WatchWakePipe()
{
    m_wakes = [[LineSource alloc] initWithDescriptor:WakePipe().ReadEnd() listener:&m_wakeListener];
    std::signal(SIGTERM, &NoteSignal);
    std::signal(SIGINT, &NoteSignal);
}

// No C++ exception may travel through the run loop.
void CHost::Guarded(const std::function<void()>& fnWork)
{
    try
    {
        fnWork();
    }
    catch (const std::exception& error)
    {
        std::cerr << "tarvane-host: " << error.what() << std::endl;
        End(kExitFailed);
    }
}

std::function<void()> CHost::OnMain(std::function<void()> fnWork)
{
    return [=, this] { Guarded(fnWork); };
}

int CHost::Run()
{
    CallOnMainThread(OnMain([this] { Start(); }));
    [NSApp activateIgnoringOtherApps:YES];
    [NSApp run];
    KeepCapture();
    return ExitCode();
}

void CHost::KeepCapture()
{
    m_serverWatch.reset();
    m_plugIn->SetObserver([this](const CCaptureReport& report) { TellKept(report); });
    m_plugIn->End();
    m_plugIn->SetObserver(nullptr);
}

int CHost::ExitCode() const
{
    return m_nExitCode == kExitDone && !m_undelivered.empty() ? kExitFailed : m_nExitCode;
}

void CHost::End(int nExitCode)
{
    m_nExitCode = nExitCode;
    StopApplication();
    // The run loop takes the event only when something from outside has woken it.
    (void)!::write(WakePipe().WriteEnd(), "\n", 1);
}

void CHost::Start()
{
    if (m_options.fCommands)
    {
        m_commands = [[LineSource alloc] initWithDescriptor:STDIN_FILENO listener:this];
        m_strCommand = "ready";
        Answer(State());
    }
    if (m_options.fHeadless && !m_options.fCommands)
    {
        CaptureNext();
    }
    else
    {
        OfferNextByHand();
    }
}

void CHost::CaptureNext()
{
    if (m_nNextSource == m_plan.sources.size())
    {
        End(m_nExitCode);
        return;
    }
    Begin(m_plan.sources[m_nNextSource++]);
}

void CHost::Begin(const CCaptureSource& source)
{
    m_plugIn->SetSource(source);
    if (m_plugIn->IsArmed())
    {
        return;
    }
    const size_t nBegun = m_plugIn->CapturesBegun();
    m_pView->Arm(m_plugIn.Unit());
    // A capture may be over by now.
    if (!m_plugIn->IsArmed() && m_plugIn->CapturesBegun() == nBegun)
    {
        throw std::runtime_error("the plug-in does not arm when it is asked to.");
    }
}

// The files come round again, each behind what was captured last.
void CHost::OfferNextByHand()
{
    if (m_plan.sources.empty())
    {
        return;
    }
    CCaptureSource source = m_plan.sources[m_nNextSource % m_plan.sources.size()];
    if (m_nNextSource >= m_plan.sources.size() && m_last)
    {
        source.dPosition =
            PositionBehind(m_last->times.dPosition, m_last->Frames(), m_last->dSampleRate,
                           CSoundReader(source.file).Info().samplerate);
    }
    ++m_nNextSource;
    m_plugIn->SetSource(source);
}

void CHost::CaptureChanged(const CCaptureReport& report)
{
    if (report.fLate)
    {
        TellLate(report);
    }
    else if (!report.IsOver())
    {
        WaitForAck(report);
    }
    // An acknowledge that comes too late changes nothing any more.
    else if (m_late.erase(report.nNumber) == 0)
    {
        Tell(report);
    }
}

void CHost::WaitForAck(const CCaptureReport& report)
{
    m_awaited = report;
    if (m_ackTimer == nil)
    {
        MakeAckTimer();
    }
    [m_ackTimer setFireDate:[NSDate dateWithTimeIntervalSinceNow:m_options.dAckTimeout]];
}

// One for all captures: a run loop lets go of a timer in the modes that it runs, and it may never
// run that of an open menu.
void CHost::MakeAckTimer()
{
    constexpr NSTimeInterval kNotByItself = 1e9;
    const auto fnOver = OnMain(
        [this]
        {
            const CCaptureReport report = *m_awaited;
            [m_ackTimer setFireDate:[NSDate distantFuture]];
            // One that came while the main thread was busy is still on its way here.
            if (m_plugIn->IsWaiting(report.nNumber))
            {
                m_late.insert(report.nNumber);
                Tell(report);
            }
        });
    m_ackTimer = [NSTimer timerWithTimeInterval:kNotByItself
                                         target:MakeCall(fnOver)
                                       selector:@selector(run:)
                                       userInfo:nil
                                        repeats:YES];
    for (NSUInteger n = 0; n < [MainThreadModes() count]; ++n)
    {
        [[NSRunLoop currentRunLoop] addTimer:m_ackTimer
                                     forMode:[MainThreadModes() objectAtIndex:n]];
    }
}

void CHost::Tell(const CCaptureReport& report)
{
    [m_ackTimer setFireDate:[NSDate distantFuture]];
    ++m_nTold;
    m_last = report;
    const CCaptureEntry entry{report, m_pView->Words(), m_silences.Take()};
    if (m_results)
    {
        m_entries.push_back(entry);
    }
    if (!entry.IsGood())
    {
        m_undelivered.insert(report.nNumber);
    }
    m_pView->ShowWord(WordOfDelivery(entry));
    std::fputs(TellCapture(entry).c_str(), m_pStory);
    std::fflush(m_pStory);
    WriteResults();
    GoOn(entry);
}

// Of a take that an earlier run left, or that was offered again: nobody waits for it.
void CHost::TellLate(const CCaptureReport& report)
{
    if (!report.IsOver())
    {
        if (report.fRecovered)
        {
            std::fputs(TellLeftover("Left by an earlier run", report).c_str(), m_pStory);
            std::fflush(m_pStory);
        }
        return;
    }
    const CCaptureEntry entry{report, m_pView->Words(), m_silences.Take()};
    if (m_results)
    {
        m_entries.push_back(entry);
    }
    if (entry.IsGood() && !report.fRecovered)
    {
        m_undelivered.erase(report.nNumber);
    }
    std::fputs(TellCapture(entry).c_str(), m_pStory);
    std::fflush(m_pStory);
    WriteResults();
    if (m_options.fCommands)
    {
        nlohmann::json event = DescribeCapture(entry);
        event["event"] = "late";
        std::cout << JsonText(event) << std::endl;
    }
}

// The last words, on the thread that finished the file; the main one waits for it.
void CHost::TellKept(const CCaptureReport& report)
{
    if (report.state == CaptureState::Waiting)
    {
        m_undelivered.insert(report.nNumber);
        std::fputs(TellLeftover("The capture under way is kept", report).c_str(), m_pStory);
        std::fflush(m_pStory);
    }
}

// While the main thread waits.
void CHost::TellSilence(const std::string& strCommand)
{
    std::fputs(("The server does not answer: " + PlainText(strCommand) + ".\n").c_str(), m_pStory);
    std::fflush(m_pStory);
}

void CHost::WriteResults()
{
    WriteCaptures();
    if (m_results)
    {
        m_results->WriteText(kPictureName, m_pView->Picture());
    }
}

void CHost::WriteCaptures()
{
    if (!m_results)
    {
        return;
    }
    nlohmann::json captures = nlohmann::json::array();
    for (const CCaptureEntry& entry : m_entries)
    {
        captures.push_back(DescribeCapture(entry));
        if (entry.report.nElement >= 0)
        {
            m_results->Adopt(entry.report.dub);
        }
    }
    nlohmann::json results = {{"captures", captures}};
    if (m_options.fStalls)
    {
        results["stalls"] = m_stalls.Describe();
    }
    m_results->WriteText(kResultsName, JsonText(results, 2) + "\n");
}

void CHost::GoOn(const CCaptureEntry& entry)
{
    if (m_fCapturingOnCommand)
    {
        m_fCapturingOnCommand = false;
        Answer(DescribeCapture(entry));
    }
    else if (m_options.fCommands)
    {
        nlohmann::json event = DescribeCapture(entry);
        event["event"] = "capture";
        std::cout << JsonText(event) << std::endl;
    }
    if (m_options.fHeadless && !m_options.fCommands)
    {
        CaptureNext();
    }
    else
    {
        OfferNextByHand();
    }
}

} // namespace Tarvane
