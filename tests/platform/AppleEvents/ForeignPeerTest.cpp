#include "tests/platform/AppleEvents/ForeignPeer.h"
#include "platform/gnustep/AppleEvents/Wire.h"
#include "tests/platform/AppleEvents/EventFixture.h"

#include <atomic>
#include <thread>

#include <unistd.h>

using namespace AppleEventTests;
using namespace AppleEvents;
using namespace TestReceiver;

namespace
{

using Answer = std::pair<OSErr, std::string>;

constexpr std::uint64_t kPlentyMicroseconds = 40'000'000;

// A sender that calls the receiver of these tests by hand.
class ForeignSender : public ReceiverTest
{
protected:
    MessageRef NewCall(const char* path, const char* interface, const char* member)
    {
        sd_bus_message* call = nullptr;
        const std::string name = BusNameForSignature('Tst1');
        EXPECT_GE(sd_bus_message_new_method_call(m_connection.get(), &call, name.c_str(), path,
                                                 interface, member),
                  0);
        return MessageRef(call);
    }

    MessageRef NewSend() { return NewCall(kObjectPath, kInterface, kSendMember); }

    MessageRef NewBulkCall(SInt32 nBytes)
    {
        Parameters parameters;
        const auto* const first = reinterpret_cast<const unsigned char*>(&nBytes);
        parameters[keyDirectObject] = {typeSInt32, Bytes(first, first + sizeof nBytes)};
        MessageRef call = NewSend();
        sd_bus_message_append(call.get(), "uu", UInt32(kClass), UInt32(kBulk));
        EXPECT_GE(AppendParameters(call.get(), parameters), 0);
        return call;
    }

    static int CountReply(sd_bus_message* message, void* nReplies, sd_bus_error*)
    {
        *static_cast<int*>(nReplies) += sd_bus_message_is_method_error(message, nullptr) == 0;
        return 1;
    }

    // The name of the error that comes back; empty for a reply, which goes to `reply`.
    std::string Call(const MessageRef& call, MessageRef* reply = nullptr)
    {
        sd_bus_error error = SD_BUS_ERROR_NULL;
        sd_bus_message* received = nullptr;
        sd_bus_call(m_connection.get(), call.get(), kPlentyMicroseconds, &error, &received);
        MessageRef message(received);
        const std::string name = error.name ? error.name : "";
        sd_bus_error_free(&error);
        if (reply)
            *reply = std::move(message);
        return name;
    }

    BusRef m_connection = ConnectToBus();
};

SInt32 StatusIn(const MessageRef& reply)
{
    std::int16_t status = -32000;
    EXPECT_GE(sd_bus_message_read(reply.get(), "n", &status), 0);
    return status;
}

MessageRef ErrorReply(sd_bus_message* call, const char* szName)
{
    sd_bus_error error = SD_BUS_ERROR_MAKE_CONST(szName, "by a test");
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_error(call, &reply, &error);
    return MessageRef(reply);
}

MessageRef EmptyReply(sd_bus_message* call)
{
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    return MessageRef(reply);
}

MessageRef StatusReply(sd_bus_message* call, OSErr status)
{
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    sd_bus_message_append(reply, "n", int(status));
    AppendParameters(reply, {});
    return MessageRef(reply);
}

OSErr StatusWhenAnswered(ForeignReceiver::Answer answer)
{
    const ForeignReceiver receiver(BusNameForSignature('Tst1'), std::move(answer));
    return SendAndWait(kEcho);
}

} // namespace

TEST_F(ForeignSender, WrongArgumentsAreRefusedAndDoNoHarm)
{
    const char* const kInvalid = "org.freedesktop.DBus.Error.InvalidArgs";
    EXPECT_EQ(kInvalid, Call(NewSend()));
    MessageRef text = NewSend();
    sd_bus_message_append(text.get(), "s", "rubbish");
    EXPECT_EQ(kInvalid, Call(text));
    MessageRef nested = NewSend();
    sd_bus_message_append(nested.get(), "uua(uus)", 1, 2, 1, 3, 4, "text");
    EXPECT_EQ(kInvalid, Call(nested));
    MessageRef longer = NewSend();
    sd_bus_message_append(longer.get(), "uua(uuay)u", 1, 2, 0, 3);
    EXPECT_EQ(kInvalid, Call(longer));
    EXPECT_EQ(Answer(noErr, "alive"), Echo("alive"));
    EXPECT_EQ(1, HandledEvents());
}

TEST_F(ForeignSender, UnknownPathsAndMembersAreRefusedAndDoNoHarm)
{
    EXPECT_NE("", Call(NewCall("/", kInterface, kSendMember)));
    EXPECT_NE("", Call(NewCall("/org/tarvane/AppleEvent/below", kInterface, kSendMember)));
    EXPECT_NE("", Call(NewCall(kObjectPath, kInterface, "Receive")));
    EXPECT_NE("", Call(NewCall(kObjectPath, "org.example.Other", kSendMember)));
    EXPECT_EQ("", Call(NewCall(kObjectPath, "org.freedesktop.DBus.Peer", "Ping")));
    EXPECT_EQ("", Call(NewCall(kObjectPath, "org.freedesktop.DBus.Introspectable", "Introspect")));
    EXPECT_EQ(Answer(noErr, "alive"), Echo("alive"));
}

TEST_F(ForeignSender, LaterOfTwoAlikeKeywordsCounts)
{
    MessageRef call = NewSend();
    sd_bus_message_append(call.get(), "uua(uuay)", UInt32(kClass), UInt32(kEcho), 2, UInt32('Aaaa'),
                          UInt32(typeChar), 1, 'f', UInt32('Aaaa'), UInt32(typeChar), 2, 's', 'x');
    MessageRef reply;
    ASSERT_EQ("", Call(call, &reply));
    EXPECT_EQ(noErr, StatusIn(reply));
    Parameters parameters;
    ASSERT_EQ(noErr, ReadParameters(reply.get(), parameters));
    ASSERT_EQ(1u, parameters.size());
    EXPECT_EQ((Bytes{'s', 'x'}), parameters['Aaaa'].bytes);
}

TEST_F(ForeignSender, EventOverTheLimitIsRefusedByTheReceiver)
{
    Parameters parameters;
    parameters['Aaaa'] = {typeChar, Bytes(kMaximumEventBytes - kParameterOverhead + 1)};
    MessageRef call = NewSend();
    sd_bus_message_append(call.get(), "uu", UInt32(kClass), UInt32(kEcho));
    ASSERT_GE(AppendParameters(call.get(), parameters), 0);
    MessageRef reply;
    ASSERT_EQ("", Call(call, &reply));
    EXPECT_EQ(bufferIsSmall, StatusIn(reply));
    EXPECT_EQ(0, HandledEvents());
}

TEST_F(ForeignSender, ReplyOverTheLimitIsNotSentByTheReceiver)
{
    MessageRef reply;
    ASSERT_EQ("", Call(NewBulkCall(SInt32(kMaximumEventBytes - kParameterOverhead + 1)), &reply));
    EXPECT_EQ(bufferIsSmall, StatusIn(reply));
    Parameters parameters;
    EXPECT_EQ(noErr, ReadParameters(reply.get(), parameters));
    EXPECT_TRUE(parameters.empty());
}

TEST_F(ForeignSender, FailureIsAnsweredWithoutParameters)
{
    // The handler puts a parameter into its reply and then fails.
    MessageRef call = NewSend();
    sd_bus_message_append(call.get(), "uua(uuay)", UInt32(kClass), UInt32(kFail), 1,
                          UInt32(keyDirectObject), UInt32(typeSInt16), 2, 0xfe, 0xff);
    MessageRef reply;
    ASSERT_EQ("", Call(call, &reply));
    EXPECT_EQ(-2, StatusIn(reply));
    Parameters parameters;
    EXPECT_EQ(noErr, ReadParameters(reply.get(), parameters));
    EXPECT_TRUE(parameters.empty());
}

TEST_F(ForeignSender, RepliesThatTheBusDoesNotTakeAtOnceGoOutLater)
{
    // More than the buffer of a socket holds, and no event afterwards that would push it on.
    constexpr int kReplies = 4;
    m_receiver->Stop();
    int nReplies = 0;
    std::vector<SlotRef> calls;
    for (int i = 0; i < kReplies; i++)
    {
        sd_bus_slot* slot = nullptr;
        const MessageRef call = NewBulkCall(15'000'000);
        ASSERT_GE(sd_bus_call_async(m_connection.get(), &slot, call.get(), CountReply, &nReplies,
                                    kPlentyMicroseconds),
                  0);
        calls.emplace_back(slot);
    }
    // By these answers the bus has handed the events on.
    ConnectionsOnTheBus(m_connection.get());
    ConnectionsOnTheBus(m_connection.get());
    m_bus.Freeze();
    m_receiver->Continue();
    usleep(500'000);
    m_bus.Thaw();
    ProcessUntil(m_connection.get(), Deadline::After(kPlentyMicroseconds),
                 [&] { return nReplies == kReplies; });
    EXPECT_EQ(kReplies, nReplies);
}

TEST_F(ForeignSender, EventThatComesWhileTheBusIsAskedForItsSenderIsHandledInsideTheHandlerBefore)
{
    m_receiver->Stop();
    int nReplies = 0;
    std::vector<SlotRef> calls;
    for (const AEEventID id : {kNest, kEcho})
    {
        const MessageRef call = NewSend();
        sd_bus_message_append(call.get(), "uu", UInt32(kClass), UInt32(id));
        ASSERT_GE(AppendParameters(call.get(), {}), 0);
        sd_bus_slot* slot = nullptr;
        ASSERT_GE(sd_bus_call_async(m_connection.get(), &slot, call.get(), CountReply, &nReplies,
                                    kPlentyMicroseconds),
                  0);
        calls.emplace_back(slot);
    }
    // By this answer the bus has handed both on, ahead of any answer to the receiver.
    ConnectionsOnTheBus(m_connection.get());
    m_receiver->Continue();
    ProcessUntil(m_connection.get(), Deadline::After(kPlentyMicroseconds),
                 [&] { return nReplies == 2; });
    EXPECT_EQ(2, nReplies);
}

TEST_F(ForeignSender, EventOfManyEmptyParametersIsBoundedToo)
{
    MessageRef call = NewSend();
    sd_bus_message_append(call.get(), "uu", UInt32(kClass), UInt32(kEcho));
    sd_bus_message_open_container(call.get(), 'a', "(uuay)");
    for (std::size_t i = 0; i <= kMaximumEventBytes / kParameterOverhead; i++)
        sd_bus_message_append(call.get(), "(uuay)", UInt32(i), UInt32(typeChar), 0);
    sd_bus_message_close_container(call.get());
    MessageRef reply;
    ASSERT_EQ("", Call(call, &reply));
    EXPECT_EQ(bufferIsSmall, StatusIn(reply));
    EXPECT_EQ(Answer(noErr, "alive"), Echo("alive"));
}

TEST_F(ForeignSender, SenderThatGoesBeforeTheReplyDoesNoHarm)
{
    for (int i = 0; i < 20; i++)
    {
        MessageRef call = NewSend();
        sd_bus_message_append(call.get(), "uua(uuay)", UInt32(kClass), UInt32(kEcho), 0);
        sd_bus_send(m_connection.get(), call.get(), nullptr);
        sd_bus_flush(m_connection.get());
        m_connection = ConnectToBus();
    }
    EXPECT_EQ(Answer(noErr, "alive"), Echo("alive"));
    EXPECT_EQ(21, HandledEvents());
}

TEST_F(ForeignSender, ConnectionOfAThreadEndsWithTheThread)
{
    ASSERT_EQ(noErr, Echo("main").first);
    const int nBefore = ConnectionsOnTheBus(m_connection.get());
    int nDuring = 0;
    std::thread(
        [&]
        {
            EXPECT_EQ(noErr, Echo("thread").first);
            EXPECT_EQ(noErr, Echo("thread").first);
            nDuring = ConnectionsOnTheBus(m_connection.get());
        })
        .join();
    EXPECT_EQ(nBefore + 1, nDuring);
    int nAfter = nDuring;
    for (int i = 0; i < 1000 && nAfter != nBefore; i++, usleep(10'000))
        nAfter = ConnectionsOnTheBus(m_connection.get());
    EXPECT_EQ(nBefore, nAfter);
}

class ForeignReply : public BusTest
{
};

TEST_F(ForeignReply, OfOtherTypesIsCorruptData)
{
    EXPECT_EQ(errAECorruptData, StatusWhenAnswered(EmptyReply));
    EXPECT_EQ(errAECorruptData, StatusWhenAnswered(
                                    [](sd_bus_message* call)
                                    {
                                        MessageRef reply = EmptyReply(call);
                                        sd_bus_message_append(reply.get(), "s", "fine");
                                        return reply;
                                    }));
    EXPECT_EQ(errAECorruptData, StatusWhenAnswered(
                                    [](sd_bus_message* call)
                                    {
                                        MessageRef reply = EmptyReply(call);
                                        sd_bus_message_append(reply.get(), "na(uuay)s", 0, 0, "x");
                                        return reply;
                                    }));
}

TEST_F(ForeignReply, IsNotAskedForByAnEventOverTheLimit)
{
    std::atomic<int> nCalls = 0;
    const ForeignReceiver receiver(BusNameForSignature('Tst1'),
                                   [&](sd_bus_message* call)
                                   {
                                       nCalls++;
                                       return EmptyReply(call);
                                   });
    EXPECT_EQ(errAECorruptData, Echo("small").first);
    EXPECT_EQ(bufferIsSmall, Echo(std::string(kMaximumEventBytes, 'x')).first);
    EXPECT_EQ(1, nCalls);
}

TEST_F(ForeignReply, OverTheLimitIsRefusedByTheSender)
{
    EXPECT_EQ(bufferIsSmall, StatusWhenAnswered(
                                 [](sd_bus_message* call)
                                 {
                                     Parameters parameters;
                                     parameters['Rslt'] = {typeChar, Bytes(kMaximumEventBytes)};
                                     MessageRef reply = EmptyReply(call);
                                     sd_bus_message_append(reply.get(), "n", 0);
                                     AppendParameters(reply.get(), parameters);
                                     return reply;
                                 }));
}

TEST_F(ForeignReply, ErrorsAreMappedByTheirNames)
{
    const std::pair<const char*, OSErr> kErrors[] = {
        {"org.freedesktop.DBus.Error.NoReply", connectionInvalid},
        {"org.freedesktop.DBus.Error.UnknownMethod", errAEEventNotHandled},
        {"org.freedesktop.DBus.Error.AccessDenied", errAEEventNotPermitted},
        {"org.freedesktop.DBus.Error.NoMemory", memFullErr},
        {"com.example.Odd", errAEEventFailed},
    };
    for (const auto& expected : kErrors)
        EXPECT_EQ(expected.second, StatusWhenAnswered([&](sd_bus_message* call)
                                                      { return ErrorReply(call, expected.first); }))
            << expected.first;
}

TEST_F(ForeignReply, ParametersOfAFailureAreNotHandedOn)
{
    const ForeignReceiver receiver(BusNameForSignature('Tst1'),
                                   [](sd_bus_message* call)
                                   {
                                       MessageRef reply = EmptyReply(call);
                                       sd_bus_message_append(reply.get(), "na(uuay)", -5, 1, 'Rslt',
                                                             typeChar, 1, 'x');
                                       return reply;
                                   });
    Desc event = NewEvent(kEcho);
    Desc reply;
    EXPECT_EQ(-5, SendAndWait(event, reply));
    EXPECT_EQ(DescType(typeNull), reply.descriptorType);
}

TEST_F(ForeignReply, ThatNeverComesIsATimeout)
{
    const ForeignReceiver receiver(BusNameForSignature('Tst1'),
                                   [](sd_bus_message*) { return MessageRef(); });
    EXPECT_EQ(errAETimeout, SendAndWait(kEcho, 12));
}

TEST_F(ForeignReply, OfWhoeverDoesNotOwnTheNameIsPassedOver)
{
    constexpr OSErr kForged = -30001, kTrue = -30002;
    const BusRef impostor = ConnectToBus();
    const OSErr status = StatusWhenAnswered(
        [&](sd_bus_message* call)
        {
            for (const OSErr nStatus : {kForged, OSErr(noErr)})
                EXPECT_GE(sd_bus_send(impostor.get(), StatusReply(call, nStatus).get(), nullptr),
                          0);
            // Delivered before the true one is sent.
            EXPECT_GT(ConnectionsOnTheBus(impostor.get()), 0);
            return StatusReply(call, kTrue);
        });
    EXPECT_EQ(kTrue, status);
}
