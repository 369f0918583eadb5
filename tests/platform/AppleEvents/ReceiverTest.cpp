#include "tests/platform/AppleEvents/EventFixture.h"
#include "tests/platform/AppleEvents/MuteBus.h"

#include <AE/AppleEvents.h>
#include <TarvanePlatform/Application.h>

#include <atomic>
#include <cstdlib>
#include <thread>

extern "C"
{
    [[gnu::weak]] void __lsan_disable();
    [[gnu::weak]] void __lsan_enable();
}

using namespace AppleEventTests;
using namespace TestReceiver;
using namespace TarvaneTests;

namespace
{

using Answer = std::pair<OSErr, std::string>;

OSErr SucceedingHandler(const AppleEvent*, AppleEvent*, void*)
{
    return noErr;
}

OSErr Install(AEEventHandlerUPP handler)
{
    return AEInstallEventHandler(kClass, kEcho, handler, nullptr, false);
}

// Receives in this process. Foundation makes a thread's run loop once and never gives back all of
// it, so the first use goes unseen by the leak check, where there is one.
class InstallingTest : public BusTest
{
protected:
    InstallingTest()
    {
        TarvaneSetApplicationSignature('Tst3');
        if (__lsan_disable)
            __lsan_disable();
        EXPECT_EQ(noErr, Install(SucceedingHandler));
        EXPECT_EQ(noErr, AERemoveEventHandler(kClass, kEcho, nullptr, false));
        if (__lsan_enable)
            __lsan_enable();
    }
};

SInt32 RunLoopPasses()
{
    Desc event = NewEvent(kSpin);
    Desc reply;
    EXPECT_EQ(noErr, SendAndWait(event, reply));
    return NumberIn(reply);
}

void EnterMode(const std::string& mode)
{
    Desc event = NewEvent(kMode);
    Put(event, keyDirectObject, typeUTF8Text, mode);
    Desc reply;
    EXPECT_EQ(noErr, SendAndWait(event, reply));
}

} // namespace

using Receiver = ReceiverTest;

TEST_F(Receiver, SecondOfASignatureIsToldAndTheFirstStays)
{
    const Child second = StartReceiver('Tst1', std::to_string(errAEDuplicateHandler));
    EXPECT_EQ(3, second->WaitForEnd(kPlentyTime));
    EXPECT_EQ(Answer(noErr, "first"), Echo("first"));
    EXPECT_EQ(1, HandledEvents());
}

TEST(ReceiverWithoutABus, IsToldProcNotFound)
{
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    const Child receiver = StartReceiver('Tst1', std::to_string(procNotFound));
    EXPECT_EQ(3, receiver->WaitForEnd(kPlentyTime));
}

TEST(ReceiverOfAMuteBus, IsToldTimeout)
{
    const MuteBus bus;
    setenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS", "12", 1);
    const Child receiver = StartReceiver('Tst1', std::to_string(errAETimeout));
    unsetenv("TARVANE_AE_DEFAULT_TIMEOUT_TICKS");
    EXPECT_EQ(3, receiver->WaitForEnd(kPlentyTime));
}

TEST_F(Receiver, ServesInModalPanelsAndWhileEventsAreTracked)
{
    for (const char* const mode :
         {"NSModalPanelRunLoopMode", "NSEventTrackingRunLoopMode", "NSDefaultRunLoopMode"})
    {
        EnterMode(mode);
        EXPECT_EQ(Answer(noErr, mode), Echo(mode));
        Desc large = NumberEvent(kBulk, SInt32(4'000'000));
        Desc reply;
        EXPECT_EQ(noErr, SendAndWait(large, reply)) << mode;
    }
}

TEST_F(Receiver, ComesBackWithTheBusInAModalPanelToo)
{
    EnterMode("NSModalPanelRunLoopMode");
    m_bus.Kill();
    m_bus.Start();
    Answer answer;
    for (int i = 0; i < 1000 && answer.second.empty(); i++, usleep(20'000))
        answer = Echo("back");
    EXPECT_EQ(Answer(noErr, "back"), answer);
}

TEST_F(Receiver, HandlesABoundedNumberOfEventsAPass)
{
    constexpr SInt32 kEvents = 320, kAPassAtMost = 20;
    const SInt32 nBefore = RunLoopPasses();
    m_receiver->Stop();
    Desc event = NewEvent(kEcho);
    for (SInt32 i = 0; i < kEvents; i++)
        ASSERT_EQ(noErr, AESend(&event, nullptr, kAENoReply, kAENormalPriority, kPlentyTicks,
                                nullptr, nullptr));
    m_receiver->Continue();
    EXPECT_GE(RunLoopPasses() - nBefore, kEvents / kAPassAtMost);
    EXPECT_EQ(kEvents + 2, HandledEvents());
}

TEST_F(Receiver, DoesNotTurnWithoutWork)
{
    const SInt32 nBefore = RunLoopPasses();
    usleep(300'000);
    EXPECT_LT(RunLoopPasses() - nBefore, 20);
}

TEST_F(Receiver, HandlesTheNextEventInsideAHandlerThatRunsTheRunLoop)
{
    std::atomic<bool> fAnswered = false;
    OSErr status = errAEEventFailed;
    SInt32 nInside = 0;
    std::thread nesting(
        [&]
        {
            Desc event = NewEvent(kNest);
            Desc reply;
            status = SendAndWait(event, reply);
            nInside = NumberIn(reply);
            fAnswered = true;
        });
    // The first of these may come before the handler that waits for one of them.
    while (!fAnswered)
        EXPECT_EQ(Answer(noErr, "inside"), Echo("inside"));
    nesting.join();
    EXPECT_EQ(noErr, status);
    EXPECT_GE(nInside, 1);
}

TEST_F(Receiver, RemovedHandlerHandlesNothing)
{
    ASSERT_EQ(noErr, SendAndWait(kRemove));
    EXPECT_EQ(errAEEventNotHandled, SendAndWait(kEcho));
    EXPECT_EQ(errAEHandlerNotFound, SendAndWait(kRemove));
}

TEST_F(Receiver, SuspendedEventIsNotAnsweredAndTheNextOneIs)
{
    constexpr SInt32 kShortTicks = 30;
    EXPECT_EQ(errAETimeout, SendAndWait(kSuspend, kShortTicks));
    EXPECT_EQ(Answer(noErr, "next"), Echo("next"));
    EXPECT_EQ(errAENotAppleEvent, AESuspendTheCurrentEvent(nullptr));
    const AEDesc nothing{typeNull, nullptr};
    EXPECT_EQ(errAENotAppleEvent, AESuspendTheCurrentEvent(&nothing));
}

TEST_F(Receiver, WithItsLastHandlerGivesUpItsNameAfterTheReply)
{
    ASSERT_EQ(noErr, SendAndWait(kRemoveAll));
    OSErr status = noErr;
    for (int i = 0; i < 1000 && status != procNotFound; i++, usleep(10'000))
        status = SendAndWait(kEcho);
    EXPECT_EQ(procNotFound, status);
    const Child successor = StartReceiver('Tst1');
    EXPECT_EQ(Answer(noErr, "successor"), Echo("successor"));
}

TEST_F(Receiver, HandlersMayBeChangedFromWithinAHandler)
{
    ASSERT_EQ(noErr, SendAndWait(kBack));
    EXPECT_EQ(Answer(noErr, "back"), Echo("back"));
}

TEST_F(InstallingTest, HandlerMayBeInstalledAgainAfterTheLastWasRemoved)
{
    for (int i = 0; i < 3; i++)
    {
        ASSERT_EQ(noErr, Install(SucceedingHandler));
        StartReceiver('Tst3', std::to_string(errAEDuplicateHandler));
        ASSERT_EQ(noErr, AERemoveEventHandler(kClass, kEcho, SucceedingHandler, false));
    }
    StartReceiver('Tst3');
}

TEST_F(InstallingTest, RemovingNamesTheHandlerOrNone)
{
    ASSERT_EQ(noErr, Install(SucceedingHandler));
    const AEEventHandlerUPP other = [](const AppleEvent*, AppleEvent*, void*)
    { return OSErr(paramErr); };
    EXPECT_EQ(errAEHandlerNotFound, AERemoveEventHandler(kClass, kEcho, other, false));
    EXPECT_EQ(errAEHandlerNotFound, AERemoveEventHandler(kClass, 'None', nullptr, false));
    EXPECT_EQ(noErr, AERemoveEventHandler(kClass, kEcho, nullptr, false));
    EXPECT_EQ(errAEHandlerNotFound, AERemoveEventHandler(kClass, kEcho, nullptr, false));
}

TEST_F(InstallingTest, InstallingNeedsAHandlerASignatureAndTheMainThread)
{
    EXPECT_EQ(paramErr, Install(nullptr));
    OSErr onAnotherThread = noErr;
    std::thread([&] { onAnotherThread = Install(SucceedingHandler); }).join();
    EXPECT_EQ(paramErr, onAnotherThread);
    TarvaneSetApplicationSignature(0);
    EXPECT_EQ(paramErr, Install(SucceedingHandler));
}

TEST_F(InstallingTest, UniversalPointerIsTheRoutine)
{
    EXPECT_EQ(&SucceedingHandler, NewAEEventHandlerUPP(SucceedingHandler));
    DisposeAEEventHandlerUPP(SucceedingHandler);
}
