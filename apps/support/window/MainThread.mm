#import "apps/support/window/MainThread.h"

#import <AppKit/AppKit.h>

namespace
{

class CFunctionCall : public Tarvane::ICall
{
  public:
    explicit CFunctionCall(std::function<void()> fnCall) : m_fnCall(std::move(fnCall)) {}
    void Run() override { m_fnCall(); }

  private:
    std::function<void()> m_fnCall;
};

} // namespace

@implementation MainThreadCall

- (id)initWithCall:(Tarvane::ICall*)pCall
{
    self = [super init];
    if (self != nil)
    {
        m_pCall = pCall;
    }
    return self;
}

- (void)dealloc
{
    delete m_pCall;
    [super dealloc];
}

- (void)run
{
    m_pCall->Run();
}

- (void)run:(id)sender
{
    (void)sender;
    m_pCall->Run();
}

@end

namespace Tarvane
{

MainThreadCall* MakeCall(std::function<void()> fnCall)
{
    return [[[MainThreadCall alloc] initWithCall:new CFunctionCall(std::move(fnCall))] autorelease];
}

void CallOnMainThread(std::function<void()> fnCall)
{
    // The capture thread has no pool of its own.
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [MakeCall(std::move(fnCall)) performSelectorOnMainThread:@selector(run)
                                                  withObject:nil
                                               waitUntilDone:NO];
    [pool drain];
}

void RunWhatWaits()
{
    constexpr int kPasses = 8;
    for (int nPass = 0; nPass < kPasses; ++nPass)
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
        [pool drain];
    }
}

NSArray* MainThreadModes()
{
    return [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSEventTrackingRunLoopMode, nil];
}

} // namespace Tarvane
