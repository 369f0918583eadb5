// What the two button cells paint alike. Main thread, while drawing.
#pragma once

#include "colours/ComponentColour.h"

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

/// The context that AppKit is drawing in.
CGContextRef CurrentContext();

/// The palette style: a ring of one point in the border's colour around the face.
void DrawPaletteButton(CGContextRef context, CComponentCode border, CComponentCode face,
                       CGRect area, bool fFlipped);

/// The shaded style: a grey ramp at the context's origin, in the size of the area. Its clip stays
/// on the context.
void DrawShadedButton(CGContextRef context, CGRect area, bool fEnabled, bool fActive);

/// Font, colour and paragraph style of a title in a cell of this size; autoreleased.
NSMutableDictionary* ButtonTitleAttributes(NSControlSize size, NSTextAlignment alignment);
