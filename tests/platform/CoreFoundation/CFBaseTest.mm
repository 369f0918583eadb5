#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include "tests/support/LiveObjects.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <vector>

namespace
{

// Every function once, on all its ways that make objects.
void CallEverything()
{
    CFStringRef string =
        CFStringCreateWithCString(kCFAllocatorDefault, "t\xC3\xA9xt", kCFStringEncodingUTF8);
    CFRelease(CFStringCreateWithCString(kCFAllocatorDefault, "\xFF", kCFStringEncodingUTF8));
    CFRelease(
        CFStringCreateWithCString(kCFAllocatorDefault, "\xEF\xBB\xBFz", kCFStringEncodingUTF8));
    CFRelease(
        CFStringCreateWithCString(kCFAllocatorDefault, "\xEF\xBB\xBF\xFF", kCFStringEncodingUTF8));
    UniChar units[8] = {0xFEFF, 0xD800};
    CFStringRef marked = CFStringCreateWithCharacters(kCFAllocatorDefault, units, 2);
    CFStringGetCharacters(string, CFRangeMake(0, CFStringGetLength(string)), units);
    char text[16];
    CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8);
    CFStringGetCString(string, text, sizeof text, kCFStringEncodingASCII);
    CFStringGetCString(marked, text, sizeof text, kCFStringEncodingUTF8);

    CFDataRef fixed = CFDataCreate(kCFAllocatorDefault, reinterpret_cast<UInt8*>(text), 4);
    CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 0);
    CFDataSetLength(data, 1000);
    CFDataAppendBytes(data, CFDataGetBytePtr(fixed), CFDataGetLength(fixed));
    const void* values[] = {data, fixed};
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, values, 2, &kCFTypeArrayCallBacks);
    CFRetain(CFArrayGetValueAtIndex(array, 1));

    const UInt8 path[] = "/tmp";
    CFURLRef url = CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, path, 4, true);
    UInt8 back[16];
    CFURLGetFileSystemRepresentation(url, true, back, sizeof back);

    for (CFTypeRef object :
         std::initializer_list<CFTypeRef>{string, marked, fixed, fixed, data, array, url})
        CFRelease(object);
}

std::string ErrorOutputOf(const std::function<void()>& work)
{
    testing::internal::CaptureStderr();
    work();
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(CFBase, RetainAndReleaseAreThoseOfTheObject)
{
    CFMutableDataRef data = CFDataCreateMutable(kCFAllocatorDefault, 0);
    EXPECT_EQ(CFGetRetainCount(data), 1);
    EXPECT_EQ(CFRetain(data), data);
    EXPECT_EQ(CFGetRetainCount(data), 2);
    [(id)data retain];
    EXPECT_EQ(CFGetRetainCount(data), 3);
    CFRelease(data);
    CFRelease(data);
    EXPECT_EQ(CFGetRetainCount(data), 1);
    CFRelease(data);
}

TEST(CFBase, NullIsIgnored)
{
    EXPECT_EQ(CFRetain(nullptr), nullptr);
    CFRelease(nullptr);
    EXPECT_EQ(CFGetRetainCount(nullptr), 0);
}

TEST(CFBase, ObjectsThatNeverDieTakeAnyNumberOfReleases)
{
    for (int i = 0; i < 3; ++i)
        CFRelease(kCFRunLoopDefaultMode);
    EXPECT_EQ(CFGetRetainCount(kCFRunLoopDefaultMode), 1);
    EXPECT_EQ(CFStringGetLength(kCFRunLoopDefaultMode), 20);
}

TEST(CFBase, ReferencesAreFoundationObjects)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    CFStringRef string =
        CFStringCreateWithCString(kCFAllocatorDefault, "text", kCFStringEncodingUTF8);
    EXPECT_TRUE([(NSString*)string isEqualToString:@"text"]);
    EXPECT_EQ(CFStringGetLength((CFStringRef) @"four"), 4);
    CFRelease(string);

    NSMutableData* data = [NSMutableData dataWithLength:3];
    CFDataSetLength((CFMutableDataRef)data, 5);
    EXPECT_EQ([data length], 5u);

    NSArray* array = [NSArray arrayWithObject:@"one"];
    EXPECT_EQ(CFArrayGetValueAtIndex((CFArrayRef)array, 0), (const void*)[array objectAtIndex:0]);
    [pool drain];
}

TEST(CFBase, NothingIsLeftBehind)
{
    CallEverything();
    LiveObjects();
    CallEverything();
    const long before = LiveObjects();
    for (int i = 0; i < 100; ++i)
        CallEverything();
    EXPECT_EQ(LiveObjects(), before);
}

TEST(CFBase, ThreadsNeedNoPool)
{
    const std::string complaints = ErrorOutputOf(
        []
        {
            std::thread thread(
                []
                {
                    CallEverything();
                    CFRunLoopGetCurrent();
                    CFRunLoopGetMain();
                });
            thread.join();
        });
    EXPECT_EQ(complaints, "");
}

// Without it the test above would prove nothing.
TEST(CFBase, FoundationComplainsOfAMissingPool)
{
    static NSObject* object = [[NSObject alloc] init];
    const std::string complaints = ErrorOutputOf(
        []
        {
            std::thread thread([] { [object autorelease]; });
            thread.join();
        });
    EXPECT_NE(complaints.find("without pool"), std::string::npos) << complaints;
}

TEST(CFBase, ThreadsMayShareAnObjectThatNobodyChanges)
{
    CFStringRef string =
        CFStringCreateWithCString(kCFAllocatorDefault, "t\xC3\xA9xt", kCFStringEncodingUTF8);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [string]
            {
                for (int round = 0; round < 500; ++round)
                {
                    CFRetain(string);
                    char text[16];
                    EXPECT_TRUE(
                        CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8));
                    EXPECT_STREQ(text, "t\xC3\xA9xt");
                    CFRelease(string);
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(CFGetRetainCount(string), 1);
    CFRelease(string);
}
