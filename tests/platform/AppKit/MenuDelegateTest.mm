#include "tests/platform/AppKit/MenuWindow.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{

struct MenuDelegate : testing::Test
{
    MenuDelegate() : pool([[NSAutoreleasePool alloc] init]) { StartApplication(); }
    ~MenuDelegate() override { [pool drain]; }

    NSAutoreleasePool* pool;
};

TEST_F(MenuDelegate, IsGoneFromTheMenuWhenItGoes)
{
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@"menu"] autorelease];
    TestMenuDelegate* delegate = [[TestMenuDelegate alloc] init];
    [menu setDelegate:delegate];
    EXPECT_EQ([menu delegate], delegate);
    [delegate release];
    EXPECT_EQ([menu delegate], nil);
}

TEST_F(MenuDelegate, IsNotRetained)
{
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@"menu"] autorelease];
    TestMenuDelegate* delegate = [[[TestMenuDelegate alloc] init] autorelease];
    [menu setDelegate:delegate];
    EXPECT_EQ([delegate retainCount], 1u);
}

TEST_F(MenuDelegate, OfSeveralMenusGoesFromAll)
{
    NSMenu* first = [[[NSMenu alloc] initWithTitle:@"first"] autorelease];
    NSMenu* second = [[[NSMenu alloc] initWithTitle:@"second"] autorelease];
    NSMenu* other = [[[NSMenu alloc] initWithTitle:@"other"] autorelease];
    TestMenuDelegate* stays = [[[TestMenuDelegate alloc] init] autorelease];
    TestMenuDelegate* delegate = [[TestMenuDelegate alloc] init];
    [first setDelegate:delegate];
    [second setDelegate:delegate];
    [other setDelegate:stays];
    [delegate release];
    EXPECT_EQ([first delegate], nil);
    EXPECT_EQ([second delegate], nil);
    EXPECT_EQ([other delegate], stays);
    [other setDelegate:nil];
}

TEST_F(MenuDelegate, ReplacedOneMayGoWithoutEffect)
{
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@"menu"] autorelease];
    TestMenuDelegate* first = [[TestMenuDelegate alloc] init];
    TestMenuDelegate* second = [[[TestMenuDelegate alloc] init] autorelease];
    [menu setDelegate:first];
    [menu setDelegate:second];
    [first release];
    EXPECT_EQ([menu delegate], second);
    [menu setDelegate:nil];
}

TEST_F(MenuDelegate, MayOutliveItsMenu)
{
    TestMenuDelegate* delegate = [[TestMenuDelegate alloc] init];
    for (int i = 0; i < 100; ++i)
    {
        NSMenu* menu = [[NSMenu alloc] initWithTitle:@"menu"];
        [menu setDelegate:delegate];
        [menu release];
    }
    EXPECT_EQ([delegate retainCount], 1u);
    [delegate release];
}

TEST_F(MenuDelegate, MayGoBeforeThePopUpButtonDoes)
{
    MenuWindow window;
    NSPopUpButton* button = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 90, 26)
                                                        pullsDown:NO] autorelease];
    [button addItemWithTitle:@"one"];
    TestMenuDelegate* delegate = [[TestMenuDelegate alloc] init];
    [[button menu] setDelegate:delegate];
    [delegate release];
    [[button cell] attachPopUpWithFrame:[button bounds] inView:button];
    [[button cell] dismissPopUp];
}

TEST_F(MenuDelegate, ObjectsOfOtherThreadsGoMeanwhile)
{
    NSMenu* menu = [[[NSMenu alloc] initWithTitle:@"menu"] autorelease];
    TestMenuDelegate* delegate = [[TestMenuDelegate alloc] init];
    std::thread thread(
        []
        {
            for (int i = 0; i < 10000; ++i)
                [[[NSObject alloc] init] release];
        });
    for (int i = 0; i < 1000; ++i)
        [menu setDelegate:i % 2 == 0 ? delegate : nil];
    thread.join();
    [menu setDelegate:delegate];
    [delegate release];
    EXPECT_EQ([menu delegate], nil);
}

} // namespace
