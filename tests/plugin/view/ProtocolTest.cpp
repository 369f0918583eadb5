#include "plugin/view/PacketSocket.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

using namespace Tarvane;

namespace
{

std::optional<CFrame> Decode(const std::vector<std::uint8_t>& packet, FrameSender sender)
{
    // A copy of just this size, so that a byte read too many is found.
    const std::unique_ptr<std::uint8_t[]> pBytes(new std::uint8_t[packet.size()]);
    std::copy(packet.begin(), packet.end(), pBytes.get());
    return DecodeFrame(pBytes.get(), packet.size(), sender);
}

bool IsTaken(const CFrame& frame, FrameSender sender)
{
    return Decode(EncodeFrame(frame), sender).has_value();
}

class SocketPair : public testing::Test
{
protected:
    SocketPair()
    {
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets), 0);
        pPlugIn.emplace(sockets[0], FrameSender::View);
    }
    ~SocketPair() override
    {
        if (fViewOpen)
            ::close(sockets[1]);
    }
    void SendRaw(const std::vector<std::uint8_t>& bytes)
    {
        ASSERT_EQ(::send(sockets[1], bytes.data(), bytes.size(), 0),
                  static_cast<ssize_t>(bytes.size()));
    }
    void CloseView()
    {
        ::close(sockets[1]);
        fViewOpen = false;
    }

    int sockets[2] = {-1, -1};
    bool fViewOpen = true;
    std::optional<CPacketSocket> pPlugIn;
    CFrame frame;
};

} // namespace

TEST(Protocol, AFrameComesOutAsItWentIn)
{
    const CFrame frame{.kind = FrameKind::Set,
                       .nId = 64008,
                       .nElement = 7,
                       .nStatus = -10879,
                       .nSize = 4095,
                       .nSerial = 0xFFFFFFFF,
                       .data = {1, 0, 255}};
    EXPECT_EQ(Decode(EncodeFrame(frame), FrameSender::View), frame);
}

TEST(Protocol, TheHeaderIsSixNumbersOfFourBytes)
{
    EXPECT_EQ(EncodeFrame({.kind = FrameKind::Notify, .nId = 64010}),
              (std::vector<std::uint8_t>{10, 0, 0, 0, 0x0A, 0xFA, 0, 0, 0, 0, 0, 0,
                                         0,  0, 0, 0, 0,    0,    0, 0, 0, 0, 0, 0}));
}

TEST(Protocol, EachKindIsTakenFromItsOwnSideAlone)
{
    for (const FrameKind kind : {FrameKind::Get, FrameKind::Info, FrameKind::Set, FrameKind::Ready,
                                 FrameKind::Failed, FrameKind::Outcome, FrameKind::ServerAppeared})
    {
        EXPECT_TRUE(IsTaken({.kind = kind}, FrameSender::View)) << static_cast<int>(kind);
        EXPECT_FALSE(IsTaken({.kind = kind}, FrameSender::PlugIn)) << static_cast<int>(kind);
    }
    for (const FrameKind kind :
         {FrameKind::Reply, FrameKind::Notify, FrameKind::Embed, FrameKind::Detach})
    {
        EXPECT_TRUE(IsTaken({.kind = kind}, FrameSender::PlugIn)) << static_cast<int>(kind);
        EXPECT_FALSE(IsTaken({.kind = kind}, FrameSender::View)) << static_cast<int>(kind);
    }
    EXPECT_TRUE(IsTaken({.kind = FrameKind::Hello}, FrameSender::View));
    EXPECT_TRUE(IsTaken({.kind = FrameKind::Hello}, FrameSender::PlugIn));
}

TEST(Protocol, AnUnknownKindIsNoFrame)
{
    EXPECT_FALSE(IsTaken({.kind = static_cast<FrameKind>(0)}, FrameSender::View));
    EXPECT_FALSE(IsTaken({.kind = static_cast<FrameKind>(99)}, FrameSender::View));
}

TEST(Protocol, APacketShorterThanAHeaderIsNoFrame)
{
    std::vector<std::uint8_t> packet = EncodeFrame({.kind = FrameKind::Ready});
    while (!packet.empty())
    {
        packet.pop_back();
        EXPECT_FALSE(Decode(packet, FrameSender::View)) << packet.size();
    }
}

TEST(Protocol, DataBeyondItsBoundIsNoFrame)
{
    CFrame frame{.kind = FrameKind::Set};
    frame.data.resize(kMaxFrameData);
    EXPECT_TRUE(IsTaken(frame, FrameSender::View));
    frame.data.resize(kMaxFrameData + 1);
    EXPECT_FALSE(IsTaken(frame, FrameSender::View));
    EXPECT_FALSE(IsTaken({.kind = FrameKind::Get, .data = {1}}, FrameSender::View));
}

TEST_F(SocketPair, AFrameIsReceivedWhole)
{
    SendRaw(EncodeFrame({.kind = FrameKind::Get, .nId = 64002, .nSerial = 3}));
    ASSERT_EQ(pPlugIn->Receive(frame, false), CPacketSocket::Result::Done);
    EXPECT_EQ(frame, (CFrame{.kind = FrameKind::Get, .nId = 64002, .nSerial = 3}));
    EXPECT_EQ(pPlugIn->Receive(frame, false), CPacketSocket::Result::WouldBlock);
}

TEST_F(SocketPair, APacketThatIsTooLongEndsTheConnection)
{
    CFrame longer{.kind = FrameKind::Set};
    longer.data.resize(kMaxFrameData + 1);
    SendRaw(EncodeFrame(longer));
    EXPECT_EQ(pPlugIn->Receive(frame, false), CPacketSocket::Result::Ended);
}

TEST_F(SocketPair, BytesThatAreNoFrameEndTheConnection)
{
    SendRaw({'h', 'e', 'l', 'l', 'o'});
    EXPECT_EQ(pPlugIn->Receive(frame, false), CPacketSocket::Result::Ended);
}

TEST_F(SocketPair, ThePeersEndIsTheConnectionsEnd)
{
    CloseView();
    EXPECT_EQ(pPlugIn->Receive(frame, true), CPacketSocket::Result::Ended);
    EXPECT_EQ(pPlugIn->Send({.kind = FrameKind::Notify}, true), CPacketSocket::Result::Ended);
}

TEST_F(SocketPair, SendingToAPeerThatReadsNothingDoesNotWait)
{
    CPacketSocket::Result result = CPacketSocket::Result::Done;
    for (int n = 0; n < 100000 && result == CPacketSocket::Result::Done; ++n)
        result = pPlugIn->Send({.kind = FrameKind::Notify, .nId = 64010}, false);
    EXPECT_EQ(result, CPacketSocket::Result::WouldBlock);
}
