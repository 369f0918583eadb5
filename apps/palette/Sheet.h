// The sheet: every entry of the palette, and every control in all its looks. Main thread.
#pragma once

#import <AppKit/AppKit.h>

@class ColoredTextField;

namespace Tarvane
{

/// A view of the size of all that stands on it. It shows the palette as it is when it is drawn,
/// with the entries that there are now. Autoreleased.
NSView* MakeSheet();

/// Starts the editing of the text field that is shown while it is edited. The sheet must stand in a
/// window.
void BeginEditing(NSView* sheet);

} // namespace Tarvane
