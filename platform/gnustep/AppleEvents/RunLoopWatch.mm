#include "platform/gnustep/AppleEvents/RunLoopWatch.h"

#import <Foundation/Foundation.h>

#include <sys/timerfd.h>
#include <unistd.h>

// The object behind a RunLoopWatch: the run loop holds it. The timer is a descriptor of the
// monotonic clock: NSTimer goes by the time of day, and would wait for as long as that is set back.
@interface TarvaneRunLoopTarget : NSObject <RunLoopEvents>
{
  @public
    AppleEvents::RunLoopClient* m_client;
    int m_nTimer;
    int m_nDescriptor;
    bool m_fReading;
    bool m_fWriting;
}
- (void)watch:(int)nDescriptor for:(RunLoopEventType)type add:(bool)fAdd;
- (void)openTimer;
- (void)closeTimer;
- (void)setTimer:(std::uint64_t)nMicroseconds;
@end

namespace
{

// Written out, since AppKit is not linked here and may not be in the process. The common-modes
// constant is no mode that addEvent: knows.
NSArray* WatchedModes()
{
    return [NSArray arrayWithObjects:NSDefaultRunLoopMode, @"NSModalPanelRunLoopMode",
                                     @"NSEventTrackingRunLoopMode", nil];
}

// The interface is called from plain C++ too, where nobody else has a pool.
class ScopedPool
{
  public:
    ScopedPool() : m_pool([[NSAutoreleasePool alloc] init]) {}
    ~ScopedPool() { [m_pool drain]; }
    ScopedPool(const ScopedPool&) = delete;
    ScopedPool& operator=(const ScopedPool&) = delete;

  private:
    NSAutoreleasePool* m_pool;
};

} // namespace

@implementation TarvaneRunLoopTarget

- (void)watch:(int)nDescriptor for:(RunLoopEventType)type add:(bool)fAdd
{
    NSRunLoop* const runLoop = [NSRunLoop currentRunLoop];
    NSArray* const modes = WatchedModes();
    void* const descriptor = reinterpret_cast<void*>(intptr_t(nDescriptor));
    for (NSUInteger i = 0; i < [modes count]; i++)
    {
        NSString* const mode = [modes objectAtIndex:i];
        if (fAdd)
            [runLoop addEvent:descriptor type:type watcher:self forMode:mode];
        else
            [runLoop removeEvent:descriptor type:type forMode:mode all:YES];
    }
}

- (void)openTimer
{
    m_nTimer = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    if (m_nTimer >= 0)
        [self watch:m_nTimer for:ET_RDESC add:true];
}

- (void)closeTimer
{
    if (m_nTimer < 0)
        return;
    [self watch:m_nTimer for:ET_RDESC add:false];
    close(m_nTimer);
    m_nTimer = -1;
}

// 0 is no time.
- (void)setTimer:(std::uint64_t)nMicroseconds
{
    itimerspec when{};
    when.it_value.tv_sec = time_t(nMicroseconds / 1'000'000);
    when.it_value.tv_nsec = long(nMicroseconds % 1'000'000) * 1'000;
    timerfd_settime(m_nTimer, 0, &when, nullptr);
}

#pragma mark RunLoopEvents

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode
{
    (void)type;
    (void)extra;
    (void)mode;
    std::uint64_t nTimes = 0;
    if (data == reinterpret_cast<void*>(intptr_t(m_nTimer)) &&
        read(m_nTimer, &nTimes, sizeof nTimes) < 0)
        return; // it was set anew meanwhile
    if (m_client)
        m_client->Wake();
}

@end

namespace AppleEvents
{

struct RunLoopWatch::Target
{
    TarvaneRunLoopTarget* object;
};

RunLoopWatch::RunLoopWatch(RunLoopClient& client)
    : m_target(new Target{[[TarvaneRunLoopTarget alloc] init]})
{
    const ScopedPool pool;
    m_target->object->m_client = &client;
    m_target->object->m_nTimer = -1;
}

RunLoopWatch::~RunLoopWatch()
{
    Release();
    const ScopedPool pool;
    [m_target->object closeTimer];
    m_target->object->m_client = nullptr;
    [m_target->object release];
}

void RunLoopWatch::Watch(int descriptor, bool fReading, bool fWriting)
{
    const ScopedPool pool;
    TarvaneRunLoopTarget* const object = m_target->object;
    if (object->m_nDescriptor != descriptor)
        Release();
    object->m_nDescriptor = descriptor;
    if (object->m_fReading != fReading)
        [object watch:object->m_nDescriptor for:ET_RDESC add:fReading];
    if (object->m_fWriting != fWriting)
        [object watch:object->m_nDescriptor for:ET_WDESC add:fWriting];
    object->m_fReading = fReading;
    object->m_fWriting = fWriting;
}

void RunLoopWatch::Release()
{
    const ScopedPool pool;
    TarvaneRunLoopTarget* const object = m_target->object;
    if (object->m_fReading)
        [object watch:object->m_nDescriptor for:ET_RDESC add:false];
    if (object->m_fWriting)
        [object watch:object->m_nDescriptor for:ET_WDESC add:false];
    object->m_fReading = object->m_fWriting = false;
}

void RunLoopWatch::WakeAfter(std::uint64_t microseconds)
{
    const ScopedPool pool;
    TarvaneRunLoopTarget* const object = m_target->object;
    if (object->m_nTimer < 0)
        [object openTimer];
    [object setTimer:microseconds > 0 ? microseconds : 1];
}

void RunLoopWatch::CancelWake()
{
    const ScopedPool pool;
    if (m_target->object->m_nTimer >= 0)
        [m_target->object setTimer:0];
}

} // namespace AppleEvents
