// The main() of tests that want an application: windows, controls, fonts, the main thread's queue.
// Each test runs in an autorelease pool of its own, so that it may count living objects.

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <unistd.h>

namespace
{
class CPoolForEachTest : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo&) override
    {
        m_pPool = [[NSAutoreleasePool alloc] init];
    }
    void OnTestEnd(const testing::TestInfo&) override { [m_pPool drain]; }

    NSAutoreleasePool* m_pPool = nil;
};

void StartApplication(char* szProgram)
{
    // An application takes bare words for documents to open; the test's own options are none.
    static char* arguments[] = {szProgram, nullptr};
    [NSProcessInfo initializeWithArguments:arguments count:1 environment:environ];
    [NSApplication sharedApplication];
    [NSApp finishLaunching];
}
} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    NSAutoreleasePool* pPool = [[NSAutoreleasePool alloc] init];
    // Listing the tests needs no display.
    if (!GTEST_FLAG_GET(list_tests))
        StartApplication(argv[0]);
    testing::UnitTest::GetInstance()->listeners().Append(new CPoolForEachTest);
    const int nResult = RUN_ALL_TESTS();
    [pPool drain];
    return nResult;
}
