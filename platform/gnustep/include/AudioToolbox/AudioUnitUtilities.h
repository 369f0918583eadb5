#pragma once

#include <AudioUnit/AudioUnit.h>

// Listeners tell one another what a user does to a parameter: a view that starts or ends a
// gesture says so with AUEventListenerNotify, a host hears of it through a listener of its own.

/// One type for parameter listeners and event listeners.
using AUParameterListenerRef = struct AUListenerBase*;
using AUEventListenerRef = AUParameterListenerRef;

using AudioUnitEventType = UInt32;

enum : AudioUnitEventType
{
    kAudioUnitEvent_ParameterValueChange = 0,
    kAudioUnitEvent_BeginParameterChangeGesture = 1,
    kAudioUnitEvent_EndParameterChangeGesture = 2,
    kAudioUnitEvent_PropertyChange = 3,
};

struct AudioUnitEvent
{
    AudioUnitEventType mEventType;
    union
    {
        AudioUnitParameter mParameter;
        AudioUnitProperty mProperty; ///< kAudioUnitEvent_PropertyChange only
    } mArgument;
};

using AUParameterListenerProc = void (*)(void* userData, void* object,
                                         const AudioUnitParameter* parameter,
                                         AudioUnitParameterValue value);

/// `object` is the one that was added for the event. `hostTime` is the time of the notification
/// in nanoseconds of the monotonic clock. `value` is the parameter's value at that time for a
/// change of value, else 0.
using AUEventListenerProc = void (*)(void* userData, void* object, const AudioUnitEvent* event,
                                     UInt64 hostTime, AudioUnitParameterValue value);

extern "C"
{
    // A listener calls its function on the thread of `runLoop` (null: the calling thread's) while
    // that loop runs in `runLoopMode` (null: the default mode), and not more often than every
    // `notificationInterval` seconds; what comes in between is kept and handed over in its order.
    // With an interval of 0 the function is called at once, on the notifying thread, and the run
    // loop is not used.
    //
    // kAudio_ParamError for a null function or result; `*listener` is then null, if there is one.

    /// No parameter can be added to such a listener here, so its function is never called.
    OSStatus AUListenerCreate(AUParameterListenerProc function, void* userData,
                              CFRunLoopRef runLoop, CFStringRef runLoopMode,
                              Float32 notificationInterval, AUParameterListenerRef* listener);

    /// A change of a value that comes less than `valueChangeGranularity` seconds after another of
    /// the same parameter takes its place, if that one is still waiting and is the last waiting
    /// event of its object. 0 keeps them all.
    OSStatus AUEventListenerCreate(AUEventListenerProc function, void* userData,
                                   CFRunLoopRef runLoop, CFStringRef runLoopMode,
                                   Float32 notificationInterval, Float32 valueChangeGranularity,
                                   AUEventListenerRef* listener);

    /// Waiting events are dropped. On the listener's own thread, its function included, no call
    /// follows; a call that is under way on another thread may outlast this one.
    /// kAudio_ParamError for null and for a listener that has been disposed of.
    OSStatus AUListenerDispose(AUParameterListenerRef listener);

    /// From here on the listener hears of this very event (all fields of its argument equal), for
    /// `object`. Adding the same again changes nothing. kAudio_ParamError for a null event, a
    /// listener that is none or was made by AUListenerCreate, and for removing what was not added;
    /// kAudio_UnimplementedError for kAudioUnitEvent_PropertyChange, which the unit itself tells
    /// through AudioUnitAddPropertyListener.
    OSStatus AUEventListenerAddEventType(AUEventListenerRef listener, void* object,
                                         const AudioUnitEvent* event);
    OSStatus AUEventListenerRemoveEventType(AUEventListenerRef listener, void* object,
                                            const AudioUnitEvent* event);

    /// Tells every listener that the event was added to, on any thread. What `sendingListener`
    /// has for `sendingObject` is left out, and with a null object all that it has; a null
    /// listener leaves nothing out. kAudio_ParamError for a null event.
    OSStatus AUEventListenerNotify(AUEventListenerRef sendingListener, void* sendingObject,
                                   const AudioUnitEvent* event);
}
