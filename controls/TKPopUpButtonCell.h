// Pop-up buttons with the application's look: the bezel of TKButtonCell, a centred title and the
// image "PopupArrow" at the right. Instances come from the nib. Main thread.
#pragma once

#import "controls/TKButtonCell.h"

@interface TKPopUpButtonCell : NSPopUpButtonCell <TKButtonCellColors>
{
    CComponentCode m_nFaceUp;
    CComponentCode m_nBorderUp;
    CComponentCode m_nFaceDown;
    CComponentCode m_nBorderDown;
}

/// As in TKButtonCell.
- (void)DrawButton:(CGContextRef)context
            Active:(bool)fActive
              Area:(CGRect*)pArea
           Flipped:(bool)fFlipped;

@end
