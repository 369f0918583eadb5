// A server owns a name on the session bus for as long as it receives events.
#include "apps/support/delivery/ServerWatch.h"

#include "apps/support/event/linux/BusHandles.h"
#include "apps/support/process/Pipe.h"

#include <cstdint>
#include <poll.h>
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

// Between two tries to reach a bus that is not there, or looks after one that is slow.
constexpr int kRetryMilliseconds = 1000;
constexpr int kForEver = -1;

} // namespace

class CServerWatch::CThread
{
public:
    explicit CThread(std::function<void()> appeared)
        : m_appeared(std::move(appeared)), m_thread([this] { Run(); })
    {
    }
    ~CThread()
    {
        (void)!::write(m_end.WriteEnd(), "x", 1);
        m_thread.join();
    }

private:
    void Run()
    {
        do
        {
            const BusRef pBus = Connect();
            if (pBus && !Listen(pBus.get()))
                return;
        } while (Wait(-1, 0, kRetryMilliseconds));
    }

    // Nothing here waits for the bus, which may be mute.
    BusRef Connect()
    {
        sd_bus* pOpened = nullptr;
        if (sd_bus_open_user(&pOpened) < 0)
            return nullptr;
        BusRef pBus(pOpened);
        // The answer to the second comes when the first is in force.
        const bool fAsked =
            sd_bus_add_match_async(pOpened, nullptr, kMatch, &OwnerChanged, nullptr, this) >= 0 &&
            sd_bus_call_method_async(pOpened, nullptr, "org.freedesktop.DBus",
                                     "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                     "NameHasOwner", &HasOwner, this, "s", kServerName) >= 0;
        return fAsked ? std::move(pBus) : nullptr;
    }

    static int OwnerChanged(sd_bus_message* pMessage, void* pThread, sd_bus_error*)
    {
        const char* szName = nullptr;
        const char* szOld = nullptr;
        const char* szNew = nullptr;
        if (sd_bus_message_read(pMessage, "sss", &szName, &szOld, &szNew) > 0 && *szNew != '\0')
            static_cast<CThread*>(pThread)->m_appeared();
        return 0;
    }

    static int HasOwner(sd_bus_message* pMessage, void* pThread, sd_bus_error*)
    {
        int fOwned = 0;
        if (sd_bus_message_read(pMessage, "b", &fOwned) > 0 && fOwned != 0)
            static_cast<CThread*>(pThread)->m_appeared();
        return 0;
    }

    // Until the bus is gone; false when the watch is over.
    bool Listen(sd_bus* pBus)
    {
        for (;;)
        {
            const int nProcessed = sd_bus_process(pBus, nullptr);
            const int nEvents = nProcessed < 0 ? -1 : sd_bus_get_events(pBus);
            if (nEvents < 0)
                return true;
            std::uint64_t nDue = UINT64_MAX;
            const bool fDue = sd_bus_get_timeout(pBus, &nDue) >= 0 && nDue != UINT64_MAX;
            const int nPatience = nProcessed > 0 ? 0 : fDue ? kRetryMilliseconds : kForEver;
            if (!Wait(sd_bus_get_fd(pBus), static_cast<short>(nEvents), nPatience))
                return false;
        }
    }

    // False when the watch is over.
    bool Wait(int nDescriptor, short nEvents, int nMilliseconds) const
    {
        pollfd waited[2] = {{m_end.ReadEnd(), POLLIN, 0}, {nDescriptor, nEvents, 0}};
        ::poll(waited, 2, nMilliseconds);
        return waited[0].revents == 0;
    }

    const std::function<void()> m_appeared;
    CPipe m_end;
    std::thread m_thread;
};

CServerWatch::CServerWatch(std::function<void()> appeared)
    : m_pThread(std::make_unique<CThread>(std::move(appeared)))
{
}

CServerWatch::~CServerWatch() = default;

} // namespace Tarvane
