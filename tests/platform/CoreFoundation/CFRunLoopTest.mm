#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <thread>

@interface TestPerformed : NSObject
{
  @public
    int m_nTimes;
}
- (void)perform;
@end

@implementation TestPerformed
- (void)perform
{
    ++m_nTimes;
}
@end

TEST(CFRunLoop, EachThreadHasOneOfItsOwn)
{
    CFRunLoopRef here = CFRunLoopGetCurrent();
    CFRunLoopRef there = nullptr;
    CFRunLoopRef thereAgain = nullptr;
    std::thread thread(
        [&]
        {
            there = CFRunLoopGetCurrent();
            thereAgain = CFRunLoopGetCurrent();
        });
    thread.join();
    EXPECT_NE(here, nullptr);
    EXPECT_EQ(here, CFRunLoopGetCurrent());
    EXPECT_NE(there, here);
    EXPECT_EQ(there, thereAgain);
}

TEST(CFRunLoop, MainIsTheMainThreadsFromEverywhere)
{
    CFRunLoopRef fromThread = nullptr;
    std::thread thread([&] { fromThread = CFRunLoopGetMain(); });
    thread.join();
    EXPECT_EQ(fromThread, CFRunLoopGetCurrent());
    EXPECT_EQ(CFRunLoopGetMain(), CFRunLoopGetCurrent());
}

TEST(CFRunLoop, DefaultModeIsFoundations)
{
    EXPECT_TRUE([NSDefaultRunLoopMode isEqualToString:(NSString*)kCFRunLoopDefaultMode]);
}

TEST(CFRunLoop, MainThreadIsAskedThroughItsRunLoop)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    TestPerformed* target = [[[TestPerformed alloc] init] autorelease];
    [target performSelectorOnMainThread:@selector(perform) withObject:nil waitUntilDone:NO];
    EXPECT_EQ(target->m_nTimes, 0);
    [[NSRunLoop currentRunLoop] runUntilDate:[NSDate date]];
    EXPECT_EQ(target->m_nTimes, 1);
    [pool drain];
}

TEST(CFRunLoop, RunsUntilTheFirstSourceIfThatIsAskedFor)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSPipe* pipe = [NSPipe pipe];
    [[pipe fileHandleForReading] waitForDataInBackgroundAndNotify];
    [[pipe fileHandleForWriting] writeData:[NSData dataWithBytes:"x" length:1]];
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 100.0, true), kCFRunLoopRunHandledSource);
    [pool drain];
}

TEST(CFRunLoop, RunsForItsTimeOtherwise)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    TestPerformed* target = [[[TestPerformed alloc] init] autorelease];
    [target performSelectorOnMainThread:@selector(perform) withObject:nil waitUntilDone:NO];
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false), kCFRunLoopRunTimedOut);
    EXPECT_EQ(target->m_nTimes, 1);
    [pool drain];
}

TEST(CFRunLoop, DoesNotWaitInAModeWithoutSources)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    EXPECT_EQ(CFRunLoopRunInMode((CFRunLoopMode) @"nobody's", 100.0, false), kCFRunLoopRunFinished);
    [pool drain];
}
