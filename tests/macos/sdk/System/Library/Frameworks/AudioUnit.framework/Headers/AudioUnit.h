#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef struct OpaqueAudioComponent* AudioComponent;
typedef struct ComponentInstanceRecord* AudioComponentInstance;
typedef AudioComponentInstance AudioUnit;
typedef UInt32 AudioUnitPropertyID;
typedef UInt32 AudioUnitScope;
typedef UInt32 AudioUnitElement;
typedef UInt32 AudioUnitParameterID;
typedef Float32 AudioUnitParameterValue;

#pragma pack(push, 4)
typedef struct AudioComponentDescription
{
    OSType componentType;
    OSType componentSubType;
    OSType componentManufacturer;
    UInt32 componentFlags;
    UInt32 componentFlagsMask;
} AudioComponentDescription;
#pragma pack(pop)

typedef OSStatus (*AudioComponentMethod)(void* self, ...);
struct AudioComponentPlugInInterface
{
    OSStatus (*Open)(void* self, AudioComponentInstance);
    OSStatus (*Close)(void* self);
    AudioComponentMethod (*Lookup)(SInt16 selector);
    void* reserved;
};
typedef struct AudioComponentPlugInInterface AudioComponentPlugInInterface;
typedef AudioComponentPlugInInterface* (*AudioComponentFactoryFunction)(
    const AudioComponentDescription*);

enum
{
    kAudio_UnimplementedError = -4,
    kAudio_ParamError = -50,
    kAudio_MemFullError = -108
};
enum : UInt32
{
    kAudioUnitType_Effect = 'aufx',
    kAudioUnitType_MusicEffect = 'aumf'
};
enum
{
    kAudioUnitErr_InvalidProperty = -10879,
    kAudioUnitErr_InvalidParameter = -10878,
    kAudioUnitErr_InvalidElement = -10877,
    kAudioUnitErr_FailedInitialization = -10875,
    kAudioUnitErr_Uninitialized = -10867,
    kAudioUnitErr_InvalidScope = -10866,
    kAudioUnitErr_PropertyNotWritable = -10865,
    kAudioUnitErr_CannotDoInCurrentContext = -10863,
    kAudioUnitErr_InvalidPropertyValue = -10851
};
enum
{
    kAudioUnitScope_Global = 0,
    kAudioUnitScope_Input = 1,
    kAudioUnitScope_Output = 2
};
enum
{
    kAudioUnitProperty_CocoaUI = 31
};
enum
{
    kAudioUnitInitializeSelect = 0x0001,
    kAudioUnitUninitializeSelect = 0x0002,
    kAudioUnitGetPropertyInfoSelect = 0x0003,
    kAudioUnitGetPropertySelect = 0x0004,
    kAudioUnitSetPropertySelect = 0x0005,
    kAudioUnitGetParameterSelect = 0x0006,
    kAudioUnitSetParameterSelect = 0x0007,
    kAudioUnitAddPropertyListenerSelect = 0x000A,
    kAudioUnitRemovePropertyListenerSelect = 0x000B,
    kAudioUnitRemovePropertyListenerWithUserDataSelect = 0x0012
};

struct AudioUnitParameter
{
    AudioUnit mAudioUnit;
    AudioUnitParameterID mParameterID;
    AudioUnitScope mScope;
    AudioUnitElement mElement;
};
typedef struct AudioUnitParameter AudioUnitParameter;
struct AudioUnitProperty
{
    AudioUnit mAudioUnit;
    AudioUnitPropertyID mPropertyID;
    AudioUnitScope mScope;
    AudioUnitElement mElement;
};
typedef struct AudioUnitProperty AudioUnitProperty;
struct AudioUnitCocoaViewInfo
{
    CFURLRef mCocoaAUViewBundleLocation;
    CFStringRef mCocoaAUViewClass[1];
};
typedef struct AudioUnitCocoaViewInfo AudioUnitCocoaViewInfo;

typedef void (*AudioUnitPropertyListenerProc)(void* userData, AudioUnit, AudioUnitPropertyID,
                                              AudioUnitScope, AudioUnitElement);

extern "C"
{
    AudioComponent AudioComponentRegister(const AudioComponentDescription*, CFStringRef name,
                                          UInt32 version, AudioComponentFactoryFunction);
    AudioComponent AudioComponentFindNext(AudioComponent, const AudioComponentDescription*);
    OSStatus AudioComponentInstanceNew(AudioComponent, AudioComponentInstance*);
    OSStatus AudioComponentInstanceDispose(AudioComponentInstance);
    AudioComponent AudioComponentInstanceGetComponent(AudioComponentInstance);

    OSStatus AudioUnitGetPropertyInfo(AudioUnit, AudioUnitPropertyID, AudioUnitScope,
                                      AudioUnitElement, UInt32* size, Boolean* writable);
    OSStatus AudioUnitGetProperty(AudioUnit, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement,
                                  void*, UInt32* size);
    OSStatus AudioUnitSetProperty(AudioUnit, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement,
                                  const void*, UInt32 size);
    OSStatus AudioUnitAddPropertyListener(AudioUnit, AudioUnitPropertyID,
                                          AudioUnitPropertyListenerProc, void*);
    OSStatus AudioUnitRemovePropertyListenerWithUserData(AudioUnit, AudioUnitPropertyID,
                                                         AudioUnitPropertyListenerProc, void*);
    OSStatus AudioUnitGetParameter(AudioUnit, AudioUnitParameterID, AudioUnitScope,
                                   AudioUnitElement, AudioUnitParameterValue*);
}
