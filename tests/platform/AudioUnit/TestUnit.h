#pragma once

#include <AudioUnit/AudioUnit.h>

#include <string>
#include <vector>

/// A unit as a plug-in maker would write it against the public interface: one property of eight
/// bytes, listeners, one parameter. What it is asked stands in `log`.
class TestUnit
{
public:
    static constexpr AudioUnitPropertyID kValueProperty = 64010;

    /// Registers a component under `subType`.
    static AudioComponent Register(OSType subType, UInt32 flags = 0);

    /// The unit opened last; null when none is open.
    static TestUnit* Last();
    static int CountAlive();

    /// What the next factory call and the next `Open` answer.
    static bool s_fFactoryFails;
    static OSStatus s_nOpenStatus;
    static OSStatus s_nCloseStatus;
    /// What `Open` and `Close` saw when they asked the unit for its property.
    static OSStatus s_nStatusWhileOpening;
    static OSStatus s_nStatusWhileClosing;

    void RaiseValueChanged();

    std::vector<std::string> log;
    AudioUnit instance = nullptr;
    double dValue = 1.5;
    float fParameter = 0.25f;

private:
    struct Listener
    {
        AudioUnitPropertyID id;
        AudioUnitPropertyListenerProc proc;
        void* userData;
    };

    /// What the platform holds: the interface, with the unit behind it.
    struct PlugIn : AudioComponentPlugInInterface
    {
        TestUnit* unit;
    };

    TestUnit();
    ~TestUnit();

    static AudioComponentPlugInInterface* Create(const AudioComponentDescription* description);
    static TestUnit* From(void* self);
    static OSStatus Open(void* self, AudioComponentInstance instance);
    static OSStatus Close(void* self);
    static AudioComponentMethod Lookup(SInt16 selector);
    static OSStatus GetPropertyInfo(void* self, AudioUnitPropertyID id, AudioUnitScope scope,
                                    AudioUnitElement element, UInt32* dataSize, Boolean* writable);
    static OSStatus GetProperty(void* self, AudioUnitPropertyID id, AudioUnitScope scope,
                                AudioUnitElement element, void* data, UInt32* dataSize);
    static OSStatus SetProperty(void* self, AudioUnitPropertyID id, AudioUnitScope scope,
                                AudioUnitElement element, const void* data, UInt32 dataSize);
    static OSStatus AddListener(void* self, AudioUnitPropertyID id,
                                AudioUnitPropertyListenerProc proc, void* userData);
    static OSStatus RemoveListener(void* self, AudioUnitPropertyID id,
                                   AudioUnitPropertyListenerProc proc, void* userData);
    static OSStatus GetParameter(void* self, AudioUnitParameterID id, AudioUnitScope scope,
                                 AudioUnitElement element, AudioUnitParameterValue* value);

    PlugIn m_plugIn;
    std::vector<Listener> m_listeners;
};
