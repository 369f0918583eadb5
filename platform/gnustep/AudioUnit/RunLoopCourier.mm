#include "platform/gnustep/AudioUnit/RunLoopCourier.h"

#include "platform/gnustep/CoreFoundation/Pool.h"

// Carries one errand to the thread that runs it.
@interface PlatformRunLoopCourier : NSObject
{
    std::shared_ptr<platform::RunLoopErrand> m_errand;
    NSString* m_mode;
    NSTimeInterval m_delay;
}
- (id)initWithErrand:(const std::shared_ptr<platform::RunLoopErrand>&)errand
                mode:(NSString*)mode
               delay:(NSTimeInterval)delay;
- (void)arrive;
- (void)run;
@end

@implementation PlatformRunLoopCourier

- (id)initWithErrand:(const std::shared_ptr<platform::RunLoopErrand>&)errand
                mode:(NSString*)mode
               delay:(NSTimeInterval)delay
{
    self = [super init];
    if (self == nil)
        return nil;
    m_errand = errand;
    m_mode = [mode retain];
    m_delay = delay;
    return self;
}

- (void)dealloc
{
    [m_mode release];
    [super dealloc];
}

- (void)arrive
{
    if (m_delay <= 0)
    {
        [self run];
        return;
    }
    NSTimer* timer = [NSTimer timerWithTimeInterval:m_delay
                                             target:self
                                           selector:@selector(run)
                                           userInfo:nil
                                            repeats:NO];
    [[NSRunLoop currentRunLoop] addTimer:timer forMode:m_mode];
}

- (void)run
{
    m_errand->Run();
}

@end

void platform::PerformOnRunLoop(CFRunLoopRef runLoop, CFStringRef mode, double delay,
                                const std::shared_ptr<RunLoopErrand>& errand)
{
    Pool pool;
    NSThread* thread = (NSThread*)runLoop;
    if (HasEnded(runLoop))
        return;

    PlatformRunLoopCourier* courier =
        [[[PlatformRunLoopCourier alloc] initWithErrand:errand mode:(NSString*)mode
                                                  delay:delay] autorelease];
    if (delay > 0 && thread == [NSThread currentThread])
    {
        [courier arrive];
        return;
    }
    // With no waiting asked for, the main thread too is reached through its run loop and never
    // from inside this call.
    [courier performSelector:@selector(arrive)
                    onThread:thread
                  withObject:nil
               waitUntilDone:NO
                       modes:[NSArray arrayWithObject:(NSString*)mode]];
}

bool platform::HasEnded(CFRunLoopRef runLoop) { return [(NSThread*)runLoop isFinished]; }
