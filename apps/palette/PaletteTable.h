// The part of the sheet that shows the palette's entries.
#pragma once

#import <AppKit/AppKit.h>

namespace Tarvane
{

/// A row for each entry: name, code and stops, and what the plain and the rounded fill make of it
/// in each direction. Autoreleased.
NSView* MakePaletteTable();

} // namespace Tarvane
