// A bus, a receiver on it, and events to send: what the tests of AESend share.
#pragma once

#include "apps/support/process/ChildProcess.h"
#include "tests/platform/AppleEvents/TestReceiver.h"
#include "tests/support/PrivateBus.h"

#include <AE/AEErrors.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace AppleEventTests
{

/// A bound for what must come to an end by itself: generous, and never waited for in full unless
/// something is broken.
inline constexpr SInt32 kPlentyTicks = 40 * 60;
inline constexpr std::chrono::seconds kPlentyTime{40};

/// Descriptors of one test, disposed of at its end.
struct Desc : AEDesc
{
    Desc() : AEDesc{typeNull, nullptr} {}
    Desc(DescType type, const void* data, Size size) { AECreateDesc(type, data, size, this); }
    ~Desc() { AEDisposeDesc(this); }
    Desc(Desc&& other) noexcept : AEDesc(other)
    {
        static_cast<AEDesc&>(other) = AEDesc{typeNull, nullptr};
    }
    Desc(const Desc&) = delete;
    Desc& operator=(const Desc&) = delete;
};

inline Desc NewEvent(AEEventID id, OSType signature = 'Tst1',
                     AEEventClass eventClass = TestReceiver::kClass)
{
    Desc target(typeApplSignature, &signature, sizeof signature);
    Desc event;
    EXPECT_EQ(noErr, AECreateAppleEvent(eventClass, id, &target, kAutoGenerateReturnID,
                                        kAnyTransactionID, &event));
    return event;
}

inline void Put(Desc& event, AEKeyword key, DescType type, const std::string& bytes)
{
    ASSERT_EQ(noErr, AEPutParamPtr(&event, key, type, bytes.data(), Size(bytes.size())));
}

template <typename Number> Desc NumberEvent(AEEventID id, Number value)
{
    Desc event = NewEvent(id);
    EXPECT_EQ(noErr,
              AEPutParamPtr(&event, keyDirectObject, sizeof value == 2 ? typeSInt16 : typeSInt32,
                            &value, sizeof value));
    return event;
}

inline OSErr SendAndWait(Desc& event, Desc& reply, SInt32 ticks = kPlentyTicks)
{
    AEDisposeDesc(&reply);
    return AESend(&event, &reply, kAEWaitReply | kAECanInteract, kAENormalPriority, ticks, nullptr,
                  nullptr);
}

inline OSErr SendAndWait(AEEventID id, SInt32 ticks = kPlentyTicks)
{
    Desc event = NewEvent(id);
    Desc reply;
    return SendAndWait(event, reply, ticks);
}

inline std::string Text(Desc& event, AEKeyword key)
{
    Size size = 0;
    if (AESizeOfParam(&event, key, nullptr, &size) != noErr)
        return "(absent)";
    std::string text(std::size_t(size), '\0');
    EXPECT_EQ(noErr, AEGetParamPtr(&event, key, typeWildCard, nullptr, text.data(), size, nullptr));
    return text;
}

inline SInt32 NumberIn(Desc& reply)
{
    SInt32 value = -1;
    EXPECT_EQ(noErr, AEGetParamPtr(&reply, keyDirectObject, typeSInt32, nullptr, &value,
                                   sizeof value, nullptr));
    return value;
}

/// The status and the text with which an echo of `text` came back.
inline std::pair<OSErr, std::string> Echo(const std::string& text, OSType signature = 'Tst1')
{
    Desc event = NewEvent(TestReceiver::kEcho, signature);
    Put(event, keyDirectObject, typeUTF8Text, text);
    Desc reply;
    const OSErr status = SendAndWait(event, reply);
    return {status, status == noErr ? Text(reply, keyDirectObject) : ""};
}

/// In hexadecimal digits: Foundation takes no arguments but UTF-8.
inline std::string Digits(OSType signature)
{
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", signature);
    return digits;
}

using Child = std::unique_ptr<Tarvane::CChildProcess>;

inline Child StartReceiver(OSType signature, const std::string& expected = "ready")
{
    auto receiver = std::make_unique<Tarvane::CChildProcess>(
        std::vector<std::string>{TEST_RECEIVER_PROGRAM, Digits(signature)});
    EXPECT_EQ(expected, receiver->WaitForLine("", kPlentyTime));
    return receiver;
}

/// How many events the receiver has handled.
inline SInt32 HandledEvents()
{
    Desc event = NewEvent(TestReceiver::kCount);
    Desc reply;
    EXPECT_EQ(noErr, SendAndWait(event, reply));
    return NumberIn(reply);
}

class BusTest : public testing::Test
{
protected:
    TarvaneTests::PrivateBus m_bus;
};

class ReceiverTest : public BusTest
{
protected:
    Child m_receiver = StartReceiver('Tst1');
};

} // namespace AppleEventTests
