#include "platform/gnustep/AppleEvents/RunLoopWatch.h"

#import <Foundation/Foundation.h>

// The object behind a RunLoopWatch: the run loop and the timer hold it.
@interface TarvaneRunLoopTarget : NSObject <RunLoopEvents>
{
  @public
    AppleEvents::RunLoopClient* m_client;
    NSTimer* m_timer;
    int m_nDescriptor;
    bool m_fReading;
    bool m_fWriting;
}
- (void)watchFor:(RunLoopEventType)type add:(bool)fAdd;
- (void)scheduleAfter:(NSTimeInterval)seconds;
- (void)cancelTimer;
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

- (void)watchFor:(RunLoopEventType)type add:(bool)fAdd
{
    NSRunLoop* const runLoop = [NSRunLoop currentRunLoop];
    NSArray* const modes = WatchedModes();
    void* const descriptor = reinterpret_cast<void*>(intptr_t(m_nDescriptor));
    for (NSUInteger i = 0; i < [modes count]; i++)
    {
        NSString* const mode = [modes objectAtIndex:i];
        if (fAdd)
            [runLoop addEvent:descriptor type:type watcher:self forMode:mode];
        else
            [runLoop removeEvent:descriptor type:type forMode:mode all:YES];
    }
}

- (void)scheduleAfter:(NSTimeInterval)seconds
{
    [self cancelTimer];
    m_timer = [NSTimer timerWithTimeInterval:seconds
                                      target:self
                                    selector:@selector(timerFired:)
                                    userInfo:nil
                                     repeats:NO];
    NSArray* const modes = WatchedModes();
    for (NSUInteger i = 0; i < [modes count]; i++)
        [[NSRunLoop currentRunLoop] addTimer:m_timer forMode:[modes objectAtIndex:i]];
}

- (void)cancelTimer
{
    [m_timer invalidate];
    m_timer = nil;
}

- (void)timerFired:(NSTimer*)timer
{
    (void)timer;
    m_timer = nil;
    if (m_client)
        m_client->Wake();
}

#pragma mark RunLoopEvents

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode
{
    (void)data;
    (void)type;
    (void)extra;
    (void)mode;
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
    m_target->object->m_client = &client;
}

RunLoopWatch::~RunLoopWatch()
{
    Release();
    CancelWake();
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
        [object watchFor:ET_RDESC add:fReading];
    if (object->m_fWriting != fWriting)
        [object watchFor:ET_WDESC add:fWriting];
    object->m_fReading = fReading;
    object->m_fWriting = fWriting;
}

void RunLoopWatch::Release()
{
    const ScopedPool pool;
    TarvaneRunLoopTarget* const object = m_target->object;
    if (object->m_fReading)
        [object watchFor:ET_RDESC add:false];
    if (object->m_fWriting)
        [object watchFor:ET_WDESC add:false];
    object->m_fReading = object->m_fWriting = false;
}

void RunLoopWatch::WakeAfter(std::uint64_t microseconds)
{
    const ScopedPool pool;
    [m_target->object scheduleAfter:NSTimeInterval(microseconds) / 1'000'000];
}

void RunLoopWatch::CancelWake()
{
    const ScopedPool pool;
    [m_target->object cancelTimer];
}

} // namespace AppleEvents
