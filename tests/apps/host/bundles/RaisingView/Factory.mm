#import <AppKit/AppKit.h>
#import <AudioUnit/AUCocoaUIView.h>

// A factory of views whose toggle raises an exception when it is pressed.
@interface RaisingViewFactory : NSObject <AUCocoaUIBase>
@end

@interface RaisingToggle : NSView
@end

@implementation RaisingToggle

- (void)mouseDown:(NSEvent*)event
{
    (void)event;
    [NSException raise:NSGenericException format:@"the toggle is out of order"];
}

@end

@interface RaisingView : NSView
{
    RaisingToggle* m_switchCapture;
}
@end

@implementation RaisingView

- (id)initWithFrame:(NSRect)frame
{
    self = [super initWithFrame:frame];
    if (self != nil)
    {
        m_switchCapture = [[RaisingToggle alloc] initWithFrame:NSMakeRect(0, 0, 20, 20)];
        [self addSubview:m_switchCapture];
    }
    return self;
}

- (void)dealloc
{
    [m_switchCapture release];
    [super dealloc];
}

@end

@implementation RaisingViewFactory

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)audioUnit withSize:(NSSize)preferredSize
{
    (void)audioUnit;
    (void)preferredSize;
    return [[[RaisingView alloc] initWithFrame:NSMakeRect(0, 0, 100, 50)] autorelease];
}

@end
