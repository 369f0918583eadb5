#include "tests/platform/AppleEvents/EventFixture.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <thread>
#include <vector>

#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace AppleEventTests;
using namespace TestReceiver;
using namespace TarvaneTests;

namespace
{

constexpr std::size_t kLimit = 16 * 1024 * 1024;
constexpr std::size_t kOverhead = 16;

using Answer = std::pair<OSErr, std::string>;

std::string EveryByte()
{
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return bytes;
}

OSErr SendRaw(Desc& event, AppleEvent* reply, AESendMode mode, SInt32 ticks = kPlentyTicks)
{
    return AESend(&event, reply, mode, kAENormalPriority, ticks, nullptr, nullptr);
}

} // namespace

using AppleEventSending = ReceiverTest;

TEST_F(AppleEventSending, BytesAndTypesTravelUnchanged)
{
    Desc event = NewEvent(kEcho);
    Put(event, 'Aaaa', typeUnicodeText, EveryByte());
    Put(event, 'Bbbb', 'odd\xff', "");
    Put(event, keyDirectObject, typeNull, std::string("a\0b", 3));
    Desc reply;
    ASSERT_EQ(noErr, SendAndWait(event, reply));
    EXPECT_EQ(EveryByte(), Text(reply, 'Aaaa'));
    EXPECT_EQ("", Text(reply, 'Bbbb'));
    EXPECT_EQ(std::string("a\0b", 3), Text(reply, keyDirectObject));
    DescType type = 0;
    Size size = 77;
    EXPECT_EQ(noErr, AESizeOfParam(&reply, 'Bbbb', &type, &size));
    EXPECT_EQ(DescType('odd\xff'), type);
    EXPECT_EQ(0, size);
    EXPECT_EQ(noErr, AESizeOfParam(&reply, 'Aaaa', &type, &size));
    EXPECT_EQ(DescType(typeUnicodeText), type);
}

TEST_F(AppleEventSending, ParametersThatAreNotThereDoNotAppear)
{
    Desc event = NewEvent(kEcho);
    Desc reply;
    ASSERT_EQ(noErr, SendAndWait(event, reply));
    EXPECT_EQ(errAEDescNotFound, AESizeOfParam(&reply, 'Aaaa', nullptr, nullptr));
}

TEST_F(AppleEventSending, HundredKilobytesTravel)
{
    const std::string text(100'000, 'x');
    EXPECT_EQ(Answer(noErr, text), Echo(text));
}

TEST_F(AppleEventSending, OneEventMayBeSentAgain)
{
    Desc event = NewEvent(kEcho);
    Put(event, 'Aaaa', typeChar, "twice");
    for (int i = 0; i < 2; i++)
    {
        Desc reply;
        ASSERT_EQ(noErr, SendAndWait(event, reply));
        EXPECT_EQ("twice", Text(reply, 'Aaaa'));
    }
    EXPECT_EQ(2, HandledEvents());
}

TEST_F(AppleEventSending, ReplyIsOverwrittenWithoutBeingLookedAt)
{
    AppleEvent reply{typeAppleEvent, reinterpret_cast<AEDataStorage>(0x10)};
    Desc event = NewEvent(kEcho);
    ASSERT_EQ(noErr, SendRaw(event, &reply, kAEWaitReply));
    EXPECT_EQ(DescType(typeAppleEvent), reply.descriptorType);
    AEDisposeDesc(&reply);
    reply = {typeAppleEvent, reinterpret_cast<AEDataStorage>(0x10)};
    Desc nobody = NewEvent(kEcho, 'Nobd');
    ASSERT_EQ(procNotFound, SendRaw(nobody, &reply, kAEWaitReply));
    EXPECT_EQ(DescType(typeNull), reply.descriptorType);
    EXPECT_EQ(nullptr, reply.dataHandle);
}

TEST_F(AppleEventSending, NobodyWithTheSignatureIsProcNotFound)
{
    EXPECT_EQ(procNotFound, Echo("x", 'Nobd').first);
}

TEST_F(AppleEventSending, ClassOrIdWithoutAHandlerIsNotHandled)
{
    EXPECT_EQ(errAEEventNotHandled, SendAndWait('None'));
    Desc otherClass = NewEvent(kEcho, 'Tst1', 'Othr');
    Desc reply;
    EXPECT_EQ(errAEEventNotHandled, SendAndWait(otherClass, reply));
    EXPECT_EQ(0, HandledEvents());
}

TEST_F(AppleEventSending, StatusOfTheHandlerIsTheSenders)
{
    for (const SInt16 status : std::initializer_list<SInt16>{-1, -1708, 42, INT16_MIN, INT16_MAX})
    {
        Desc event = NumberEvent(kFail, status);
        Desc reply;
        EXPECT_EQ(status, SendAndWait(event, reply));
        EXPECT_EQ(DescType(typeNull), reply.descriptorType);
    }
}

TEST_F(AppleEventSending, HandlerThatThrowsHasFailedAndTheReceiverLives)
{
    EXPECT_EQ(errAEEventFailed, SendAndWait(kThrow));
    EXPECT_EQ(errAEEventFailed, SendAndWait(kThrowInt));
    EXPECT_EQ(errAEEventFailed, SendAndWait(kRaise));
    EXPECT_EQ(Answer(noErr, "alive"), Echo("alive"));
}

TEST_F(AppleEventSending, ReceiverThatEndsMidCallIsConnectionInvalid)
{
    EXPECT_EQ(connectionInvalid, SendAndWait(kDie));
    EXPECT_EQ(procNotFound, Echo("x").first);
}

TEST_F(AppleEventSending, ReceiverThatComesBackIsFound)
{
    ASSERT_EQ(noErr, Echo("first").first);
    m_receiver->Kill();
    EXPECT_TRUE(m_receiver->WaitForEnd(kPlentyTime));
    m_receiver = StartReceiver('Tst1');
    EXPECT_EQ(Answer(noErr, "second"), Echo("second"));
}

TEST_F(AppleEventSending, LargestRequestAndReplyTravel)
{
    const std::string text(kLimit - kOverhead, 'x');
    const Answer answer = Echo(text);
    EXPECT_EQ(noErr, answer.first);
    EXPECT_TRUE(answer.second == text);
}

TEST_F(AppleEventSending, RequestOverTheLimitIsNotSent)
{
    EXPECT_EQ(bufferIsSmall, Echo(std::string(kLimit - kOverhead + 1, 'x')).first);
    EXPECT_EQ(0, HandledEvents());
}

TEST_F(AppleEventSending, ReplyOverTheLimitIsAStatusAndTheReceiverLives)
{
    Desc fits = NumberEvent(kBulk, SInt32(kLimit - kOverhead));
    Desc reply;
    EXPECT_EQ(noErr, SendAndWait(fits, reply));
    Desc event = NumberEvent(kBulk, SInt32(kLimit - kOverhead + 1));
    EXPECT_EQ(bufferIsSmall, SendAndWait(event, reply));
    EXPECT_EQ(Answer(noErr, "alive"), Echo("alive"));
}

TEST_F(AppleEventSending, WithoutReplyTheEventIsHandledOnce)
{
    Desc event = NewEvent(kEcho);
    AppleEvent reply{typeChar, nullptr};
    EXPECT_EQ(noErr, SendRaw(event, &reply, kAENoReply));
    EXPECT_EQ(DescType(typeNull), reply.descriptorType);
    EXPECT_EQ(noErr, SendRaw(event, nullptr, kAENoReply | kAENeverInteract));
    EXPECT_EQ(2, HandledEvents());
}

TEST_F(AppleEventSending, WithoutReplyALargeEventLeavesTheProcess)
{
    Desc event = NewEvent(kEcho);
    Put(event, keyDirectObject, typeChar, std::string(8'000'000, 'x'));
    EXPECT_EQ(noErr, SendRaw(event, nullptr, kAENoReply));
    EXPECT_EQ(1, HandledEvents());
}

TEST_F(AppleEventSending, WithoutReplyNobodyIsStillProcNotFound)
{
    Desc event = NewEvent(kEcho, 'Nobd');
    EXPECT_EQ(procNotFound, SendRaw(event, nullptr, kAENoReply));
}

TEST_F(AppleEventSending, ArgumentsWithoutMeaningAreRefused)
{
    Desc event = NewEvent(kEcho);
    Desc reply;
    EXPECT_EQ(-1710, errAEUnknownSendMode);
    EXPECT_EQ(errAEUnknownSendMode, SendRaw(event, &reply, kAEQueueReply));
    EXPECT_EQ(errAEUnknownSendMode, SendRaw(event, &reply, kAECanInteract));
    EXPECT_EQ(paramErr, SendRaw(event, &reply, kAEWaitReply, -3));
    EXPECT_EQ(paramErr, SendRaw(event, nullptr, kAEWaitReply));
    Desc text(typeChar, "abc", 3);
    EXPECT_EQ(errAENotAppleEvent, SendRaw(text, &reply, kAEWaitReply));
    EXPECT_EQ(errAENotAppleEvent, AESend(nullptr, &reply, kAEWaitReply, kAENormalPriority,
                                         kPlentyTicks, nullptr, nullptr));
    EXPECT_EQ(0, HandledEvents());
}

TEST_F(AppleEventSending, AddressesThatAreNoSignatureAreUnknown)
{
    Desc reply;
    for (Desc& target : std::array{Desc(typeChar, "Tst1", 4), Desc(typeApplSignature, "Tst", 3),
                                   Desc(typeApplSignature, "Tst1x", 5), Desc()})
    {
        Desc event;
        ASSERT_EQ(noErr, AECreateAppleEvent(kClass, kEcho, &target, kAutoGenerateReturnID,
                                            kAnyTransactionID, &event));
        EXPECT_EQ(errAEUnknownAddressType, SendAndWait(event, reply));
    }
}

TEST_F(AppleEventSending, ThreadsSendAtTheSameTime)
{
    constexpr int kThreads = 8, kEvents = 40;
    std::atomic<int> nGood = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; i++)
        threads.emplace_back(
            [i, &nGood]
            {
                for (int n = 0; n < kEvents; n++)
                {
                    const std::string text = std::to_string(i) + ":" + std::to_string(n);
                    nGood += Echo(text) == Answer(noErr, text);
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(kThreads * kEvents, nGood);
    EXPECT_EQ(kThreads * kEvents, HandledEvents());
}

TEST_F(AppleEventSending, ForkedChildSendsOnAConnectionOfItsOwn)
{
    ASSERT_EQ(noErr, Echo("parent").first);
    const pid_t nChild = fork();
    if (nChild == 0)
        _exit(Echo("child") == Answer(noErr, "child") ? 0 : 1);
    int nStatus = -1;
    ASSERT_EQ(nChild, waitpid(nChild, &nStatus, 0));
    EXPECT_EQ(0, nStatus);
    EXPECT_EQ(Answer(noErr, "parent again"), Echo("parent again"));
    EXPECT_EQ(3, HandledEvents());
}

TEST_F(AppleEventSending, SignalsDoNoHarmToACall)
{
    struct sigaction action
    {
    }, before{};
    static std::atomic<int> nSignals;
    nSignals = 0;
    action.sa_handler = [](int) { nSignals++; };
    sigaction(SIGALRM, &action, &before);
    const itimerval often{{0, 2000}, {0, 2000}}, never{};
    setitimer(ITIMER_REAL, &often, nullptr);
    Desc event = NumberEvent(kSlow, SInt32(200));
    Desc reply;
    const OSErr status = SendAndWait(event, reply);
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_EQ(noErr, status);
    EXPECT_GT(nSignals, 1);
}

class Signatures : public BusTest, public testing::WithParamInterface<OSType>
{
};

TEST_P(Signatures, AnyFourCharactersNameAReceiver)
{
    const Child receiver = StartReceiver(GetParam());
    EXPECT_EQ(Answer(noErr, "found"), Echo("found", GetParam()));
    EXPECT_EQ(procNotFound, Echo("not", GetParam() ^ 1).first);
}

INSTANTIATE_TEST_SUITE_P(AESend, Signatures,
                         testing::Values('TkNe', '0000', 'a.b/', '    ', 1, 0xfffe017e));

TEST_F(BusTest, TwoReceiversGetTheirOwnEvents)
{
    const Child first = StartReceiver('Tst1'), second = StartReceiver('Tst2');
    EXPECT_EQ(noErr, Echo("x", 'Tst2').first);
    EXPECT_EQ(0, HandledEvents());
}

namespace
{

// A bus that could start a receiver on demand, and would say so by a file.
class ActivatingBus : public testing::Test
{
protected:
    ActivatingBus()
    {
        char folder[] = "/tmp/tarvane-services-XXXXXX";
        m_folder = mkdtemp(folder);
        const std::filesystem::path services = m_folder / "dbus-1" / "services";
        std::filesystem::create_directories(services);
        std::ofstream(services / "org.tarvane.test.service")
            << "[D-BUS Service]\nName=org.tarvane.AppleEvent._54737431\nExec=/bin/sh -c \"touch "
            << Mark().string() << "; exit 1\"\n";
        setenv("XDG_DATA_HOME", m_folder.c_str(), 1);
        m_bus = std::make_unique<PrivateBus>();
        unsetenv("XDG_DATA_HOME");
    }
    ~ActivatingBus() override { std::filesystem::remove_all(m_folder); }

    std::filesystem::path Mark() const { return m_folder / "started"; }

    std::filesystem::path m_folder;
    std::unique_ptr<PrivateBus> m_bus;
};

} // namespace

TEST_F(ActivatingBus, NothingIsStartedOnDemand)
{
    EXPECT_EQ(procNotFound, Echo("x").first);
    Desc event = NewEvent(kEcho);
    EXPECT_EQ(procNotFound, SendRaw(event, nullptr, kAENoReply));
    EXPECT_FALSE(std::filesystem::exists(Mark()));
    // The bus does start it for those who let it.
    Tarvane::CChildProcess ping({"dbus-send", "--session", "--print-reply",
                                 "--dest=org.tarvane.AppleEvent._54737431", "/",
                                 "org.freedesktop.DBus.Peer.Ping"});
    EXPECT_TRUE(ping.WaitForEnd(kPlentyTime));
    EXPECT_TRUE(std::filesystem::exists(Mark()));
}
