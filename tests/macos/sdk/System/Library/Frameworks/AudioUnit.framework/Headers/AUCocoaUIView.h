#pragma once

#include <AudioUnit/AudioUnit.h>
#import <Foundation/Foundation.h>

@class NSView;

@protocol AUCocoaUIBase
- (unsigned)interfaceVersion;
- (NSView*)uiViewForAudioUnit:(AudioUnit)unit withSize:(NSSize)preferredSize;
@end
