#include "apps/support/delivery/ServerWatch.h"

#include "tests/support/PrivateBus.h"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

using namespace Tarvane;

namespace
{

// Has the name of a server while it lives.
class CNameOwner
{
public:
    explicit CNameOwner(const char* szName = "org.tarvane.AppleEvent._546b4e65")
    {
        EXPECT_GE(sd_bus_open_user(&m_pBus), 0);
        EXPECT_GE(sd_bus_request_name(m_pBus, szName, 0), 0);
    }
    ~CNameOwner() { sd_bus_flush_close_unref(m_pBus); }

private:
    sd_bus* m_pBus = nullptr;
};

class CCountedWatch
{
public:
    int Calls()
    {
        std::lock_guard lock(m_mutex);
        return m_nCalls;
    }
    bool HasCalled(int nTimes, std::chrono::milliseconds time)
    {
        std::unique_lock lock(m_mutex);
        return m_called.wait_for(lock, time, [&] { return m_nCalls >= nTimes; });
    }
    bool HasCalled(int nTimes) { return HasCalled(nTimes, std::chrono::seconds(60)); }

private:
    std::mutex m_mutex;
    std::condition_variable m_called;
    int m_nCalls = 0;
    CServerWatch m_watch{[this]
                         {
                             std::lock_guard lock(m_mutex);
                             ++m_nCalls;
                             m_called.notify_all();
                         }};
};

} // namespace

class ServerWatch : public testing::Test
{
protected:
    TarvaneTests::PrivateBus m_bus;
};

TEST_F(ServerWatch, CallsForTheServerThatIsThereAndForEachThatComesUp)
{
    std::optional<CNameOwner> server(std::in_place);
    CCountedWatch watch;
    ASSERT_TRUE(watch.HasCalled(1)) << "one that is there at first";
    for (int nServers = 2; nServers < 6; ++nServers)
    {
        server.reset();
        const CNameOwner other("org.tarvane.AppleEvent._41424344");
        server.emplace();
        ASSERT_TRUE(watch.HasCalled(nServers));
        EXPECT_EQ(watch.Calls(), nServers) << "neither for the one that left nor for another name";
    }
}

TEST_F(ServerWatch, AServerOnABusThatComesBackCounts)
{
    std::optional<CNameOwner> server(std::in_place);
    CCountedWatch watch;
    ASSERT_TRUE(watch.HasCalled(1));
    m_bus.Kill();
    m_bus.Start();
    server.emplace();
    EXPECT_TRUE(watch.HasCalled(2));
}

TEST_F(ServerWatch, EndsAtOnceOnABusThatIsMuteOrGone)
{
    m_bus.Freeze();
    {
        const CCountedWatch watch;
    }
    m_bus.Thaw();
    m_bus.Kill();
    const CCountedWatch watch;
}
