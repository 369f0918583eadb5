#import "Graphics/TGLGraphics.h"
#include "tests/Graphics/RecordedCalls.h"

#include <thread>

using namespace TarvaneTests;
using testing::ElementsAre;
using TGL::CNotification;

// Notes what reaches it, and how it was asked to be reached.
@interface NotedTarget : NSObject
- (void)hear:(id)argument;
- (void)ignore:(id)argument;
@end

@implementation NotedTarget

- (void)hear:(id)argument
{
    Note(std::string([NSThread isMainThread] ? "main" : "other") + " thread hears " +
         (argument == self ? "itself" : "another"));
}

- (void)ignore:(id)argument
{
    (void)argument;
}

- (void)performSelectorOnMainThread:(SEL)selector withObject:(id)object waitUntilDone:(BOOL)fWait
{
    Note("perform " + Text(NSStringFromSelector(selector)) +
         (object == self ? " with itself" : " with another") + (fWait ? " and wait" : ""));
    [super performSelectorOnMainThread:selector withObject:object waitUntilDone:fWait];
}

@end

namespace
{

struct Notification : RecordedCalls
{
    ~Notification() override { [target release]; }

    NotedTarget* target = [[NotedTarget alloc] init];
    void* hear = (void*)@selector(hear:);
};

void RunTheMainThreadOnce()
{
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:10]];
}

} // namespace

TEST_F(Notification, OnTheMainThreadItDoesNotWait)
{
    CNotification(target, hear).Notify();
    EXPECT_THAT(Calls(), ElementsAre("perform hear: with itself"));
    RunTheMainThreadOnce();
    EXPECT_THAT(Calls(), ElementsAre("perform hear: with itself", "main thread hears itself"));
}

TEST_F(Notification, FromAnotherThreadItReachesTheMainThread)
{
    std::thread(
        [&]
        {
            NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
            CNotification(target, hear).Notify();
            [pool drain];
        })
        .join();
    EXPECT_THAT(Calls(), ElementsAre("perform hear: with itself"));
    RunTheMainThreadOnce();
    EXPECT_THAT(Calls(), ElementsAre("perform hear: with itself", "main thread hears itself"));
}

TEST_F(Notification, EqualsWhereTargetAndSelectorAreTheSame)
{
    const CNotification notification(target, hear);
    EXPECT_TRUE(notification == CNotification(target, hear));
    EXPECT_FALSE(notification == CNotification(target, (void*)@selector(ignore:)));
    EXPECT_FALSE(notification == CNotification(nil, hear));
}

TEST_F(Notification, AssignmentCopiesBoth)
{
    CNotification copy(nullptr, nullptr);
    copy = CNotification(target, hear);
    EXPECT_EQ(copy.m_pTarget, target);
    EXPECT_EQ(copy.m_pSelector, hear);
}

TEST_F(Notification, RetainsNothing)
{
    const CNotification notification(target, hear);
    const CNotification copy(notification);
    EXPECT_TRUE(copy == notification);
    EXPECT_EQ([target retainCount], 1u);
}
