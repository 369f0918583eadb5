#pragma once

#include <AudioUnit/AudioUnit.h>

#import <Foundation/Foundation.h>

@class NSView;

/// Adopted by the class that a host makes an object of to get a plug-in's view. Main thread.
@protocol AUCocoaUIBase

/// 0, the only version there is.
- (unsigned)interfaceVersion;

/// A new view for the unit, autoreleased; the host retains it. The size is a wish.
- (NSView*)uiViewForAudioUnit:(AudioUnit)audioUnit withSize:(NSSize)preferredSize;

@end
