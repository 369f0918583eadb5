#include <AudioUnit/AudioComponent.h>

#include "platform/gnustep/AudioUnit/Instances.h"

#include <deque>

struct OpaqueAudioComponent
{
    AudioComponentDescription description;
    CFStringRef name;
    UInt32 version;
    AudioComponentFactoryFunction factory;
    AudioComponent next;
};

namespace
{

using platform::Instance;
using platform::Instances;

// The components in the order of registration. They are never taken away, so that a component
// once found can be read without the lock, but for its `next`.
class Components
{
public:
    static Components& Shared()
    {
        static Components& components = *new Components;
        return components;
    }

    AudioComponent Add(const OpaqueAudioComponent& component)
    {
        std::lock_guard lock(m_mutex);
        AudioComponent last = m_components.empty() ? nullptr : &m_components.back();
        AudioComponent added = &m_components.emplace_back(component);
        if (last != nullptr)
            last->next = added;
        return added;
    }

    AudioComponent Next(AudioComponent component) const
    {
        std::lock_guard lock(m_mutex);
        if (component != nullptr)
            return component->next;
        return m_components.empty() ? nullptr : const_cast<AudioComponent>(&m_components.front());
    }

private:
    mutable std::mutex m_mutex;
    std::deque<OpaqueAudioComponent> m_components;
};

bool Fits(OSType wanted, OSType present)
{
    return wanted == 0 || wanted == present;
}

bool Fits(const AudioComponentDescription& wanted, const AudioComponentDescription& present)
{
    const UInt32 differing = wanted.componentFlags ^ present.componentFlags;
    return Fits(wanted.componentType, present.componentType) &&
           Fits(wanted.componentSubType, present.componentSubType) &&
           Fits(wanted.componentManufacturer, present.componentManufacturer) &&
           (differing & wanted.componentFlagsMask) == 0;
}

} // namespace

AudioComponent AudioComponentRegister(const AudioComponentDescription* description,
                                      CFStringRef name, UInt32 version,
                                      AudioComponentFactoryFunction factory)
{
    if (description == nullptr || name == nullptr || factory == nullptr)
        return nullptr;
    OpaqueAudioComponent component = {*description, name, version, factory, nullptr};
    component.description.componentFlagsMask = 0;
    CFRetain(name);
    return Components::Shared().Add(component);
}

AudioComponent AudioComponentFindNext(AudioComponent component,
                                      const AudioComponentDescription* description)
{
    if (description == nullptr)
        return nullptr;
    const Components& components = Components::Shared();
    AudioComponent next = components.Next(component);
    while (next != nullptr && !Fits(*description, next->description))
        next = components.Next(next);
    return next;
}

OSStatus AudioComponentGetDescription(AudioComponent component,
                                      AudioComponentDescription* description)
{
    if (component == nullptr || description == nullptr)
        return kAudio_ParamError;
    *description = component->description;
    return noErr;
}

OSStatus AudioComponentCopyName(AudioComponent component, CFStringRef* name)
{
    if (component == nullptr || name == nullptr)
        return kAudio_ParamError;
    *name = static_cast<CFStringRef>(CFRetain(component->name));
    return noErr;
}

OSStatus AudioComponentGetVersion(AudioComponent component, UInt32* version)
{
    if (component == nullptr || version == nullptr)
        return kAudio_ParamError;
    *version = component->version;
    return noErr;
}

OSStatus AudioComponentInstanceNew(AudioComponent component, AudioComponentInstance* instance)
{
    if (instance == nullptr)
        return kAudio_ParamError;
    *instance = nullptr;
    if (component == nullptr)
        return kAudio_ParamError;

    AudioComponentPlugInInterface* plugIn = component->factory(&component->description);
    if (plugIn == nullptr)
        return kAudio_MemFullError;

    // In the table before it opens: the plug-in may already call itself through the handle.
    const AudioComponentInstance handle = Instances::Shared().Add({component, plugIn});
    const OSStatus status = plugIn->Open(plugIn, handle);
    if (status != noErr)
    {
        Instances::Shared().Remove(handle);
        return status;
    }
    *instance = handle;
    return noErr;
}

OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance)
{
    const Instance removed = Instances::Shared().Remove(instance);
    if (removed.plugIn == nullptr)
        return badComponentInstance;
    return removed.plugIn->Close(removed.plugIn);
}

AudioComponent AudioComponentInstanceGetComponent(AudioComponentInstance instance)
{
    return Instances::Shared().Find(instance).component;
}
