#include "plugin/view/PacketSocket.h"

#include <cerrno>
#include <sys/socket.h>
#include <unistd.h>

namespace Tarvane
{
namespace
{

CPacketSocket::Result ResultOfError()
{
    return errno == EAGAIN || errno == EWOULDBLOCK ? CPacketSocket::Result::WouldBlock
                                                   : CPacketSocket::Result::Ended;
}

} // namespace

CPacketSocket::~CPacketSocket()
{
    ::close(m_nDescriptor);
}

CPacketSocket::Result CPacketSocket::Send(const CFrame& frame, bool fWait)
{
    const std::vector<std::uint8_t> packet = EncodeFrame(frame);
    const int nFlags = MSG_NOSIGNAL | (fWait ? 0 : MSG_DONTWAIT);
    ssize_t nSent = 0;
    do
        nSent = ::send(m_nDescriptor, packet.data(), packet.size(), nFlags);
    while (nSent < 0 && errno == EINTR);
    return nSent < 0 ? ResultOfError() : Result::Done;
}

CPacketSocket::Result CPacketSocket::Receive(CFrame& frame, bool fWait)
{
    // A byte more than any frame has, by which one that is too long shows.
    std::uint8_t packet[kMaxFrameSize + 1];
    ssize_t nReceived = 0;
    do
        nReceived = ::recv(m_nDescriptor, packet, sizeof packet, fWait ? 0 : MSG_DONTWAIT);
    while (nReceived < 0 && errno == EINTR);
    if (nReceived < 0)
        return ResultOfError();
    // The end of the peer reads as a packet of no bytes, which is no frame.
    std::optional<CFrame> received =
        DecodeFrame(packet, static_cast<std::size_t>(nReceived), m_peer);
    if (!received)
        return Result::Ended;
    frame = std::move(*received);
    return Result::Done;
}

} // namespace Tarvane
