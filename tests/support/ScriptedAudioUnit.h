#pragma once

#include <AudioToolbox/AudioToolbox.h>
#include <AudioUnit/AudioUnit.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <utility>
#include <vector>

namespace TarvaneTests
{

/// Stands where the audio unit framework would be linked: a plug-in whose property values and
/// failures the test writes down, and a record of what it was asked, in order and to the byte.
///
/// One object at a time; while it lives it is the framework. Every operation may be called on any
/// thread. Removing a listener returns only when no call of it is under way, unless a test asks for
/// a plug-in that does not wait.
///
///     ScriptedAudioUnit plugIn;
///     plugIn.SetValue<std::int32_t>(TNProperty_NextElement, 3);
///     plugIn.Raise(TNProperty_Elements);
///     ...
///     EXPECT_EQ(plugIn.Lines(), ...);
class ScriptedAudioUnit
{
public:
    using Bytes = std::vector<std::uint8_t>;

    /// One call. m_line shows it:
    ///
    ///     Listen(64000)
    ///     Unlisten(64000)
    ///     Get(64002, scope 0, element 3, 3248 bytes)
    ///     Set(64008, scope 0, element 0, 8 bytes)
    ///     CreateListener(default mode, 0.1 s)
    ///     DisposeListener
    ///     NotifyEvent(1)
    struct Record
    {
        std::string m_line;
        AudioUnit m_pUnit = nullptr;
        AudioUnitPropertyID m_nProperty = 0;
        Bytes m_bytes; ///< what a Set handed over
        void (*m_pCallback)() = nullptr;
        void* m_pUserData = nullptr; ///< NotifyEvent: the sending object
        const void* m_pListener = nullptr;
        CFRunLoopRef m_runLoop = nullptr;
        AudioUnitEvent m_event = {};
    };

    ScriptedAudioUnit();
    ~ScriptedAudioUnit();
    ScriptedAudioUnit(const ScriptedAudioUnit&) = delete;
    ScriptedAudioUnit& operator=(const ScriptedAudioUnit&) = delete;

    /// A handle for the view; n tells several plug-ins apart. Values are the same for all.
    static AudioUnit Unit(int n = 1);

    /// What a Get writes: all its bytes, but never more than the caller has room for. A property
    /// without a value fails and writes nothing.
    template <typename T>
    void SetValue(AudioUnitPropertyID nProperty, const T& value, AudioUnitElement nElement = 0)
    {
        const auto* pFirst = reinterpret_cast<const std::uint8_t*>(&value);
        SetBytes(nProperty, nElement, Bytes(pFirst, pFirst + sizeof(T)));
    }
    void SetBytes(AudioUnitPropertyID nProperty, AudioUnitElement nElement, Bytes bytes);
    void ClearValue(AudioUnitPropertyID nProperty, AudioUnitElement nElement = 0);

    /// What the listener calls answer from now on.
    void FailListenerCreate(OSStatus nStatus) { m_nCreateStatus = nStatus; }
    void FailListenerDispose(OSStatus nStatus) { m_nDisposeStatus = nStatus; }
    /// What every Set answers from now on.
    void FailSet(OSStatus nStatus) { m_nSetStatus = nStatus; }

    /// From now on a listener is removed at once: whoever raises a property at that moment goes on
    /// to call it, for as long as it takes to get through the list.
    void RemoveWithoutWaiting() { m_fRemovesWithoutWaiting = true; }

    /// Called behind each record, on the thread of the call.
    std::function<void(const Record&)> m_onCall;

    /// Calls the listeners of a property on this thread, as the plug-in does.
    void Raise(AudioUnitPropertyID nProperty, AudioUnitElement nElement = 0, int nUnit = 1);

    std::vector<Record> Records() const;
    std::vector<std::string> Lines() const;
    /// Those of one property and kind, for example `Of("Set", TNProperty_ElementDone)`.
    std::vector<Record> Of(const std::string& strKind, AudioUnitPropertyID nProperty) const;
    void ForgetRecords();
    std::size_t ListenerCount() const;

    OSStatus Get(AudioUnit pUnit, AudioUnitPropertyID nProperty, AudioUnitScope nScope,
                 AudioUnitElement nElement, void* pData, UInt32* pSize);
    OSStatus Set(AudioUnit pUnit, AudioUnitPropertyID nProperty, AudioUnitScope nScope,
                 AudioUnitElement nElement, const void* pData, UInt32 nSize);
    OSStatus Listen(AudioUnit pUnit, AudioUnitPropertyID nProperty,
                    AudioUnitPropertyListenerProc pListener, void* pUserData);
    OSStatus Unlisten(AudioUnit pUnit, AudioUnitPropertyID nProperty,
                      AudioUnitPropertyListenerProc pListener, void* pUserData);
    OSStatus CreateListener(AUParameterListenerProc pFunction, void* pUserData,
                            CFRunLoopRef runLoop, CFStringRef strMode, Float32 fInterval,
                            AUParameterListenerRef* ppListener);
    OSStatus DisposeListener(AUParameterListenerRef pListener);
    OSStatus NotifyEvent(AUEventListenerRef pSender, void* pObject, const AudioUnitEvent* pEvent);

    /// The one that stands for the framework now.
    static ScriptedAudioUnit& Current();

private:
    struct Listener
    {
        AudioUnit m_pUnit;
        AudioUnitPropertyID m_nProperty;
        AudioUnitPropertyListenerProc m_pProc;
        void* m_pUserData;
        bool operator==(const Listener&) const = default;
    };

    void Note(Record record);

    mutable std::mutex m_mutex; ///< of the values and the records
    std::map<std::pair<AudioUnitPropertyID, AudioUnitElement>, Bytes> m_values;
    std::vector<Record> m_records;
    mutable std::shared_mutex m_listenersMutex; ///< held shared while listeners run
    std::vector<Listener> m_listeners;
    OSStatus m_nCreateStatus = 0;
    OSStatus m_nDisposeStatus = 0;
    OSStatus m_nSetStatus = 0;
    int m_nListenersMade = 0;
    bool m_fRemovesWithoutWaiting = false;
};

} // namespace TarvaneTests
