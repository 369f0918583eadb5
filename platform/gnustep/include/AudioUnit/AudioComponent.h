#pragma once

#include <CoreFoundation/CoreFoundation.h>

// Components are registered by the process that uses them, under a description, and live until
// it ends. An instance is made by the component's factory and serves its owner until it is
// disposed of. The registry and the table of instances may be used on any thread; no call into a
// plug-in is made with either of them locked.

using AudioComponent = struct OpaqueAudioComponent*;
using AudioComponentInstance = struct OpaqueAudioComponentInstance*;

struct AudioComponentDescription
{
    OSType componentType;
    OSType componentSubType;
    OSType componentManufacturer;
    UInt32 componentFlags;
    UInt32 componentFlagsMask;
};

/// The function behind one selector, called with the plug-in's interface as `self` and the
/// arguments of the public function after its instance.
using AudioComponentMethod = OSStatus (*)(void* self, ...);

/// What a factory hands out. Plug-ins put their own data behind it. `Open` is the first call on
/// it and `Close`, which frees it, the last. If `Open` fails the plug-in has freed it itself.
/// `Lookup` answers null for a selector that the plug-in does not serve.
struct AudioComponentPlugInInterface
{
    OSStatus (*Open)(void* self, AudioComponentInstance instance);
    OSStatus (*Close)(void* self);
    AudioComponentMethod (*Lookup)(SInt16 selector);
    void* reserved;
};

using AudioComponentFactoryFunction =
    AudioComponentPlugInInterface* (*)(const AudioComponentDescription* description);

inline constexpr OSStatus kAudio_UnimplementedError = -4;
inline constexpr OSStatus kAudio_ParamError = -50;
inline constexpr OSStatus kAudio_MemFullError = -108;
/// Answered for null and for an instance that has been disposed of.
inline constexpr OSStatus badComponentInstance = static_cast<OSStatus>(0x80008001);

extern "C"
{
    /// Copies the description. `name` ("Maker: Product") is retained. Null when the description,
    /// the name or the factory is null. Descriptions need not differ.
    AudioComponent AudioComponentRegister(const AudioComponentDescription* description,
                                          CFStringRef name, UInt32 version,
                                          AudioComponentFactoryFunction factory);

    /// The first component that fits, in the order of registration, after `component` (null: from
    /// the start); null when there is none. A type, subtype or manufacturer of 0 fits any; of the
    /// flags those in the mask must be equal.
    AudioComponent AudioComponentFindNext(AudioComponent component,
                                          const AudioComponentDescription* description);

    /// Gives back the description as registered, but for the mask of flags, which is 0.
    OSStatus AudioComponentGetDescription(AudioComponent component,
                                          AudioComponentDescription* description);

    /// The caller releases the name.
    OSStatus AudioComponentCopyName(AudioComponent component, CFStringRef* name);

    OSStatus AudioComponentGetVersion(AudioComponent component, UInt32* version);

    /// Calls the factory, then `Open`. On an error, `Open`'s own or kAudio_MemFullError for a
    /// factory that answers null, `*instance` is null.
    OSStatus AudioComponentInstanceNew(AudioComponent component, AudioComponentInstance* instance);

    /// Calls `Close` and answers with its status; the instance is gone in any case, and for every
    /// other call from the moment that `Close` begins. Not while another thread is in a call to it.
    OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance);

    /// Null for null and for an instance that has been disposed of.
    AudioComponent AudioComponentInstanceGetComponent(AudioComponentInstance instance);
}
