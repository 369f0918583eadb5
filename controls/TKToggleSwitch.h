#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>

@class TKToggleSwitch;

// What the delegate of a switch answers to.
@protocol TKSwitchDelegate
// Main thread, after the user has flipped the switch; its `state` is the new one by then.
// nFlags are the low 32 bits of the event's modifierFlags.
- (void)TKSwitchChange:(TKToggleSwitch*)pSwitch ModifierFlags:(std::int32_t)nFlags;
@end

// A switch with the states 1 (on) and 0 (off). Main thread only.
@interface TKToggleSwitch : NSView
{
    NSInteger m_nState;
    bool m_fMouseDown;
    id m_idDelegate;
}

// Not retained.
- (void)SetDelegate:(id)idDelegate;

- (NSInteger)state;

// Stores the state and redraws; the delegate is not told.
- (void)setState:(NSInteger)nState;

@end
