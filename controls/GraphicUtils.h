// The one place where a colour code turns into paint. Main thread, while drawing.
//
// A caller passes the code, a direction and whether the target's y axis runs downward (isFlipped of
// the view); the fill draws what the palette holds under the code, a gradient or a flat colour. A
// fill allocates nothing. It leaves the clip as it was; a fill colour set for a background, or for
// a flat colour by FillRect, stays set.
#pragma once

#include "colours/ComponentColour.h"

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

/// The axis of a gradient; a flat colour looks the same in every direction.
enum FillDirection : int
{
    kFillTopToBottom = 1, ///< also what a value without a name does
    kFillLeftToRight = 3,
    kFillRightToLeft = 4, ///< in FillRect only
    kFillDiagonal = 10,
};

/// Corner of the toggle switch, in points.
constexpr float gfDefaultRadius = 4.0f;

@interface GraphicUtils : NSObject

/// background: painted first, over the whole rectangle; the empty code paints none.
+ (void)FillRect:(CGContextRef)context
            Color:(CComponentCode)colour
       Background:(CComponentCode)background
             Rect:(CGRect)rect
    FillDirection:(FillDirection)direction
          Flipped:(bool)fFlipped;

/// radius: in points; 0 is FillRect. The background shows outside the corners.
+ (void)FillRoundRect:(CGContextRef)context
                Color:(CComponentCode)colour
           Background:(CComponentCode)background
                 Rect:(CGRect)rect
               Radius:(float)fRadius
        FillDirection:(FillDirection)direction
              Flipped:(bool)fFlipped;

/// Outer corner of the button cells, in points.
+ (float)GetButtonCornerRadius;

@end

/// Makes the rectangle with rounded corners the clip of the context. Its points are computed in 32
/// bits.
void ClipToRoundRect(CGContextRef context, CGRect rect, float fRadius);
