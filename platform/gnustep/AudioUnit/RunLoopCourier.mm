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
    NSArray* modes = [NSArray arrayWithObject:(NSString*)mode];
    // On its own thread by the run loop: -performSelector:onThread:... would run the errand at
    // once in a thread that has not used its run loop yet.
    if (thread != [NSThread currentThread])
        [courier performSelector:@selector(arrive)
                        onThread:thread
                      withObject:nil
                   waitUntilDone:NO
                           modes:modes];
    else if (delay > 0)
        [courier arrive];
    else
        [[NSRunLoop currentRunLoop] performSelector:@selector(run)
                                             target:courier
                                           argument:nil
                                              order:0
                                              modes:modes];
}

bool platform::HasEnded(CFRunLoopRef runLoop) { return [(NSThread*)runLoop isFinished]; }
