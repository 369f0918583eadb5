#pragma once

#include <AudioUnit/AudioComponent.h>

// The property calls of an audio unit. Each looks the function up under its selector and calls
// it on the calling thread; scopes, elements, ids, sizes and listeners are the plug-in's
// business, and so is its status. Beside it: badComponentInstance for null or an instance that
// has been disposed of, kAudio_UnimplementedError for a selector that the plug-in does not serve.
//
// Not real-time safe. Whether a unit may be called on a thread other than the main one is the
// plug-in's to say.

using AudioUnit = AudioComponentInstance;
using AudioUnitPropertyID = UInt32;
using AudioUnitScope = UInt32;
using AudioUnitElement = UInt32;
using AudioUnitParameterID = UInt32;
using AudioUnitParameterValue = Float32;

enum : OSType
{
    kAudioUnitType_Output = 'auou',
    kAudioUnitType_MusicDevice = 'aumu',
    kAudioUnitType_MusicEffect = 'aumf',
    kAudioUnitType_FormatConverter = 'aufc',
    kAudioUnitType_Effect = 'aufx',
    kAudioUnitType_Mixer = 'aumx',
    kAudioUnitType_Panner = 'aupn',
    kAudioUnitType_Generator = 'augn',
    kAudioUnitType_OfflineEffect = 'auol',
};

inline constexpr OSStatus kAudioUnitErr_InvalidProperty = -10879;
inline constexpr OSStatus kAudioUnitErr_InvalidParameter = -10878;
inline constexpr OSStatus kAudioUnitErr_InvalidElement = -10877;
inline constexpr OSStatus kAudioUnitErr_NoConnection = -10876;
inline constexpr OSStatus kAudioUnitErr_FailedInitialization = -10875;
inline constexpr OSStatus kAudioUnitErr_TooManyFramesToProcess = -10874;
inline constexpr OSStatus kAudioUnitErr_FormatNotSupported = -10868;
inline constexpr OSStatus kAudioUnitErr_Uninitialized = -10867;
inline constexpr OSStatus kAudioUnitErr_InvalidScope = -10866;
inline constexpr OSStatus kAudioUnitErr_PropertyNotWritable = -10865;
inline constexpr OSStatus kAudioUnitErr_CannotDoInCurrentContext = -10863;
inline constexpr OSStatus kAudioUnitErr_InvalidPropertyValue = -10851;
inline constexpr OSStatus kAudioUnitErr_PropertyNotInUse = -10850;
inline constexpr OSStatus kAudioUnitErr_Initialized = -10849;

enum : SInt16
{
    kAudioUnitRange = 0x0000,
    kAudioUnitInitializeSelect = 0x0001,
    kAudioUnitUninitializeSelect = 0x0002,
    kAudioUnitGetPropertyInfoSelect = 0x0003,
    kAudioUnitGetPropertySelect = 0x0004,
    kAudioUnitSetPropertySelect = 0x0005,
    kAudioUnitGetParameterSelect = 0x0006,
    kAudioUnitSetParameterSelect = 0x0007,
    kAudioUnitResetSelect = 0x0009,
    kAudioUnitAddPropertyListenerSelect = 0x000A,
    kAudioUnitRemovePropertyListenerSelect = 0x000B,
    kAudioUnitRenderSelect = 0x000E,
    kAudioUnitAddRenderNotifySelect = 0x000F,
    kAudioUnitRemoveRenderNotifySelect = 0x0010,
    kAudioUnitScheduleParametersSelect = 0x0011,
    kAudioUnitRemovePropertyListenerWithUserDataSelect = 0x0012,
};

struct AudioUnitParameter
{
    AudioUnit mAudioUnit;
    AudioUnitParameterID mParameterID;
    AudioUnitScope mScope;
    AudioUnitElement mElement;
};

struct AudioUnitProperty
{
    AudioUnit mAudioUnit;
    AudioUnitPropertyID mPropertyID;
    AudioUnitScope mScope;
    AudioUnitElement mElement;
};

/// Called by the plug-in, on any thread, the real-time one included.
using AudioUnitPropertyListenerProc = void (*)(void* userData, AudioUnit unit,
                                               AudioUnitPropertyID id, AudioUnitScope scope,
                                               AudioUnitElement element);

/// What `Lookup` answers with, before the cast to AudioComponentMethod.
using AudioUnitGetPropertyInfoProc = OSStatus (*)(void* self, AudioUnitPropertyID id,
                                                  AudioUnitScope scope, AudioUnitElement element,
                                                  UInt32* dataSize, Boolean* writable);
using AudioUnitGetPropertyProc = OSStatus (*)(void* self, AudioUnitPropertyID id,
                                              AudioUnitScope scope, AudioUnitElement element,
                                              void* data, UInt32* dataSize);
using AudioUnitSetPropertyProc = OSStatus (*)(void* self, AudioUnitPropertyID id,
                                              AudioUnitScope scope, AudioUnitElement element,
                                              const void* data, UInt32 dataSize);
using AudioUnitAddPropertyListenerProc = OSStatus (*)(void* self, AudioUnitPropertyID id,
                                                      AudioUnitPropertyListenerProc listener,
                                                      void* userData);
using AudioUnitRemovePropertyListenerWithUserDataProc = OSStatus (*)(
    void* self, AudioUnitPropertyID id, AudioUnitPropertyListenerProc listener, void* userData);
using AudioUnitGetParameterProc = OSStatus (*)(void* self, AudioUnitParameterID id,
                                               AudioUnitScope scope, AudioUnitElement element,
                                               AudioUnitParameterValue* value);

extern "C"
{
    /// Either result may be null.
    OSStatus AudioUnitGetPropertyInfo(AudioUnit unit, AudioUnitPropertyID id, AudioUnitScope scope,
                                      AudioUnitElement element, UInt32* dataSize,
                                      Boolean* writable);

    /// `*dataSize` is the room at `data` in bytes, and afterwards the size of the value.
    /// kAudio_ParamError when it is null.
    OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID id, AudioUnitScope scope,
                                  AudioUnitElement element, void* data, UInt32* dataSize);

    OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID id, AudioUnitScope scope,
                                  AudioUnitElement element, const void* data, UInt32 dataSize);

    /// The unit calls `listener` until the same pair of listener and user data is removed.
    /// kAudio_ParamError for adding a null listener.
    OSStatus AudioUnitAddPropertyListener(AudioUnit unit, AudioUnitPropertyID id,
                                          AudioUnitPropertyListenerProc listener, void* userData);
    OSStatus AudioUnitRemovePropertyListenerWithUserData(AudioUnit unit, AudioUnitPropertyID id,
                                                         AudioUnitPropertyListenerProc listener,
                                                         void* userData);

    /// kAudio_ParamError for a null `value`.
    OSStatus AudioUnitGetParameter(AudioUnit unit, AudioUnitParameterID id, AudioUnitScope scope,
                                   AudioUnitElement element, AudioUnitParameterValue* value);
}
