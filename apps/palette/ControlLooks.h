// The parts of the sheet that show the controls.
#pragma once

#import <AppKit/AppKit.h>

@class ColoredTextField;

namespace Tarvane
{

// All autoreleased; what each shows keeps still, but for what the last one shows.

/// On and off, up and held down: as the link view has it, with a label, and as an image alone.
NSView* MakeToggleLooks();

/// Up, held and disabled, in three sizes and both button styles.
NSView* MakeButtonLooks();
NSView* MakePopUpLooks();

/// Two fields; the first one, with this tag, is for BeginEditing.
constexpr NSInteger kEditedFieldTag = 1;
NSView* MakeTextFieldLooks();

/// One control of each kind to try.
NSView* MakeLiveControls();

} // namespace Tarvane
