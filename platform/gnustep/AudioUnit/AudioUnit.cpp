#include <AudioUnit/AUComponent.h>

#include "platform/gnustep/AudioUnit/Instances.h"

namespace
{

// Calls the unit's own function for a selector. `Proc` is the type that the function has there.
template <typename Proc, typename... Arguments>
OSStatus Call(AudioUnit unit, SInt16 selector, Arguments... arguments)
{
    AudioComponentPlugInInterface* plugIn = platform::Instances::Shared().Find(unit).plugIn;
    if (plugIn == nullptr)
        return badComponentInstance;
    const AudioComponentMethod method = plugIn->Lookup(selector);
    if (method == nullptr)
        return kAudio_UnimplementedError;
    return reinterpret_cast<Proc>(method)(plugIn, arguments...);
}

} // namespace

OSStatus AudioUnitGetPropertyInfo(AudioUnit unit, AudioUnitPropertyID id, AudioUnitScope scope,
                                  AudioUnitElement element, UInt32* dataSize, Boolean* writable)
{
    UInt32 unwantedSize = 0;
    Boolean unwantedAnswer = false;
    return Call<AudioUnitGetPropertyInfoProc>(unit, kAudioUnitGetPropertyInfoSelect, id, scope,
                                              element, dataSize ? dataSize : &unwantedSize,
                                              writable ? writable : &unwantedAnswer);
}

OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID id, AudioUnitScope scope,
                              AudioUnitElement element, void* data, UInt32* dataSize)
{
    if (dataSize == nullptr)
        return kAudio_ParamError;
    return Call<AudioUnitGetPropertyProc>(unit, kAudioUnitGetPropertySelect, id, scope, element,
                                          data, dataSize);
}

OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID id, AudioUnitScope scope,
                              AudioUnitElement element, const void* data, UInt32 dataSize)
{
    return Call<AudioUnitSetPropertyProc>(unit, kAudioUnitSetPropertySelect, id, scope, element,
                                          data, dataSize);
}

OSStatus AudioUnitAddPropertyListener(AudioUnit unit, AudioUnitPropertyID id,
                                      AudioUnitPropertyListenerProc listener, void* userData)
{
    if (listener == nullptr)
        return kAudio_ParamError;
    return Call<AudioUnitAddPropertyListenerProc>(unit, kAudioUnitAddPropertyListenerSelect, id,
                                                  listener, userData);
}

OSStatus AudioUnitRemovePropertyListenerWithUserData(AudioUnit unit, AudioUnitPropertyID id,
                                                     AudioUnitPropertyListenerProc listener,
                                                     void* userData)
{
    return Call<AudioUnitRemovePropertyListenerWithUserDataProc>(
        unit, kAudioUnitRemovePropertyListenerWithUserDataSelect, id, listener, userData);
}

OSStatus AudioUnitGetParameter(AudioUnit unit, AudioUnitParameterID id, AudioUnitScope scope,
                               AudioUnitElement element, AudioUnitParameterValue* value)
{
    if (value == nullptr)
        return kAudio_ParamError;
    return Call<AudioUnitGetParameterProc>(unit, kAudioUnitGetParameterSelect, id, scope, element,
                                           value);
}
