// One end of the connection between a plug-in and the process of its view.
#pragma once

#include "plugin/view/Protocol.h"

namespace Tarvane
{

/// Frames over a SOCK_SEQPACKET socket, which it owns. Sending and receiving may each be done by
/// one thread at a time.
class CPacketSocket
{
public:
    enum class Result
    {
        Done,
        WouldBlock, ///< only without waiting
        Ended,      ///< the peer is gone, or has sent what breaks the protocol
    };

    /// peer: who is at the other end.
    CPacketSocket(int nDescriptor, FrameSender peer) : m_nDescriptor(nDescriptor), m_peer(peer) {}
    ~CPacketSocket();
    CPacketSocket(const CPacketSocket&) = delete;
    CPacketSocket& operator=(const CPacketSocket&) = delete;

    int Descriptor() const { return m_nDescriptor; }

    /// A frame is sent whole or not at all. Raises no signal.
    Result Send(const CFrame& frame, bool fWait);
    /// Fills the frame when Done.
    Result Receive(CFrame& frame, bool fWait);

private:
    int m_nDescriptor;
    FrameSender m_peer;
};

} // namespace Tarvane
