#pragma once

#import <AppKit/AppKit.h>

#include <atomic>
#include <cstdint>
#include <pthread.h>

#include <AudioToolbox/AudioToolbox.h>
#include <AudioUnit/AudioUnit.h>

#include "TarvaneLinkAU/NotificationGate.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#import "controls/TKToggleSwitch.h"

@class TarvaneLink_GestureSlider;

/// The plug-in's window content: a capture toggle, a menu of the server's tracks and two message
/// lines. Comes from the nib and is joined to its plug-in by `setAU:`.
///
/// Everything runs on the main thread, except `PropertyChanged:Element:`. Whatever talks to the
/// server (`setAU:` and the four handlers below, `menuWillOpen:`) blocks until the server has
/// answered or the event's timeout has passed.
///
/// Life: the host owns the view, and lets go on the main thread. A call that waits in the main
/// thread's queue owns the view too until it has run; the plug-in must therefore outlive the view,
/// not only its last other owner. Notifications are taken in for as long as anybody owns the view.
/// From the release that ends the last ownership on they are not, and nothing of the view is
/// touched, even by a plug-in that goes on calling ViewEventListener after it was told to stop.
@interface TarvaneLink_CocoaView : NSView <TKSwitchDelegate, NSMenuDelegate>
{
    IBOutlet TarvaneLink_GestureSlider* uiParam1Slider;
    IBOutlet NSTextField* m_textError;  ///< the error, or the progress of a capture
    IBOutlet NSTextField* m_textAdvice; ///< what to do about the error
    IBOutlet TKToggleSwitch* m_switchCapture;
    IBOutlet NSPopUpButton* m_btnTracks; ///< item n is track n of the server's list
    IBOutlet NSView* m_viewFrame;

    AudioUnit mAU;
    AudioUnitParameter mParameter; ///< never written: gesture events carry zeros
    AUParameterListenerRef mParameterListener;

    /// Guards the flag below it, for the test and the store only.
    pthread_mutex_t m_mutexTransportPosition;
    bool m_fTransportPositionInQueue; ///< from a progress update's dispatch to its handler's end
    std::int32_t m_nPositionUpdateDelay;
    /// Notifications still to swallow. Plain loads and stores: a decrement that two threads lose
    /// between them merely shifts the next update.
    std::atomic<std::int32_t> m_nPositionUpdateTimeout;

    CTarvaneScript m_Script;
    bool m_fAudioSuite; ///< handed to every script operation; never true here

    CNotificationGate* m_pGate; ///< not owned: it outlives the view
}

/// Joins the view to a plug-in: listeners, armed state, tracks. May be called again with another
/// plug-in; the listeners then move over and the throttle starts afresh.
- (void)setAU:(AudioUnit)pUnit;

/// Handlers of the plug-in's notifications.
- (void)TNProperty_Elements;
- (void)TNProperty_ArmCapture;
- (void)TNProperty_CurrentSampleInTimeLine;
- (void)kTNProperty_CurrentCaptureLength;

/// Any thread, while somebody owns the view: ViewEventListener, which sees to that, is the
/// plug-in's way here. Moves a notification to the main thread and never waits for it. The element
/// is ignored, and so is every id but 64000, 64004, 64006 and 64010.
- (void)PropertyChanged:(std::uint32_t)nProperty Element:(std::uint32_t)nElement;

- (void)addListeners;
- (void)removeListeners;

/// The view shows no parameter: these two do nothing.
- (void)synchronizeUIWithParameterValues;
- (void)parameterListener:(void*)pObject
                parameter:(const AudioUnitParameter*)pParameter
                    value:(float)fValue;

/// Shows the length of the running capture, in seconds, while the toggle is on.
- (void)UpdateCapture:(double)dSeconds;

/// Shows what the script link has to say, in red.
- (void)UpdateScriptMessages;

/// The action of the track menu: hands the choice to the plug-in.
- (IBAction)OnTrack:(id)idSender;

/// Rebuilds the menu from the server's list and selects the track that the plug-in has stored, or
/// the last one when there are fewer. Sends no action and shows no message.
- (void)FillTrackMenu;

/// Two tracks of one name stay two items.
- (void)AddItem:(NSPopUpButton*)pButton Name:(NSString*)pName;

/// Gesture events to the host, for a press of the view's own slider.
- (void)handleMouseDown:(NSNotification*)pNotification;
- (void)handleMouseUp:(NSNotification*)pNotification;

@end

/// The property listener; pUserData is the address of a view, which may have been destroyed. Any
/// thread, real-time safe up to what the platform does to queue a call.
void ViewEventListener(void* pUserData, AudioUnit pUnit, AudioUnitPropertyID nProperty,
                       AudioUnitScope nScope, AudioUnitElement nElement);

/// The parameter listener; pUserData is the view. Main thread.
void ParameterListenerDispatcher(void* pUserData, void* pObject,
                                 const AudioUnitParameter* pParameter,
                                 AudioUnitParameterValue fValue);
