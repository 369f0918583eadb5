#pragma once

#import <AppKit/AppKit.h>

#include <AudioUnit/AUCocoaUIView.h>

@class TarvaneLink_CocoaView;

/// The principal class of TarvaneLink.bundle: what a host asks for a view. Main thread only. All
/// else stays inside the bundle.
__attribute__((visibility("default")))
@interface TarvaneLink_CocoaViewFactory : NSObject<AUCocoaUIBase>
{
    IBOutlet TarvaneLink_CocoaView* uiFreshlyLoadedView; ///< only while a nib is being loaded
}

/// Always 0.
- (unsigned int)interfaceVersion;

/// The name under which a host lists the view.
- (NSString*)description;

/// A fresh view for the plug-in, autoreleased; nil, and a line in the log, when its nib cannot be
/// loaded. The size is ignored: the view comes in its own. Blocks while the server lists its
/// tracks, twice.
- (NSView*)uiViewForAudioUnit:(AudioUnit)pUnit withSize:(NSSize)sizePreferred;

@end
