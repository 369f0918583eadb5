// A pop-up button of Tarvane's tracks. Without any it says that there is no session to choose
// from: words in the button's place, and no item, so that nothing can be chosen and nothing is
// selected. Instances come from the nib. Main thread.
#pragma once

#import <AppKit/AppKit.h>

@interface TKPopUpButton : NSPopUpButton
@end
