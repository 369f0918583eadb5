#import <Foundation/Foundation.h>

#include "tests/platform/AudioUnit/RunLoopThread.h"

#include <atomic>
#include <future>

struct RunLoopThread::Control
{
    std::atomic<bool> fStop{false};
    std::promise<CFRunLoopRef> running;
};

namespace
{

// One pass of at most a tenth of a second. The port keeps a loop alive that has nothing to do.
void RunOnce(CFStringRef mode)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSPort* port = [NSPort port];
    [[NSRunLoop currentRunLoop] addPort:port forMode:(NSString*)mode];
    [[NSRunLoop currentRunLoop] runMode:(NSString*)mode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.1]];
    [[NSRunLoop currentRunLoop] removePort:port forMode:(NSString*)mode];
    [pool drain];
}

} // namespace

RunLoopThread::RunLoopThread(CFStringRef mode) : m_mode(mode), m_control(new Control)
{
    m_thread = std::thread(
        [&]
        {
            m_control->running.set_value(CFRunLoopGetCurrent());
            while (!m_control->fStop)
                RunOnce(m_mode);
        });
    m_runLoop = m_control->running.get_future().get();
}

RunLoopThread::~RunLoopThread()
{
    m_control->fStop = true;
    m_thread.join();
    delete m_control;
}

bool RunUntil(const std::function<bool()>& done, CFStringRef mode)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:10];
    while (!done() && [limit timeIntervalSinceNow] > 0)
        RunOnce(mode);
    [pool drain];
    return done();
}
