#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

#include <thread>

#import "platform/gnustep/AppKit/PopUpMenu.h"

// Takes note of whether a menu was open when it was asked.
@interface TestAsked : NSObject
{
  @public
    int m_nTimes;
    bool m_fMenuWasOpen;
}
- (void)ask;
@end

@implementation TestAsked

- (void)ask
{
    ++m_nTimes;
    m_fMenuWasOpen = [PlatformPopUpMenu openMenu] != nil;
}

@end

namespace
{

// Opens a menu by a real click, has another thread hand something over, and waits until that is
// done before it closes the menu; which it does after a while if nothing comes.
void HandOverWhileAMenuIsOpen(TestAsked* asked, const std::function<void()>& handOver)
{
    constexpr int kLooks = 50;
    MenuWindow window;
    std::thread other;
    std::vector<std::function<void()>> steps = {[] { Input("mouseup 1"); },
                                                [&] { other = std::thread(handOver); }};
    bool fClosed = false;
    for (int n = 0; n < kLooks; ++n)
        steps.push_back(
            [&, n]
            {
                if (!fClosed && (asked->m_nTimes > 0 || n == kLooks - 1))
                {
                    Input("key Escape");
                    fClosed = true;
                }
            });
    window.WhileOpen(steps);
    window.Press();
    EXPECT_TRUE(window.RunUntil([&] { return fClosed && [PlatformPopUpMenu openMenu] == nil; }));
    other.join();
}

TEST(CommonModes, MainThreadPerformsWhatIsHandedOverWhileAMenuIsOpen)
{
    TestAsked* asked = [[TestAsked alloc] init];
    HandOverWhileAMenuIsOpen(asked,
                             [asked]
                             {
                                 NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
                                 [asked performSelectorOnMainThread:@selector(ask)
                                                         withObject:nil
                                                      waitUntilDone:NO];
                                 [pool drain];
                             });
    EXPECT_EQ(asked->m_nTimes, 1);
    EXPECT_TRUE(asked->m_fMenuWasOpen);
    [asked release];
}

TEST(CommonModes, ThreadThatIsNamedPerformsItToo)
{
    TestAsked* asked = [[TestAsked alloc] init];
    NSThread* here = [NSThread currentThread];
    HandOverWhileAMenuIsOpen(asked,
                             [=]
                             {
                                 NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
                                 [asked performSelector:@selector(ask)
                                               onThread:here
                                             withObject:nil
                                          waitUntilDone:NO];
                                 [pool drain];
                             });
    EXPECT_EQ(asked->m_nTimes, 1);
    EXPECT_TRUE(asked->m_fMenuWasOpen);
    [asked release];
}

} // namespace
