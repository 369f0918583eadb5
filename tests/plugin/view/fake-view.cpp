// Stands in for tarvane-link-view. What it does is the first word of $FAKE_VIEW:
//
//   serve    writes a line for all that it hears to $FAKE_VIEW_LOG, and acknowledges every take
//   crash    ends as soon as it has been greeted
//   garbage  sends bytes that are no frame
//   old      speaks another version
//   failed   says why there is no view
//   mute     reads nothing
//
// Every start writes a line "start", with the descriptors from 40 on that it should not have.
#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "plugin/view/PlugInConnection.h"

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace Tarvane;

namespace
{

constexpr int kSocket = 3;

void Write(const std::string& strLine)
{
    const int nFile =
        ::open(std::getenv("FAKE_VIEW_LOG"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const std::string strWhole = strLine + "\n";
    (void)!::write(nFile, strWhole.data(), strWhole.size());
    ::close(nFile);
}

template <typename Value> Value Get(CPlugInConnection& plugIn, std::uint32_t nId, int nElement = 0)
{
    Value value{};
    const auto reply = plugIn.Ask({.kind = FrameKind::Get,
                                   .nId = nId,
                                   .nElement = static_cast<std::uint32_t>(nElement),
                                   .nSize = sizeof value});
    if (reply && reply->nStatus == 0 && reply->data.size() == sizeof value)
        std::memcpy(&value, reply->data.data(), sizeof value);
    return value;
}

// As a view does at 64000.
void Deliver(CPlugInConnection& plugIn)
{
    const auto nElement = Get<std::int32_t>(plugIn, TNProperty_NextElement);
    if (nElement < 0)
        return Write("nothing waits");
    const auto element = Get<TNCaptureElement>(plugIn, TNProperty_ElementInfo, nElement);
    Write("take " + std::to_string(static_cast<long>(element.tDub.dPosition)));
    const TNElementAck ack{nElement, 1, 0, 1};
    CFrame frame{.kind = FrameKind::Set, .nId = TNProperty_ElementDone};
    frame.data.resize(sizeof ack);
    std::memcpy(frame.data.data(), &ack, sizeof ack);
    const auto reply = plugIn.Ask(frame);
    Write("acknowledged " + std::to_string(reply ? reply->nStatus : -1));
}

void Serve()
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::uint32_t> raised;
    CPlugInConnection plugIn(
        kSocket,
        {.notified =
             [&](std::uint32_t nId)
         {
             std::lock_guard lock(mutex);
             raised.push_back(nId);
             changed.notify_all();
         },
         .embed = [](std::uint32_t nWindow) { Write("embed " + std::to_string(nWindow)); },
         .detach = [](std::uint32_t nWindow) { Write("detach " + std::to_string(nWindow)); },
         .ended = [] { ::_exit(0); }});
    plugIn.Tell({.kind = FrameKind::Ready});
    for (;;)
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return !raised.empty(); });
        const std::uint32_t nId = raised.front();
        raised.pop_front();
        lock.unlock();
        Write("notified " + std::to_string(nId));
        if (nId == TNProperty_Elements)
            Deliver(plugIn);
    }
}

void Send(const CFrame& frame)
{
    CPacketSocket(kSocket, FrameSender::PlugIn).Send(frame, true);
}

} // namespace

int main()
{
    std::string strStart = "start";
    for (int n = 40; n < 64; ++n)
    {
        if (::fcntl(n, F_GETFD) >= 0)
            strStart += " " + std::to_string(n);
    }
    Write(strStart);
    const std::string strWhat = std::getenv("FAKE_VIEW");
    if (strWhat == "serve")
        Serve();
    else if (strWhat == "crash")
        return 7;
    else if (strWhat == "old")
        Send({.kind = FrameKind::Hello, .nId = kViewProtocolVersion + 1});
    else if (strWhat == "garbage")
        (void)!::send(kSocket, strWhat.data(), strWhat.size(), MSG_NOSIGNAL);
    else if (strWhat == "failed")
    {
        CPacketSocket socket(kSocket, FrameSender::PlugIn);
        socket.Send({.kind = FrameKind::Hello, .nId = kViewProtocolVersion}, true);
        const std::string strWhy = "no display today";
        socket.Send({.kind = FrameKind::Failed, .data = {strWhy.begin(), strWhy.end()}}, true);
    }
    else if (strWhat == "mute")
        std::this_thread::sleep_for(std::chrono::hours(1));
    return 0;
}
