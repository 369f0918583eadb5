#include "tests/support/ScriptedAudioUnit.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace TarvaneTests
{
namespace
{
ScriptedAudioUnit* g_pCurrent = nullptr;

[[noreturn]] void Misused(const char* szWhat)
{
    std::fprintf(stderr, "ScriptedAudioUnit: %s\n", szWhat);
    std::abort();
}

template <typename... T> std::string Text(const T&... parts)
{
    std::ostringstream text;
    (text << ... << parts);
    return text.str();
}

std::string Access(const char* szKind, AudioUnitPropertyID nProperty, AudioUnitScope nScope,
                   AudioUnitElement nElement, UInt32 nSize)
{
    return Text(szKind, "(", nProperty, ", scope ", nScope, ", element ", nElement, ", ", nSize,
                " bytes)");
}
} // namespace

ScriptedAudioUnit::ScriptedAudioUnit()
{
    if (g_pCurrent != nullptr)
        Misused("a second object while one lives");
    g_pCurrent = this;
}

ScriptedAudioUnit::~ScriptedAudioUnit()
{
    g_pCurrent = nullptr;
}

ScriptedAudioUnit& ScriptedAudioUnit::Current()
{
    if (g_pCurrent == nullptr)
        Misused("the framework was called without an object to stand for it");
    return *g_pCurrent;
}

AudioUnit ScriptedAudioUnit::Unit(int n)
{
    return reinterpret_cast<AudioUnit>(static_cast<std::uintptr_t>(n));
}

void ScriptedAudioUnit::SetBytes(AudioUnitPropertyID nProperty, AudioUnitElement nElement,
                                 Bytes bytes)
{
    std::lock_guard lock(m_mutex);
    m_values[{nProperty, nElement}] = std::move(bytes);
}

void ScriptedAudioUnit::ClearValue(AudioUnitPropertyID nProperty, AudioUnitElement nElement)
{
    std::lock_guard lock(m_mutex);
    m_values.erase({nProperty, nElement});
}

void ScriptedAudioUnit::Raise(AudioUnitPropertyID nProperty, AudioUnitElement nElement, int nUnit)
{
    std::shared_lock lock(m_listenersMutex);
    std::vector<Listener> seen;
    if (m_fRemovesWithoutWaiting)
    {
        seen = m_listeners;
        lock.unlock();
    }
    for (const Listener& listener : m_fRemovesWithoutWaiting ? seen : m_listeners)
    {
        if (listener.m_pUnit == Unit(nUnit) && listener.m_nProperty == nProperty)
            listener.m_pProc(listener.m_pUserData, listener.m_pUnit, nProperty,
                             kAudioUnitScope_Global, nElement);
    }
}

std::vector<ScriptedAudioUnit::Record> ScriptedAudioUnit::Records() const
{
    std::lock_guard lock(m_mutex);
    return m_records;
}

std::vector<std::string> ScriptedAudioUnit::Lines() const
{
    std::vector<std::string> lines;
    for (const Record& record : Records())
        lines.push_back(record.m_line);
    return lines;
}

std::vector<ScriptedAudioUnit::Record> ScriptedAudioUnit::Of(const std::string& strKind,
                                                             AudioUnitPropertyID nProperty) const
{
    std::vector<Record> found;
    for (const Record& record : Records())
    {
        if (record.m_nProperty == nProperty && record.m_line.starts_with(strKind + "("))
            found.push_back(record);
    }
    return found;
}

void ScriptedAudioUnit::ForgetRecords()
{
    std::lock_guard lock(m_mutex);
    m_records.clear();
}

std::size_t ScriptedAudioUnit::ListenerCount() const
{
    std::shared_lock lock(m_listenersMutex);
    return m_listeners.size();
}

void ScriptedAudioUnit::Note(Record record)
{
    {
        std::lock_guard lock(m_mutex);
        m_records.push_back(record);
    }
    if (m_onCall)
        m_onCall(record);
}

OSStatus ScriptedAudioUnit::Get(AudioUnit pUnit, AudioUnitPropertyID nProperty,
                                AudioUnitScope nScope, AudioUnitElement nElement, void* pData,
                                UInt32* pSize)
{
    Record record;
    record.m_line = Access("Get", nProperty, nScope, nElement, *pSize);
    record.m_pUnit = pUnit;
    record.m_nProperty = nProperty;
    Note(record);

    std::lock_guard lock(m_mutex);
    auto found = m_values.find({nProperty, nElement});
    if (found == m_values.end())
        return kAudioUnitErr_InvalidProperty;
    const auto nBytes = std::min(*pSize, static_cast<UInt32>(found->second.size()));
    std::copy_n(found->second.data(), nBytes, static_cast<std::uint8_t*>(pData));
    *pSize = nBytes;
    return 0;
}

OSStatus ScriptedAudioUnit::Set(AudioUnit pUnit, AudioUnitPropertyID nProperty,
                                AudioUnitScope nScope, AudioUnitElement nElement, const void* pData,
                                UInt32 nSize)
{
    const auto* pFirst = static_cast<const std::uint8_t*>(pData);
    Record record;
    record.m_line = Access("Set", nProperty, nScope, nElement, nSize);
    record.m_pUnit = pUnit;
    record.m_nProperty = nProperty;
    record.m_bytes.assign(pFirst, pFirst + nSize);
    Note(record);
    return m_nSetStatus;
}

OSStatus ScriptedAudioUnit::Listen(AudioUnit pUnit, AudioUnitPropertyID nProperty,
                                   AudioUnitPropertyListenerProc pListener, void* pUserData)
{
    {
        std::unique_lock lock(m_listenersMutex);
        m_listeners.push_back({pUnit, nProperty, pListener, pUserData});
    }
    Record record;
    record.m_line = Text("Listen(", nProperty, ")");
    record.m_pUnit = pUnit;
    record.m_nProperty = nProperty;
    record.m_pCallback = reinterpret_cast<void (*)()>(pListener);
    record.m_pUserData = pUserData;
    Note(record);
    return 0;
}

OSStatus ScriptedAudioUnit::Unlisten(AudioUnit pUnit, AudioUnitPropertyID nProperty,
                                     AudioUnitPropertyListenerProc pListener, void* pUserData)
{
    {
        std::unique_lock lock(m_listenersMutex);
        std::erase(m_listeners, Listener{pUnit, nProperty, pListener, pUserData});
    }
    Record record;
    record.m_line = Text("Unlisten(", nProperty, ")");
    record.m_pUnit = pUnit;
    record.m_nProperty = nProperty;
    record.m_pCallback = reinterpret_cast<void (*)()>(pListener);
    record.m_pUserData = pUserData;
    Note(record);
    return 0;
}

OSStatus ScriptedAudioUnit::CreateListener(AUParameterListenerProc pFunction, void* pUserData,
                                           CFRunLoopRef runLoop, CFStringRef strMode,
                                           Float32 fInterval, AUParameterListenerRef* ppListener)
{
    if (m_nCreateStatus == 0)
        *ppListener = reinterpret_cast<AUParameterListenerRef>(
            static_cast<std::uintptr_t>(0x1000 + ++m_nListenersMade));
    Record record;
    record.m_line =
        Text("CreateListener(", strMode == kCFRunLoopDefaultMode ? "default mode" : "another mode",
             ", ", fInterval, " s)");
    record.m_pCallback = reinterpret_cast<void (*)()>(pFunction);
    record.m_pUserData = pUserData;
    record.m_pListener = *ppListener;
    record.m_runLoop = runLoop;
    Note(record);
    return m_nCreateStatus;
}

OSStatus ScriptedAudioUnit::DisposeListener(AUParameterListenerRef pListener)
{
    Record record;
    record.m_line = "DisposeListener";
    record.m_pListener = pListener;
    Note(record);
    return m_nDisposeStatus;
}

OSStatus ScriptedAudioUnit::NotifyEvent(AUEventListenerRef pSender, void* pObject,
                                        const AudioUnitEvent* pEvent)
{
    Record record;
    record.m_line = Text("NotifyEvent(", pEvent->mEventType, ")");
    record.m_pListener = pSender;
    record.m_pUserData = pObject;
    record.m_event = *pEvent;
    Note(record);
    return 0;
}

} // namespace TarvaneTests

using TarvaneTests::ScriptedAudioUnit;

extern "C"
{
    OSStatus AudioUnitGetProperty(AudioUnit pUnit, AudioUnitPropertyID nProperty,
                                  AudioUnitScope nScope, AudioUnitElement nElement, void* pData,
                                  UInt32* pSize)
    {
        return ScriptedAudioUnit::Current().Get(pUnit, nProperty, nScope, nElement, pData, pSize);
    }

    OSStatus AudioUnitSetProperty(AudioUnit pUnit, AudioUnitPropertyID nProperty,
                                  AudioUnitScope nScope, AudioUnitElement nElement,
                                  const void* pData, UInt32 nSize)
    {
        return ScriptedAudioUnit::Current().Set(pUnit, nProperty, nScope, nElement, pData, nSize);
    }

    OSStatus AudioUnitAddPropertyListener(AudioUnit pUnit, AudioUnitPropertyID nProperty,
                                          AudioUnitPropertyListenerProc pListener, void* pUserData)
    {
        return ScriptedAudioUnit::Current().Listen(pUnit, nProperty, pListener, pUserData);
    }

    OSStatus AudioUnitRemovePropertyListenerWithUserData(AudioUnit pUnit,
                                                         AudioUnitPropertyID nProperty,
                                                         AudioUnitPropertyListenerProc pListener,
                                                         void* pUserData)
    {
        return ScriptedAudioUnit::Current().Unlisten(pUnit, nProperty, pListener, pUserData);
    }

    OSStatus AUListenerCreate(AUParameterListenerProc pFunction, void* pUserData,
                              CFRunLoopRef runLoop, CFStringRef strMode, Float32 fInterval,
                              AUParameterListenerRef* ppListener)
    {
        return ScriptedAudioUnit::Current().CreateListener(pFunction, pUserData, runLoop, strMode,
                                                           fInterval, ppListener);
    }

    OSStatus AUListenerDispose(AUParameterListenerRef pListener)
    {
        return ScriptedAudioUnit::Current().DisposeListener(pListener);
    }

    OSStatus AUEventListenerNotify(AUEventListenerRef pSender, void* pObject,
                                   const AudioUnitEvent* pEvent)
    {
        return ScriptedAudioUnit::Current().NotifyEvent(pSender, pObject, pEvent);
    }
}
