#pragma once

#include <AudioUnit/AudioUnit.h>

typedef struct AUListenerBase* AUParameterListenerRef;
typedef AUParameterListenerRef AUEventListenerRef;
typedef void (*AUParameterListenerProc)(void* userData, void* object, const AudioUnitParameter*,
                                        AudioUnitParameterValue);

typedef UInt32 AudioUnitEventType;
enum : AudioUnitEventType
{
    kAudioUnitEvent_ParameterValueChange = 0,
    kAudioUnitEvent_BeginParameterChangeGesture = 1,
    kAudioUnitEvent_EndParameterChangeGesture = 2,
    kAudioUnitEvent_PropertyChange = 3
};
struct AudioUnitEvent
{
    AudioUnitEventType mEventType;
    union
    {
        AudioUnitParameter mParameter;
        AudioUnitProperty mProperty;
    } mArgument;
};
typedef struct AudioUnitEvent AudioUnitEvent;

extern "C"
{
    OSStatus AUListenerCreate(AUParameterListenerProc, void* userData, CFRunLoopRef, CFStringRef,
                              Float32 interval, AUParameterListenerRef*);
    OSStatus AUListenerDispose(AUParameterListenerRef);
    OSStatus AUEventListenerNotify(AUEventListenerRef, void* object, const AudioUnitEvent*);
}
