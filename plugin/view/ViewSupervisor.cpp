#include "plugin/view/ViewSupervisor.h"

#include "plugin/view/ViewProcess.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace Tarvane
{
namespace
{

constexpr std::uint32_t kHeard[] = {TNProperty_Elements, TNProperty_ArmCapture,
                                    kTNProperty_CurrentCaptureLength};

int MakeWake()
{
    const int nWake = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (nWake < 0)
        throw std::system_error(errno, std::generic_category(), "no descriptor for the view");
    return nWake;
}

// A thread that takes none of the host's signals.
std::thread QuietThread(std::function<void()> fnRun)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread thread(std::move(fnRun));
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

} // namespace

CViewSupervisor::CViewSupervisor(CCaptureCore& core, std::filesystem::path program,
                                 std::function<void(const std::string&)> log)
    : m_core(core), m_program(std::move(program)), m_log(std::move(log)), m_nWake(MakeWake()),
      m_fArmed(core.IsArmed())
{
    m_thread = QuietThread([this] { Run(); });
    for (const std::uint32_t nId : kHeard)
        m_core.AddListener(nId, &Hear, this);
}

CViewSupervisor::~CViewSupervisor()
{
    for (const std::uint32_t nId : kHeard)
        m_core.RemoveListener(nId, &Hear, this);
    {
        std::lock_guard lock(m_mutex);
        m_orders.fEnd = true;
    }
    Wake();
    m_thread.join();
    ::close(m_nWake);
}

void CViewSupervisor::Want()
{
    {
        std::lock_guard lock(m_mutex);
        m_orders.fWanted = m_fAsked = true;
    }
    Wake();
}

void CViewSupervisor::Open(std::uint32_t nWindow)
{
    {
        std::lock_guard lock(m_mutex);
        m_orders.fWanted = m_fAsked = true;
        m_orders.nWindow = nWindow;
        ++m_orders.nOpenings;
    }
    Wake();
}

void CViewSupervisor::Close(std::uint32_t nWindow)
{
    {
        std::lock_guard lock(m_mutex);
        if (m_orders.nWindow == nWindow)
            m_orders.nWindow = 0;
    }
    Wake();
}

std::string CViewSupervisor::Trouble() const
{
    std::lock_guard lock(m_mutex);
    return m_strTrouble;
}

int CViewSupervisor::ProcessId() const
{
    std::lock_guard lock(m_mutex);
    return m_nProcessId;
}

void CViewSupervisor::Hear(void* pUserData, CCaptureCore*, std::uint32_t nId, std::uint32_t,
                           std::uint32_t)
{
    static_cast<CViewSupervisor*>(pUserData)->Hear(nId);
}

void CViewSupervisor::Hear(std::uint32_t nId)
{
    const bool fArmed = m_core.IsArmed();
    {
        std::lock_guard lock(m_mutex);
        // Arming asks for a view, and so does a take that finds that nobody ever has.
        if ((fArmed && !m_fArmed) || (nId == TNProperty_Elements && !m_fAsked))
            m_orders.fWanted = m_fAsked = true;
        m_fArmed = fArmed;
        if (nId == TNProperty_Elements)
            ++m_orders.nElementsRaised;
        else if (nId == TNProperty_ArmCapture)
            m_orders.fArmRaised = true;
        else
            m_orders.fProgressRaised = true;
    }
    Wake();
}

void CViewSupervisor::Wake()
{
    const std::uint64_t nOne = 1;
    (void)!::write(m_nWake, &nOne, sizeof nOne);
}

void CViewSupervisor::Run()
{
    for (;;)
    {
        Orders orders;
        {
            std::lock_guard lock(m_mutex);
            orders = m_orders;
            m_orders = {.nWindow = orders.nWindow, .nOpenings = orders.nOpenings};
        }
        if (orders.fEnd)
            break;
        if (orders.fWanted)
            m_nStartsLeft = kMaxRestarts + (m_pProcess ? 0 : 1);
        if (!m_pProcess && m_nStartsLeft > 0)
            Start();
        if (m_pProcess && !Tell(orders))
            Lose();
        else
            Wait();
    }
    m_pProcess.reset();
}

void CViewSupervisor::Start()
{
    --m_nStartsLeft;
    try
    {
        m_pProcess = std::make_unique<CViewProcess>(m_program);
    }
    catch (const std::system_error& error)
    {
        m_nStartsLeft = 0;
        SetTrouble(std::string("The view cannot be started: ") + error.what() + ".");
        return;
    }
    m_service.emplace(m_core);
    m_nWindowTold = 0;
    {
        std::lock_guard lock(m_mutex);
        m_nProcessId = m_pProcess->Pid();
    }
    m_pProcess->Send({.kind = FrameKind::Hello, .nId = kViewProtocolVersion});
}

// Tells the process what is new. 64004 goes first: it comes before the take that it starts or ends.
bool CViewSupervisor::Tell(const Orders& orders)
{
    bool fGood = true;
    const auto fnSend = [&](FrameKind kind, std::uint32_t nId)
    { fGood = fGood && m_pProcess->Send({.kind = kind, .nId = nId}); };

    if (m_nWindowTold != 0 &&
        (m_nWindowTold != orders.nWindow || m_nOpeningTold != orders.nOpenings))
    {
        fnSend(FrameKind::Detach, m_nWindowTold);
        m_nWindowTold = 0;
    }
    if (orders.nWindow != m_nWindowTold)
    {
        fnSend(FrameKind::Embed, orders.nWindow);
        m_nWindowTold = orders.nWindow;
        m_nOpeningTold = orders.nOpenings;
    }
    if (orders.fArmRaised)
        fnSend(FrameKind::Notify, TNProperty_ArmCapture);
    for (unsigned n = 0; n < orders.nElementsRaised; ++n)
        fnSend(FrameKind::Notify, TNProperty_Elements);
    if (orders.fProgressRaised && !m_pProcess->IsClogged())
        fnSend(FrameKind::Notify, kTNProperty_CurrentCaptureLength);
    return fGood;
}

// Until there are orders, or the process has something to say or room for what is unsent.
void CViewSupervisor::Wait()
{
    pollfd waited[2] = {{m_nWake, POLLIN, 0}, {-1, 0, 0}};
    if (m_pProcess)
    {
        const bool fReading = !m_pProcess->IsClogged();
        waited[1].fd = m_pProcess->Socket().Descriptor();
        waited[1].events =
            static_cast<short>((fReading ? POLLIN : 0) | (m_pProcess->HasUnsent() ? POLLOUT : 0));
    }
    if (::poll(waited, m_pProcess ? 2 : 1, -1) < 0)
        return;
    std::uint64_t nWakes = 0;
    (void)!::read(m_nWake, &nWakes, sizeof nWakes);
    if (waited[1].revents != 0 && !Serve())
        Lose();
}

bool CViewSupervisor::Serve()
{
    if (!m_pProcess->Flush())
        return false;
    // A bounded number at a time: orders have their turn.
    constexpr int kFramesAtATime = 16;
    CFrame frame;
    for (int n = 0; n < kFramesAtATime && !m_pProcess->IsClogged(); ++n)
    {
        const auto result = m_pProcess->Socket().Receive(frame, false);
        if (result == CPacketSocket::Result::WouldBlock)
            return true;
        if (result == CPacketSocket::Result::Ended || !Take(frame))
            return false;
    }
    return true;
}

bool CViewSupervisor::Take(const CFrame& frame)
{
    std::optional<CFrame> reply;
    if (!m_service->Take(frame, reply))
        return false;
    if (m_service->IsReady())
        SetTrouble("");
    return !reply || m_pProcess->Send(std::move(*reply));
}

void CViewSupervisor::Lose()
{
    // What it said last may still lie there, why it ended for instance.
    constexpr int kLastFrames = 64;
    CFrame frame;
    std::optional<CFrame> dropped;
    for (int n = 0; n < kLastFrames; ++n)
    {
        if (m_pProcess->Socket().Receive(frame, false) != CPacketSocket::Result::Done ||
            !m_service->Take(frame, dropped))
            break;
    }
    const std::string strEnd = m_pProcess->WaitForEnd();
    m_pProcess.reset();
    {
        std::lock_guard lock(m_mutex);
        m_nProcessId = 0;
    }
    if (!m_service->Failure().empty())
    {
        m_nStartsLeft = 0; // it would say the same again
        SetTrouble(m_service->Failure());
    }
    else if (m_nStartsLeft == 0)
        SetTrouble("The view has ended again and again, at last with " + strEnd + ".");
    else
        m_log("the view has ended with " + strEnd + " and is started again");
}

void CViewSupervisor::SetTrouble(const std::string& strTrouble)
{
    {
        std::lock_guard lock(m_mutex);
        m_strTrouble = strTrouble;
    }
    if (!strTrouble.empty())
        m_log(strTrouble);
}

} // namespace Tarvane
