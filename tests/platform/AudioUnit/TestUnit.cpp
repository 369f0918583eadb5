#include "tests/platform/AudioUnit/TestUnit.h"

#include <cstring>
#include <sstream>

bool TestUnit::s_fFactoryFails = false;
OSStatus TestUnit::s_nOpenStatus = noErr;
OSStatus TestUnit::s_nCloseStatus = noErr;
OSStatus TestUnit::s_nStatusWhileOpening = noErr;
OSStatus TestUnit::s_nStatusWhileClosing = noErr;

namespace
{

TestUnit* g_last;
int g_nAlive;

template <typename... Parts> std::string Line(const Parts&... parts)
{
    std::ostringstream line;
    const char* separator = "";
    ((line << separator << parts, separator = " "), ...);
    return line.str();
}

OSStatus AskValue(AudioUnit unit)
{
    double dValue = 0;
    UInt32 size = sizeof dValue;
    return AudioUnitGetProperty(unit, TestUnit::kValueProperty, kAudioUnitScope_Global, 0, &dValue,
                                &size);
}

} // namespace

AudioComponent TestUnit::Register(OSType subType, UInt32 flags)
{
    // A mask is for searching; one that is registered means nothing.
    const AudioComponentDescription description = {kAudioUnitType_Effect, subType, 'Tarv', flags,
                                                   0xFF};
    CFStringRef name =
        CFStringCreateWithCString(kCFAllocatorDefault, "Tarvane: Test unit", kCFStringEncodingUTF8);
    const AudioComponent component = AudioComponentRegister(&description, name, 0x10203, Create);
    CFRelease(name);
    return component;
}

TestUnit* TestUnit::Last()
{
    return g_last;
}

int TestUnit::CountAlive()
{
    return g_nAlive;
}

TestUnit::TestUnit() : m_plugIn{{Open, Close, Lookup, nullptr}, this}
{
    ++g_nAlive;
    g_last = this;
}

TestUnit::~TestUnit()
{
    --g_nAlive;
    if (g_last == this)
        g_last = nullptr;
}

void TestUnit::RaiseValueChanged()
{
    for (const Listener& listener : m_listeners)
        listener.proc(listener.userData, instance, listener.id, kAudioUnitScope_Global, 0);
}

AudioComponentPlugInInterface* TestUnit::Create(const AudioComponentDescription*)
{
    return s_fFactoryFails ? nullptr : &(new TestUnit)->m_plugIn;
}

TestUnit* TestUnit::From(void* self)
{
    return static_cast<PlugIn*>(static_cast<AudioComponentPlugInInterface*>(self))->unit;
}

OSStatus TestUnit::Open(void* self, AudioComponentInstance instance)
{
    From(self)->instance = instance;
    s_nStatusWhileOpening = AskValue(instance);
    if (s_nOpenStatus != noErr)
        delete From(self);
    return s_nOpenStatus;
}

OSStatus TestUnit::Close(void* self)
{
    s_nStatusWhileClosing = AskValue(From(self)->instance);
    delete From(self);
    return s_nCloseStatus;
}

AudioComponentMethod TestUnit::Lookup(SInt16 selector)
{
    switch (selector)
    {
    case kAudioUnitGetPropertyInfoSelect:
        return reinterpret_cast<AudioComponentMethod>(GetPropertyInfo);
    case kAudioUnitGetPropertySelect:
        return reinterpret_cast<AudioComponentMethod>(GetProperty);
    case kAudioUnitSetPropertySelect:
        return reinterpret_cast<AudioComponentMethod>(SetProperty);
    case kAudioUnitAddPropertyListenerSelect:
        return reinterpret_cast<AudioComponentMethod>(AddListener);
    case kAudioUnitRemovePropertyListenerWithUserDataSelect:
        return reinterpret_cast<AudioComponentMethod>(RemoveListener);
    case kAudioUnitGetParameterSelect:
        return reinterpret_cast<AudioComponentMethod>(GetParameter);
    default:
        return nullptr;
    }
}

OSStatus TestUnit::GetPropertyInfo(void* self, AudioUnitPropertyID id, AudioUnitScope scope,
                                   AudioUnitElement element, UInt32* dataSize, Boolean* writable)
{
    From(self)->log.push_back(Line("info", id, scope, element));
    if (id != kValueProperty)
        return kAudioUnitErr_InvalidProperty;
    *dataSize = sizeof(double);
    *writable = true;
    return noErr;
}

OSStatus TestUnit::GetProperty(void* self, AudioUnitPropertyID id, AudioUnitScope scope,
                               AudioUnitElement element, void* data, UInt32* dataSize)
{
    From(self)->log.push_back(Line("get", id, scope, element, *dataSize));
    if (id != kValueProperty)
        return kAudioUnitErr_InvalidProperty;
    std::memcpy(data, &From(self)->dValue, sizeof(double));
    *dataSize = sizeof(double);
    return noErr;
}

OSStatus TestUnit::SetProperty(void* self, AudioUnitPropertyID id, AudioUnitScope scope,
                               AudioUnitElement element, const void* data, UInt32 dataSize)
{
    From(self)->log.push_back(Line("set", id, scope, element, dataSize));
    if (id != kValueProperty)
        return kAudioUnitErr_InvalidProperty;
    if (data != nullptr)
        std::memcpy(&From(self)->dValue, data, sizeof(double));
    return noErr;
}

OSStatus TestUnit::AddListener(void* self, AudioUnitPropertyID id,
                               AudioUnitPropertyListenerProc proc, void* userData)
{
    From(self)->log.push_back(Line("add", id));
    From(self)->m_listeners.push_back({id, proc, userData});
    return noErr;
}

OSStatus TestUnit::RemoveListener(void* self, AudioUnitPropertyID id,
                                  AudioUnitPropertyListenerProc proc, void* userData)
{
    From(self)->log.push_back(Line("remove", id));
    std::erase_if(
        From(self)->m_listeners, [=](const Listener& listener)
        { return listener.id == id && listener.proc == proc && listener.userData == userData; });
    return noErr;
}

OSStatus TestUnit::GetParameter(void* self, AudioUnitParameterID id, AudioUnitScope scope,
                                AudioUnitElement element, AudioUnitParameterValue* value)
{
    From(self)->log.push_back(Line("parameter", id, scope, element));
    *value = From(self)->fParameter;
    return noErr;
}
