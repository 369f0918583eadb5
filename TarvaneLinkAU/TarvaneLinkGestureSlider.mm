#import "TarvaneLinkAU/TarvaneLinkGestureSlider.h"

NSString* const TarvaneLink_GestureSliderMouseDownNotification =
    @"CAGestureSliderMouseDownNotification";
NSString* const TarvaneLink_GestureSliderMouseUpNotification =
    @"CAGestureSliderMouseUpNotification";

@implementation TarvaneLink_GestureSlider

- (void)mouseDown:(NSEvent*)pEvent
{
    NSNotificationCenter* pCentre = [NSNotificationCenter defaultCenter];
    [pCentre postNotificationName:TarvaneLink_GestureSliderMouseDownNotification object:self];
    // Tracks the drag and returns when the mouse is released.
    [super mouseDown:pEvent];
    [pCentre postNotificationName:TarvaneLink_GestureSliderMouseUpNotification object:self];
}

@end
