#import <AppKit/AppKit.h>
#import <AudioUnit/AUCocoaUIView.h>

// A factory of plain views: no toggle, no menu, and no acknowledge ever.
@interface MuteViewFactory : NSObject <AUCocoaUIBase>
@end

@implementation MuteViewFactory

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)audioUnit withSize:(NSSize)preferredSize
{
    (void)audioUnit;
    (void)preferredSize;
    return [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 100, 50)] autorelease];
}

@end
