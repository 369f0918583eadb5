#pragma once

#import <AppKit/AppKit.h>

/// Posted on the default centre with the slider as object, as a press begins and after it has
/// ended. Main thread.
extern NSString* const TarvaneLink_GestureSliderMouseDownNotification;
extern NSString* const TarvaneLink_GestureSliderMouseUpNotification;

/// A slider that tells when the user takes hold of it and lets it go.
@interface TarvaneLink_GestureSlider : NSSlider
@end
