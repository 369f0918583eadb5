// A process that receives the events of TestReceiver.h. Its only argument is the signature in
// hexadecimal digits. It prints "ready" once it owns the name; otherwise the status, and ends
// with 3.

#include "tests/platform/AppleEvents/TestReceiver.h"

#include <TarvanePlatform/Application.h>

#import <Foundation/Foundation.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <climits>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

using namespace TestReceiver;

namespace
{

// Of the monotonic clock, milliseconds: from then on the time of day is an hour behind.
long long g_nSetBackAt = LLONG_MAX;

long long Monotonic()
{
    timespec now{};
    syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1'000'000;
}

} // namespace

// In place of the system's for the whole process.
extern "C" int clock_gettime(clockid_t clock, timespec* now) noexcept
{
    const long nResult = syscall(SYS_clock_gettime, clock, now);
    if (clock == CLOCK_REALTIME && Monotonic() >= g_nSetBackAt)
        now->tv_sec -= 3600;
    return static_cast<int>(nResult);
}

extern "C" int gettimeofday(timeval* now, void*) noexcept
{
    timespec precise{};
    clock_gettime(CLOCK_REALTIME, &precise);
    now->tv_sec = precise.tv_sec;
    now->tv_usec = precise.tv_nsec / 1000;
    return 0;
}

namespace
{

SInt32 g_nHandled = 0;
SInt32 g_nPasses = 0;
NSString* g_strMode = nil;

std::vector<unsigned char> Bytes(const AppleEvent* event, AEKeyword key, DescType& type)
{
    Size size = 0;
    AESizeOfParam(event, key, &type, &size);
    std::vector<unsigned char> bytes(size);
    AEGetParamPtr(event, key, typeWildCard, nullptr, bytes.data(), size, nullptr);
    return bytes;
}

template <typename Number> Number Value(const AppleEvent* event)
{
    Number value{};
    AEGetParamPtr(event, keyDirectObject, typeWildCard, nullptr, &value, sizeof value, nullptr);
    return value;
}

OSErr Answer(AppleEvent* reply, SInt32 value)
{
    return AEPutParamPtr(reply, keyDirectObject, typeSInt32, &value, sizeof value);
}

OSErr Echo(const AppleEvent* event, AppleEvent* reply)
{
    for (const AEKeyword key : {AEKeyword('Aaaa'), AEKeyword('Bbbb'), AEKeyword(keyDirectObject)})
    {
        DescType type = 0;
        if (AESizeOfParam(event, key, nullptr, nullptr) == errAEDescNotFound)
            continue;
        const std::vector<unsigned char> bytes = Bytes(event, key, type);
        if (const OSErr status = AEPutParamPtr(reply, key, type, bytes.data(), bytes.size()))
            return status;
    }
    return noErr;
}

OSErr Nest(AppleEvent* reply)
{
    const SInt32 nBefore = g_nHandled;
    while (g_nHandled == nBefore)
        [[NSRunLoop currentRunLoop] runMode:g_strMode beforeDate:[NSDate distantFuture]];
    return Answer(reply, g_nHandled - nBefore);
}

void ChangeMode(const AppleEvent* event)
{
    DescType type = 0;
    const std::vector<unsigned char> name = Bytes(event, keyDirectObject, type);
    [g_strMode release];
    g_strMode = [[NSString alloc] initWithBytes:name.data()
                                         length:name.size()
                                       encoding:NSUTF8StringEncoding];
}

// A stay long enough for every test that wants a receiver to be at work.
constexpr unsigned kLongSeconds = 60;

OSErr Handle(const AppleEvent* event, AppleEvent* reply, void*);
OSErr InstallAll();
OSErr RemoveAll();

OSErr EchoHandler(const AppleEvent* event, AppleEvent* reply, void*)
{
    g_nHandled++;
    return Echo(event, reply);
}

OSErr Handle(const AppleEvent* event, AppleEvent* reply, void*)
{
    AEEventID eventID = 0;
    AEGetAttributePtr(event, keyEventIDAttr, typeType, nullptr, &eventID, sizeof eventID, nullptr);
    const SInt32 nBefore = g_nHandled++;
    switch (eventID)
    {
    case kFail:
        Answer(reply, 1);
        return Value<SInt16>(event);
    case kSlow:
        usleep(useconds_t(Value<SInt32>(event)) * 1000);
        return Echo(event, reply);
    case kBulk:
    {
        const std::vector<unsigned char> bytes(Value<SInt32>(event), 'b');
        return AEPutParamPtr(reply, keyDirectObject, typeChar, bytes.data(), bytes.size());
    }
    case kDie:
        _exit(9);
    case kCount:
        return Answer(reply, nBefore);
    case kThrow:
        throw std::runtime_error("thrown by a test");
    case kThrowInt:
        throw 5;
    case kRaise:
        [NSException raise:NSGenericException format:@"raised by a test"];
        return noErr;
    case kNest:
        return Nest(reply);
    case kMode:
        ChangeMode(event);
        return noErr;
    case kKill:
        kill(Value<SInt32>(event), SIGKILL);
        sleep(kLongSeconds);
        return noErr;
    case kRemoveAll:
        return RemoveAll();
    case kBack:
        return RemoveAll() == noErr ? InstallAll() : OSErr(paramErr);
    case kRemove:
        return AERemoveEventHandler(kClass, kEcho, nullptr, false);
    case kSpin:
        return Answer(reply, g_nPasses);
    case kSuspend:
        return AESuspendTheCurrentEvent(event);
    case kClock:
        g_nSetBackAt = Monotonic() + Value<SInt32>(event);
        return noErr;
    case kNow:
        return Answer(reply, SInt32([[NSDate date] timeIntervalSince1970]));
    default:
        return errAEEventNotHandled;
    }
}

constexpr AEEventID kHandled[] = {kFail,      kSlow,   kBulk, kDie,     kCount, kThrow,
                                  kThrowInt,  kRaise,  kNest, kMode,    kKill,  kBack,
                                  kRemoveAll, kRemove, kSpin, kSuspend, kClock, kNow};

OSErr InstallAll()
{
    OSErr status = AEInstallEventHandler(kClass, kEcho, EchoHandler, nullptr, false);
    for (const AEEventID eventID : kHandled)
        if (status == noErr)
            status = AEInstallEventHandler(kClass, eventID, NewAEEventHandlerUPP(Handle), nullptr,
                                           false);
    return status;
}

OSErr RemoveAll()
{
    OSErr status = AERemoveEventHandler(kClass, kEcho, EchoHandler, false);
    for (const AEEventID eventID : kHandled)
        if (status == noErr)
            status = AERemoveEventHandler(kClass, eventID, Handle, false);
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    g_strMode = [NSDefaultRunLoopMode retain];
    TarvaneSetApplicationSignature(OSType(std::stoul(argv[1], nullptr, 16)));
    const OSErr status = InstallAll();
    std::printf(status == noErr ? "ready\n" : "%d\n", status);
    std::fflush(stdout);
    if (status != noErr)
        return 3;
    for (;;)
    {
        NSAutoreleasePool* const passPool = [[NSAutoreleasePool alloc] init];
        g_nPasses++;
        [[NSRunLoop currentRunLoop] runMode:g_strMode beforeDate:[NSDate distantFuture]];
        [passPool drain];
    }
    [pool drain];
    return 0;
}
