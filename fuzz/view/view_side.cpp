// What a view makes of a process that claims to be its plug-in.
#include "fuzz/Require.h"
#include "fuzz/view/Packets.h"
#include "plugin/view/PlugInConnection.h"

#include <atomic>
#include <sys/socket.h>
#include <unistd.h>

using namespace Tarvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t nSize)
{
    int sockets[2];
    Require(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) == 0);
    const int nRoom = 1 << 20;
    ::setsockopt(sockets[0], SOL_SOCKET, SO_SNDBUF, &nRoom, sizeof nRoom);
    // All of it is there before the view asks, and the end behind it.
    for (const auto& packet : Packets(pBytes, nSize))
        (void)!::send(sockets[0], packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    ::shutdown(sockets[0], SHUT_WR);

    std::atomic<int> nEnds{0};
    {
        CPlugInConnection connection(sockets[1], {.notified = [](std::uint32_t) {},
                                                  .embed = [](std::uint32_t) {},
                                                  .detach = [](std::uint32_t) {},
                                                  .ended = [&] { ++nEnds; }});
        const auto reply = connection.Ask({.kind = FrameKind::Get, .nId = 64007, .nSize = 4});
        Require(!reply || (reply->kind == FrameKind::Reply && reply->nSerial == 1));
    }
    Require(nEnds == 1);
    ::close(sockets[0]);
    return 0;
}
