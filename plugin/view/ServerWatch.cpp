// A server owns a name on the session bus for as long as it receives events.
#include "plugin/view/ServerWatch.h"

#include <systemd/sd-bus.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <poll.h>
#include <string>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace Tarvane
{
namespace
{

// The events' name for the signature 'TkNe'.
constexpr const char* kServerName = "org.tarvane.AppleEvent._546b4e65";
constexpr const char* kMatch =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged',arg0='org.tarvane.AppleEvent._546b4e65'";

// Between two tries to reach a bus that is not there.
constexpr int kRetryMilliseconds = 1000;

struct CBusCloser
{
    void operator()(sd_bus* pBus) const { sd_bus_close_unref(pBus); }
};
using CBus = std::unique_ptr<sd_bus, CBusCloser>;

} // namespace

class CServerWatch::CThread
{
public:
    explicit CThread(std::function<void()> appeared)
        : m_appeared(std::move(appeared)), m_nEnd(::eventfd(0, EFD_CLOEXEC))
    {
        if (m_nEnd < 0)
            throw std::system_error(errno, std::generic_category(), "no descriptor for the bus");
        m_thread = std::thread([this] { Run(); });
    }
    ~CThread()
    {
        const std::uint64_t nOne = 1;
        (void)!::write(m_nEnd, &nOne, sizeof nOne);
        m_thread.join();
        ::close(m_nEnd);
    }

private:
    void Run()
    {
        CBus pBus = Connect();
        for (;;)
        {
            if (pBus && !Process(pBus.get()))
                pBus.reset();
            if (Wait(pBus.get()))
                return;
            if (pBus)
                continue;
            pBus = Connect();
            // One that came with the bus told nobody who heard.
            if (pBus && HasServer(pBus.get()))
                m_appeared();
        }
    }

    CBus Connect()
    {
        sd_bus* pOpened = nullptr;
        if (sd_bus_open_user(&pOpened) < 0)
            return nullptr;
        CBus pBus(pOpened);
        return sd_bus_add_match(pOpened, nullptr, kMatch, &OwnerChanged, this) < 0
                   ? nullptr
                   : std::move(pBus);
    }

    static bool HasServer(sd_bus* pBus)
    {
        return sd_bus_get_name_creds(pBus, kServerName, 0, nullptr) >= 0;
    }

    static int OwnerChanged(sd_bus_message* pMessage, void* pThread, sd_bus_error*)
    {
        const char* szName = nullptr;
        const char* szOld = nullptr;
        const char* szNew = nullptr;
        if (sd_bus_message_read(pMessage, "sss", &szName, &szOld, &szNew) >= 0 && *szNew != '\0')
            static_cast<CThread*>(pThread)->m_appeared();
        return 0;
    }

    // False when the bus is gone.
    static bool Process(sd_bus* pBus)
    {
        int nProcessed = 0;
        do
            nProcessed = sd_bus_process(pBus, nullptr);
        while (nProcessed > 0);
        return nProcessed == 0;
    }

    // Until the bus has something, or is to be tried again. True when the watch is over.
    bool Wait(sd_bus* pBus) const
    {
        pollfd waited[2] = {{m_nEnd, POLLIN, 0}, {-1, 0, 0}};
        if (pBus != nullptr)
        {
            waited[1].fd = sd_bus_get_fd(pBus);
            waited[1].events = static_cast<short>(sd_bus_get_events(pBus));
        }
        ::poll(waited, 2, pBus != nullptr ? -1 : kRetryMilliseconds);
        return waited[0].revents != 0;
    }

    const std::function<void()> m_appeared;
    const int m_nEnd;
    std::thread m_thread;
};

CServerWatch::CServerWatch(std::function<void()> appeared)
    : m_pThread(std::make_unique<CThread>(std::move(appeared)))
{
}

CServerWatch::~CServerWatch() = default;

} // namespace Tarvane
