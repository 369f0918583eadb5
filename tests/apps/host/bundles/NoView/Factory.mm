#import <AudioUnit/AUCocoaUIView.h>

// A factory that fails, as one does whose nib is missing.
@interface NoViewFactory : NSObject <AUCocoaUIBase>
@end

@implementation NoViewFactory

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)audioUnit withSize:(NSSize)preferredSize
{
    (void)audioUnit;
    (void)preferredSize;
    return nil;
}

@end
