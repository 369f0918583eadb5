#include <AudioUnit/AUCocoaUIView.h>

#include <gtest/gtest.h>

#include <cstring>

@interface TestViewFactory : NSObject <AUCocoaUIBase>
@end

@implementation TestViewFactory

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)audioUnit withSize:(NSSize)preferredSize
{
    // Shows what arrived; no view is made.
    return audioUnit != nullptr && preferredSize.width == 40 ? (NSView*)self : nil;
}

@end

TEST(AUCocoaUIView, FactoryIsCalledThroughTheProtocol)
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    id<AUCocoaUIBase> factory = [[[TestViewFactory alloc] init] autorelease];
    EXPECT_TRUE([TestViewFactory conformsToProtocol:@protocol(AUCocoaUIBase)]);
    EXPECT_EQ([factory interfaceVersion], 0u);
    const AudioUnit unit = reinterpret_cast<AudioUnit>(1);
    EXPECT_EQ((id)[factory uiViewForAudioUnit:unit withSize:NSMakeSize(40, 20)], (id)factory);
    [pool drain];
}

TEST(AUCocoaUIView, BundleAndClassGoThroughTheViewInfo)
{
    const UInt8 path[] = "/tmp/Some.bundle";
    AudioUnitCocoaViewInfo info;
    info.mCocoaAUViewBundleLocation = CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, path, std::strlen((const char*)path), true);
    info.mCocoaAUViewClass[0] =
        CFStringCreateWithCString(kCFAllocatorDefault, "TestViewFactory", kCFStringEncodingUTF8);

    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    EXPECT_TRUE(
        [[(NSURL*)info.mCocoaAUViewBundleLocation path] isEqualToString:@"/tmp/Some.bundle"]);
    EXPECT_EQ(NSClassFromString((NSString*)info.mCocoaAUViewClass[0]), [TestViewFactory class]);
    [pool drain];
    CFRelease(info.mCocoaAUViewBundleLocation);
    CFRelease(info.mCocoaAUViewClass[0]);
}
