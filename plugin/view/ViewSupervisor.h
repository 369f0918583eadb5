// Keeps the process of a plug-in's view running and serves it.
#pragma once

#include "plugin/view/ViewService.h"
#include "signal/CaptureCore.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace Tarvane
{

class CViewProcess;

/// The view's process is started when it is first wanted, and ends with this object. When it ends
/// before, it is started again, kMaxRestarts times in all since somebody has last asked for it;
/// what waits is announced to each that comes up.
///
/// A thread of its own talks to the process. Every operation but the destructor returns at once,
/// whatever the process, the server or the disk do; the destructor waits for that thread, which
/// waits for nobody.
class CViewSupervisor
{
public:
    static constexpr int kMaxRestarts = 3;

    /// The core must outlive this object. program: tarvane-link-view. log takes a line each for
    /// what goes wrong; any thread.
    CViewSupervisor(CCaptureCore& core, std::filesystem::path program,
                    std::function<void(const std::string&)> log);
    ~CViewSupervisor();
    CViewSupervisor(const CViewSupervisor&) = delete;
    CViewSupervisor& operator=(const CViewSupervisor&) = delete;

    /// Somebody needs the view: arming does. Any thread.
    void Want();
    /// The view is to stand in this window of the display, in place of one before. Any thread.
    void Open(std::uint32_t nWindow);
    /// It no longer is, if this is the window. Any thread.
    void Close(std::uint32_t nWindow);

    /// Why there is no view, for the window that waits for it. Empty when there is one, or none has
    /// been asked for. Any thread.
    std::string Trouble() const;

    /// 0 while there is none. Any thread.
    int ProcessId() const;

private:
    /// What other threads leave for the supervisor's.
    struct Orders
    {
        bool fEnd = false;
        bool fWanted = false;         ///< by somebody, since last looked at
        std::uint32_t nWindow = 0;    ///< to hold the view; 0 for none
        unsigned nOpenings = 0;       ///< a window may come with the number of one that is gone
        unsigned nElementsRaised = 0; ///< how often each is to be told
        bool fArmRaised = false;
        bool fProgressRaised = false;
    };

    static void Hear(void* pUserData, CCaptureCore*, std::uint32_t nId, std::uint32_t,
                     std::uint32_t);
    void Hear(std::uint32_t nId);
    void Wake();
    void Run();
    void Start();
    bool Tell(const Orders& orders);
    void Wait();
    bool Serve();
    void Lose();
    bool Take(const CFrame& frame);
    void SetTrouble(const std::string& strTrouble);

    CCaptureCore& m_core;
    const std::filesystem::path m_program;
    const std::function<void(const std::string&)> m_log;
    const int m_nWake; ///< an eventfd

    mutable std::mutex m_mutex;
    Orders m_orders;
    bool m_fAsked = false; ///< for a view, ever
    bool m_fArmed = false; ///< when last looked at
    std::string m_strTrouble;
    int m_nProcessId = 0;

    /// The supervisor's thread alone.
    std::unique_ptr<CViewProcess> m_pProcess; ///< null while there is none
    int m_nStartsLeft = 0;
    std::optional<CViewService> m_service; ///< of the process
    std::uint32_t m_nWindowTold = 0;       ///< what the process was told; 0 for no window
    unsigned m_nOpeningTold = 0;

    std::thread m_thread;
};

} // namespace Tarvane
