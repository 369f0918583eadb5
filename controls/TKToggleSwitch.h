// The two-state switch at the heart of the link view: a rounded border, a rounded face inside it,
// an image, and at times a label. Main thread only.
//
// A press arms the switch; a release inside its bounds flips the state and tells the delegate. A
// release outside changes nothing. Of the setters only setState: asks for a redraw.
#pragma once

#include "colours/ComponentColour.h"

#import <AppKit/AppKit.h>

#include <cstdint>

@class TKToggleSwitch;

/// What the delegate of a switch answers to.
@protocol TKSwitchDelegate
/// After the user has flipped the switch; its `state` is the new one by then. nFlags are the low 32
/// bits of the mouse-up event's modifierFlags.
- (void)TKSwitchChange:(TKToggleSwitch*)pSwitch ModifierFlags:(std::int32_t)nFlags;
@end

@interface TKToggleSwitch : NSView
{
    bool m_fDrawButton;   ///< paint border and face, and draw the image at its own size
    bool m_fEnabled;      ///< follow the mouse; painting does not look at it
    NSInteger m_nState;   ///< 1 on, 0 off
    NSImage* m_imageOnUp; ///< the four images are owned and may be nil
    NSImage* m_imageOnDown;
    NSImage* m_imageOffUp;
    NSImage* m_imageOffDown;
    NSString* m_strLabel;  ///< owned; nil for no label
    float m_fLabelXOffset; ///< the label's left edge in the view's coordinates
    float m_fImageXOffset;
    bool m_fMouseDown; ///< armed: pressed, and the pointer is inside
    id m_idDelegate;   ///< not owned
    float m_fRadius;
    CComponentCode m_nOnUpBorder;
    CComponentCode m_nOnUpFace;
    CComponentCode m_nOnDownBorder;
    CComponentCode m_nOnDownFace;
    CComponentCode m_nOffUpBorder;
    CComponentCode m_nOffUpFace;
    CComponentCode m_nOffDownBorder;
    CComponentCode m_nOffDownFace;
    CComponentCode m_nLabelColor;
}

/// Receives TKSwitchChange:ModifierFlags:. Not retained; nil for none.
- (void)SetDelegate:(id)idDelegate;
- (id)Delegate;

- (NSInteger)state;

/// Stores the state, and redraws when it is another; the delegate is not told.
- (void)setState:(NSInteger)nState;

/// Loads a pair of images, PNG resources of this class's bundle, for state 0 or 1; any other state
/// changes nothing. An image that cannot be loaded is not drawn.
- (void)SetStateImages:(NSInteger)nState Up:(NSString*)strUp Down:(NSString*)strDown;

/// Without the button no colours are painted and the image fills the bounds.
- (void)SetDrawButton:(bool)fDrawButton;

/// Radius of border and face alike, in points.
- (void)SetCorner:(float)fRadius;

/// Colours of the on state. The off state borrows each that has no colour of its own; an on colour
/// that is empty paints nothing in either state.
- (void)SetUpColorsFace:(CComponentCode)face Border:(CComponentCode)border;
- (void)SetDownColorsFace:(CComponentCode)face Border:(CComponentCode)border;
- (void)SetOffUpColorsFace:(CComponentCode)face Border:(CComponentCode)border;
- (void)SetOffDownColorsFace:(CComponentCode)face Border:(CComponentCode)border;

/// The label is retained; fXOffset is its left edge in the view's coordinates.
- (void)SetLabel:(NSString*)strLabel XOffset:(float)fXOffset;
- (void)SetLabelColor:(CComponentCode)colour;

/// Added to the image's x; without effect when the button is not drawn.
- (void)SetImageOffset:(float)fXOffset;

- (void)SetEnabled:(bool)fEnabled;

- (void)SetToolTip:(NSString*)strToolTip;

@end
