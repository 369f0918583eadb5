#include <AudioToolbox/AudioUnitUtilities.h>

#include "platform/gnustep/AudioUnit/Listener.h"

#include <map>

namespace
{

using ListenerPtr = std::shared_ptr<AUListenerBase>;

// The listeners that have not been disposed of.
class Listeners
{
public:
    static Listeners& Shared()
    {
        static Listeners& listeners = *new Listeners;
        return listeners;
    }

    AUEventListenerRef Add(const AUListenerBase::Settings& settings)
    {
        const auto listener = std::make_shared<AUListenerBase>(settings);
        std::lock_guard lock(m_mutex);
        m_listeners.emplace(listener.get(), listener);
        return listener.get();
    }

    ListenerPtr Find(AUEventListenerRef listener) const
    {
        std::lock_guard lock(m_mutex);
        const auto found = m_listeners.find(listener);
        return found == m_listeners.end() ? nullptr : found->second;
    }

    ListenerPtr Remove(AUEventListenerRef listener)
    {
        std::lock_guard lock(m_mutex);
        const auto node = m_listeners.extract(listener);
        return node.empty() ? nullptr : node.mapped();
    }

    std::vector<ListenerPtr> All() const
    {
        std::lock_guard lock(m_mutex);
        std::vector<ListenerPtr> all;
        for (const auto& [ref, listener] : m_listeners)
            all.push_back(listener);
        return all;
    }

private:
    mutable std::mutex m_mutex;
    std::map<AUEventListenerRef, ListenerPtr> m_listeners;
};

AUListenerBase::Settings SettingsFor(CFRunLoopRef runLoop, CFStringRef mode, Float32 interval)
{
    AUListenerBase::Settings settings;
    settings.runLoop = runLoop != nullptr ? runLoop : CFRunLoopGetCurrent();
    settings.mode = mode != nullptr ? mode : kCFRunLoopDefaultMode;
    settings.interval = interval;
    return settings;
}

AUListenerBase::Occurrence OccurrenceOf(const AudioUnitEvent& event)
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    AudioUnitParameterValue value = 0;
    if (event.mEventType == kAudioUnitEvent_ParameterValueChange)
    {
        const AudioUnitParameter& parameter = event.mArgument.mParameter;
        AudioUnitGetParameter(parameter.mAudioUnit, parameter.mParameterID, parameter.mScope,
                              parameter.mElement, &value);
    }
    return {event, UInt64(std::chrono::nanoseconds(now).count()), value};
}

} // namespace

OSStatus AUListenerCreate(AUParameterListenerProc function, void* userData, CFRunLoopRef runLoop,
                          CFStringRef runLoopMode, Float32 notificationInterval,
                          AUParameterListenerRef* listener)
{
    if (listener == nullptr)
        return kAudio_ParamError;
    *listener = nullptr;
    if (function == nullptr)
        return kAudio_ParamError;
    AUListenerBase::Settings settings = SettingsFor(runLoop, runLoopMode, notificationInterval);
    settings.userData = userData;
    *listener = Listeners::Shared().Add(settings);
    return noErr;
}

OSStatus AUEventListenerCreate(AUEventListenerProc function, void* userData, CFRunLoopRef runLoop,
                               CFStringRef runLoopMode, Float32 notificationInterval,
                               Float32 valueChangeGranularity, AUEventListenerRef* listener)
{
    if (listener == nullptr)
        return kAudio_ParamError;
    *listener = nullptr;
    if (function == nullptr)
        return kAudio_ParamError;
    AUListenerBase::Settings settings = SettingsFor(runLoop, runLoopMode, notificationInterval);
    settings.function = function;
    settings.userData = userData;
    settings.granularity = valueChangeGranularity;
    *listener = Listeners::Shared().Add(settings);
    return noErr;
}

OSStatus AUListenerDispose(AUParameterListenerRef listener)
{
    const ListenerPtr removed = Listeners::Shared().Remove(listener);
    if (removed == nullptr)
        return kAudio_ParamError;
    removed->Dispose();
    return noErr;
}

OSStatus AUEventListenerAddEventType(AUEventListenerRef listener, void* object,
                                     const AudioUnitEvent* event)
{
    const ListenerPtr found = Listeners::Shared().Find(listener);
    if (found == nullptr || !found->HearsEvents() || event == nullptr)
        return kAudio_ParamError;
    if (event->mEventType == kAudioUnitEvent_PropertyChange)
        return kAudio_UnimplementedError;
    found->Add(object, *event);
    return noErr;
}

OSStatus AUEventListenerRemoveEventType(AUEventListenerRef listener, void* object,
                                        const AudioUnitEvent* event)
{
    const ListenerPtr found = Listeners::Shared().Find(listener);
    if (found == nullptr || event == nullptr)
        return kAudio_ParamError;
    return found->Remove(object, *event) ? noErr : kAudio_ParamError;
}

OSStatus AUEventListenerNotify(AUEventListenerRef sendingListener, void* sendingObject,
                               const AudioUnitEvent* event)
{
    if (event == nullptr)
        return kAudio_ParamError;
    const AUListenerBase::Occurrence occurrence = OccurrenceOf(*event);
    for (const ListenerPtr& listener : Listeners::Shared().All())
    {
        const bool fSender = listener.get() == sendingListener;
        for (void* object : listener->ObjectsFor(*event))
        {
            if (!fSender || (sendingObject != nullptr && object != sendingObject))
                listener->Tell(object, occurrence);
        }
    }
    return noErr;
}
