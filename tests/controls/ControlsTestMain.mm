#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

int main(int argc, char** argv)
{
    testing::InitGoogleMock(&argc, argv);
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    [NSApplication sharedApplication];
    const int nResult = RUN_ALL_TESTS();
    [pool drain];
    return nResult;
}
