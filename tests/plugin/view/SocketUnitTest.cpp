// The view's end of the connection: an ordinary unit to whoever opens it. The test is the plug-in.
#include "plugin/view/SocketUnit.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/delivery/DeliveryWatch.h"
#include "plugin/view/PlugInConnection.h"

#include <atomic>
#include <cstring>
#include <future>
#include <gtest/gtest.h>
#include <optional>
#include <sys/socket.h>
#include <thread>
#include <vector>

using namespace Tarvane;

namespace
{

class SocketUnit : public testing::Test
{
protected:
    SocketUnit()
    {
        int sockets[2];
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets), 0);
        plugIn.emplace(sockets[0], FrameSender::View);
        connection.emplace(sockets[1],
                           CPlugInConnection::Hooks{.notified = &CSocketUnit::Raise,
                                                    .embed = [](std::uint32_t) {},
                                                    .detach = [](std::uint32_t) {},
                                                    .ended = [this] { fEnded.set_value(); }});
        EXPECT_EQ(AudioComponentInstanceNew(CSocketUnit::Register(*connection, deliveries), &pUnit),
                  noErr);
        EXPECT_EQ(Receive(), (CFrame{.kind = FrameKind::Hello, .nId = kViewProtocolVersion}));
        Send({.kind = FrameKind::Hello, .nId = kViewProtocolVersion});
    }
    ~SocketUnit() override
    {
        AudioComponentInstanceDispose(pUnit);
        connection.reset();
    }

    CFrame Receive()
    {
        CFrame frame;
        EXPECT_EQ(plugIn->Receive(frame, true), CPacketSocket::Result::Done);
        return frame;
    }
    void Send(const CFrame& frame)
    {
        EXPECT_EQ(plugIn->Send(frame, true), CPacketSocket::Result::Done);
    }
    // Answers the next question on a thread of its own.
    std::future<CFrame> AnswerNext(CFrame reply)
    {
        return std::async(std::launch::async,
                          [this, reply]() mutable
                          {
                              const CFrame question = Receive();
                              reply.kind = FrameKind::Reply;
                              reply.nSerial = question.nSerial;
                              Send(reply);
                              return question;
                          });
    }

    CCommandWatch commands;
    CDeliveryWatch deliveries{commands};
    std::promise<void> fEnded;
    std::optional<CPacketSocket> plugIn;
    std::optional<CPlugInConnection> connection;
    AudioUnit pUnit = nullptr;
};

} // namespace

TEST_F(SocketUnit, AReadIsAskedAndAnswered)
{
    const std::int32_t nNext = 42;
    CFrame reply;
    reply.data.resize(sizeof nNext);
    std::memcpy(reply.data.data(), &nNext, sizeof nNext);
    auto question = AnswerNext(reply);
    std::int32_t nRead = 0;
    UInt32 nSize = sizeof nRead;
    EXPECT_EQ(AudioUnitGetProperty(pUnit, TNProperty_NextElement, kAudioUnitScope_Global, 3, &nRead,
                                   &nSize),
              noErr);
    EXPECT_EQ(nRead, 42);
    EXPECT_EQ(nSize, sizeof nRead);
    const CFrame asked = question.get();
    EXPECT_EQ(asked.kind, FrameKind::Get);
    EXPECT_EQ(asked.nId, std::uint32_t{TNProperty_NextElement});
    EXPECT_EQ(asked.nElement, 3U);
    EXPECT_EQ(asked.nSize, sizeof nRead);
}

TEST_F(SocketUnit, AReplyThatIsLargerThanTheRoomIsNotTaken)
{
    CFrame reply;
    reply.data.resize(8, 0xFF);
    auto question = AnswerNext(reply);
    std::int32_t nRead = 5;
    UInt32 nSize = sizeof nRead;
    EXPECT_EQ(AudioUnitGetProperty(pUnit, TNProperty_NextElement, kAudioUnitScope_Global, 0, &nRead,
                                   &nSize),
              kAudioUnitErr_InvalidParameter);
    EXPECT_EQ(nRead, 5);
}

TEST_F(SocketUnit, AStatusOfThePlugInIsTheCallers)
{
    auto question = AnswerNext({.nStatus = kAudioUnitErr_InvalidElement});
    TNCaptureElement element;
    UInt32 nSize = sizeof element;
    EXPECT_EQ(AudioUnitGetProperty(pUnit, TNProperty_ElementInfo, kAudioUnitScope_Global, 9,
                                   &element, &nSize),
              kAudioUnitErr_InvalidElement);
}

TEST_F(SocketUnit, AWriteTravelsWithItsBytes)
{
    auto question = AnswerNext({});
    const TNArmRequest request{1, 1};
    EXPECT_EQ(AudioUnitSetProperty(pUnit, TNProperty_SetArmCapture, kAudioUnitScope_Global, 0,
                                   &request, sizeof request),
              noErr);
    EXPECT_EQ(question.get().data, (std::vector<std::uint8_t>{1, 1}));
}

TEST_F(SocketUnit, BeforeAnAcknowledgeThePlugInHearsWhatBecameOfTheTake)
{
    const TNElementAck ack{6, 1, 1, 1};
    auto written =
        std::async(std::launch::async,
                   [&]
                   {
                       return AudioUnitSetProperty(pUnit, TNProperty_ElementDone,
                                                   kAudioUnitScope_Global, 0, &ack, sizeof ack);
                   });
    const CFrame outcome = Receive();
    EXPECT_EQ(outcome.kind, FrameKind::Outcome);
    EXPECT_EQ(outcome.nElement, 6U);
    EXPECT_EQ(outcome.nId, 3U) << "nothing was sent to a server: unreachable";
    EXPECT_EQ(outcome.data.size(), sizeof(double));
    const CFrame set = Receive();
    EXPECT_EQ(set.kind, FrameKind::Set);
    EXPECT_EQ(set.nId, std::uint32_t{TNProperty_ElementDone});
    Send({.kind = FrameKind::Reply, .nSerial = set.nSerial});
    EXPECT_EQ(written.get(), noErr);
}

TEST_F(SocketUnit, InfoTellsSizeAndWhetherItIsWritable)
{
    auto question = AnswerNext({.nId = 1, .nSize = 4});
    UInt32 nSize = 0;
    Boolean fWritable = false;
    EXPECT_EQ(AudioUnitGetPropertyInfo(pUnit, TNProperty_SelectedTrack, kAudioUnitScope_Global, 0,
                                       &nSize, &fWritable),
              noErr);
    EXPECT_EQ(nSize, 4U);
    EXPECT_TRUE(fWritable);
    EXPECT_EQ(question.get().kind, FrameKind::Info);
}

TEST_F(SocketUnit, AScopeOtherThanTheGlobalOneIsAskedOfNobody)
{
    UInt32 nSize = 4;
    std::int32_t nRead = 0;
    EXPECT_EQ(AudioUnitGetProperty(pUnit, TNProperty_NextElement, kAudioUnitScope_Input, 0, &nRead,
                                   &nSize),
              kAudioUnitErr_InvalidScope);
}

TEST_F(SocketUnit, ANotificationReachesTheListenersAndMayNotAskBack)
{
    struct Heard
    {
        std::promise<OSStatus> status;
    } heard;
    AudioUnitAddPropertyListener(
        pUnit, TNProperty_Elements,
        [](void* pUserData, AudioUnit pFrom, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement)
        {
            std::int32_t nRead = 0;
            UInt32 nSize = sizeof nRead;
            static_cast<Heard*>(pUserData)->status.set_value(AudioUnitGetProperty(
                pFrom, TNProperty_NextElement, kAudioUnitScope_Global, 0, &nRead, &nSize));
        },
        &heard);
    Send({.kind = FrameKind::Notify, .nId = TNProperty_Elements});
    EXPECT_EQ(heard.status.get_future().get(), kAudioUnitErr_CannotDoInCurrentContext);
}

TEST_F(SocketUnit, AskingWhenThePlugInIsGoneFailsInsteadOfWaiting)
{
    auto asked =
        std::async(std::launch::async,
                   [&]
                   {
                       std::int32_t nRead = 0;
                       UInt32 nSize = sizeof nRead;
                       return AudioUnitGetProperty(pUnit, TNProperty_NextElement,
                                                   kAudioUnitScope_Global, 0, &nRead, &nSize);
                   });
    Receive();
    plugIn.reset();
    EXPECT_EQ(asked.get(), kAudioUnitErr_Uninitialized);
    fEnded.get_future().wait();
}

TEST_F(SocketUnit, BytesThatAreNoFrameEndTheConnection)
{
    ASSERT_GT(::send(plugIn->Descriptor(), "?", 1, 0), 0);
    fEnded.get_future().wait();
}

TEST_F(SocketUnit, RepliesFindTheirQuestionsWhateverTheirOrder)
{
    const auto fnAsk = [&](std::uint32_t nId)
    {
        return std::async(std::launch::async,
                          [=, this]
                          {
                              std::uint8_t nRead = 0;
                              UInt32 nSize = 1;
                              AudioUnitGetProperty(pUnit, nId, kAudioUnitScope_Global, 0, &nRead,
                                                   &nSize);
                              return nRead;
                          });
    };
    auto first = fnAsk(1);
    auto second = fnAsk(2);
    const CFrame a = Receive();
    const CFrame b = Receive();
    Send({.kind = FrameKind::Reply, .nSerial = 12345});
    for (const CFrame& question : {b, a})
        Send({.kind = FrameKind::Reply,
              .nSerial = question.nSerial,
              .data = {static_cast<std::uint8_t>(question.nId * 10)}});
    EXPECT_EQ(first.get(), 10);
    EXPECT_EQ(second.get(), 20);
}
