// Push buttons with the application's look: border and face from the palette, a bold title in
// ccControlText. Instances come from the nib; tracking and state are the platform's. Main thread.
#pragma once

#include "colours/ComponentColour.h"

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

@protocol TKButtonCellColors

/// Stores the four codes; asks for no redraw.
- (void)SetButtonControlsFaceUp:(CComponentCode)faceUp
                       BorderUp:(CComponentCode)borderUp
                       FaceDown:(CComponentCode)faceDown
                     BorderDown:(CComponentCode)borderDown;

@end

@interface TKButtonCell : NSButtonCell <TKButtonCellColors>
{
    CComponentCode m_nFaceUp;
    CComponentCode m_nBorderUp;
    CComponentCode m_nFaceDown;
    CComponentCode m_nBorderDown;
}

/// Paints the bezel. active: held down; area: only read; flipped: isFlipped of the view.
- (void)DrawButton:(CGContextRef)context
            Active:(bool)fActive
              Area:(CGRect*)pArea
           Flipped:(bool)fFlipped;

@end
