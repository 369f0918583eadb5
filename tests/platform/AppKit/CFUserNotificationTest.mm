#include <CoreFoundation/CFUserNotification.h>

#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

// What a user would do with an alert: reads it and presses the button of a title.
@interface TestAlertUser : NSObject
{
  @public
    NSMutableArray* m_texts;
    NSMutableArray* m_buttons;
    NSString* m_press;
    BOOL m_fPressed;
}
- (void)look:(NSTimer*)timer;
@end

@implementation TestAlertUser

- (id)init
{
    self = [super init];
    if (self != nil)
    {
        m_texts = [[NSMutableArray alloc] init];
        m_buttons = [[NSMutableArray alloc] init];
    }
    return self;
}

- (void)dealloc
{
    [m_texts release];
    [m_buttons release];
    [super dealloc];
}

- (NSButton*)read:(NSView*)view
{
    NSButton* found = nil;
    NSArray* subviews = [view subviews];
    for (NSUInteger i = 0; i < [subviews count]; ++i)
    {
        NSView* each = [subviews objectAtIndex:i];
        if ([each isKindOfClass:[NSTextField class]])
            [m_texts addObject:[(NSTextField*)each stringValue]];
        if ([each isKindOfClass:[NSButton class]] && [(NSButton*)each imagePosition] != NSImageOnly)
        {
            [m_buttons addObject:[(NSButton*)each title]];
            if ([[(NSButton*)each title] isEqualToString:m_press])
                found = (NSButton*)each;
        }
        NSButton* inside = [self read:each];
        if (inside != nil)
            found = inside;
    }
    return found;
}

- (void)look:(NSTimer*)timer
{
    (void)timer;
    // The panel looks whether it is over after an event, which a real click would be, and looks
    // for events that the program posted when a timer has fired once more.
    [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
    if (m_fPressed)
        return;
    [m_texts removeAllObjects];
    [m_buttons removeAllObjects];
    NSButton* button = [self read:[[NSApp modalWindow] contentView]];
    m_fPressed = button != nil;
    [button performClick:nil];
}

@end

namespace
{

struct Alert : testing::Test
{
    Alert() : pool([[NSAutoreleasePool alloc] init])
    {
        StartApplication();
        user = [[[TestAlertUser alloc] init] autorelease];
    }

    ~Alert() override { [pool drain]; }

    // Shows an alert, on which the user presses the button of the title.
    CFOptionFlags Answer(NSString* press, const std::function<SInt32(CFOptionFlags*)>& show)
    {
        user->m_press = press;
        user->m_fPressed = NO;
        NSTimer* timer = [NSTimer timerWithTimeInterval:0.05
                                                 target:user
                                               selector:@selector(look:)
                                               userInfo:nil
                                                repeats:YES];
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSModalPanelRunLoopMode];
        CFOptionFlags response = 99;
        EXPECT_EQ(show(&response), 0);
        [timer invalidate];
        return response;
    }

    CFOptionFlags AnswerThree(NSString* press,
                              CFOptionFlags level = kCFUserNotificationPlainAlertLevel)
    {
        return Answer(press,
                      [level](CFOptionFlags* response)
                      {
                          return CFUserNotificationDisplayAlert(
                              0, level, nullptr, nullptr, nullptr, (CFStringRef) @"Header",
                              (CFStringRef) @"100 % of %s and %@", (CFStringRef) @"First",
                              (CFStringRef) @"Second", (CFStringRef) @"Third", response);
                      });
    }

    NSAutoreleasePool* pool;
    TestAlertUser* user;
};

TEST_F(Alert, TellsThePressedButton)
{
    EXPECT_EQ(AnswerThree(@"First"), kCFUserNotificationDefaultResponse);
    EXPECT_EQ(AnswerThree(@"Second"), kCFUserNotificationAlternateResponse);
    EXPECT_EQ(AnswerThree(@"Third"), kCFUserNotificationOtherResponse);
}

TEST_F(Alert, ShowsItsTextsAsTheyAre)
{
    AnswerThree(@"First");
    EXPECT_TRUE([user->m_texts containsObject:@"Header"])
        << [[user->m_texts description] UTF8String];
    EXPECT_TRUE([user->m_texts containsObject:@"100 % of %s and %@"])
        << [[user->m_texts description] UTF8String];
    EXPECT_TRUE([user->m_buttons containsObject:@"Third"]);
}

TEST_F(Alert, EveryLevelIsShown)
{
    for (CFOptionFlags level = 0; level <= 3; ++level)
        EXPECT_EQ(AnswerThree(@"Second", level), kCFUserNotificationAlternateResponse) << level;
}

TEST_F(Alert, NeedsNeitherTextsNorTitlesNorResponse)
{
    Answer(@"OK",
           [](CFOptionFlags*)
           {
               return CFUserNotificationDisplayAlert(0, kCFUserNotificationPlainAlertLevel, nullptr,
                                                     nullptr, nullptr, nullptr, nullptr, nullptr,
                                                     nullptr, nullptr, nullptr);
           });
    EXPECT_EQ([user->m_buttons count], 1u);
}

TEST_F(Alert, GoesWhenItsTimeIsOver)
{
    CFOptionFlags response = 99;
    EXPECT_EQ(CFUserNotificationDisplayAlert(0.2, kCFUserNotificationPlainAlertLevel, nullptr,
                                             nullptr, nullptr, (CFStringRef) @"Header",
                                             (CFStringRef) @"Message", nullptr, nullptr, nullptr,
                                             &response),
              0);
    EXPECT_EQ(response, kCFUserNotificationCancelResponse);
    EXPECT_EQ([NSApp modalWindow], nil);
}

TEST_F(Alert, IsRefusedOnOtherThreads)
{
    SInt32 status = 0;
    CFOptionFlags response = 99;
    std::thread thread(
        [&]
        {
            status = CFUserNotificationDisplayAlert(0, 0, nullptr, nullptr, nullptr, nullptr,
                                                    nullptr, nullptr, nullptr, nullptr, &response);
        });
    thread.join();
    EXPECT_EQ(status, -1);
    EXPECT_EQ(response, 99u);
}

TEST_F(Alert, IsRefusedWithoutAnApplication)
{
    NSApplication* application = NSApp;
    NSApp = nil;
    EXPECT_EQ(CFUserNotificationDisplayAlert(0, 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                                             nullptr, nullptr, nullptr, nullptr),
              -1);
    NSApp = application;
}

} // namespace
