// The smallest signal side that keeps every MUST of the property contract (docs/integrators.md). It
// does all on the thread that calls it; where a real one captures, on the audio thread, it writes a
// tenth of a second of silence.
#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/PlugInEntry.h"

#include <CoreFoundation/CoreFoundation.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <dlfcn.h>
#include <filesystem>
#include <sndfile.h>
#include <string>
#include <unistd.h> // mkstemps, on macOS
#include <vector>

namespace
{

constexpr int kRate = 48000;
constexpr int kFrames = 4800;

// Of its own: writing it captures for a moment.
constexpr AudioUnitPropertyID kPlay = 65000;

struct Listener
{
    AudioUnitPropertyID nId;
    AudioUnitPropertyListenerProc pProc;
    void* pUserData;
    bool operator==(const Listener&) const = default;
};

struct Element
{
    SInt32 nIndex;
    TNCaptureElement record;
};

// The interface comes first: its address is what every entry point is given.
struct Instance : AudioComponentPlugInInterface
{
    AudioUnit pUnit = nullptr;
    std::vector<Listener> listeners;
    std::deque<Element> waiting; // the front is the one to deliver
    SInt32 nNextIndex = 0;
    SInt32 nTrack = 0;
    UInt8 fArmed = 0;

    void Raise(AudioUnitPropertyID nId) const
    {
        const std::vector<Listener> all = listeners; // one may remove itself
        for (const Listener& listener : all)
            if (listener.nId == nId)
                listener.pProc(listener.pUserData, pUnit, nId, kAudioUnitScope_Global, 0);
    }
};

// A file that was not there: the folder may be everybody's.
std::string WriteFile()
{
    std::string strPath = std::filesystem::temp_directory_path() / "take-XXXXXX.wav";
    const int nFile = mkstemps(strPath.data(), sizeof ".wav" - 1);
    if (nFile < 0)
        return "";
    SF_INFO info{};
    info.samplerate = kRate;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* pFile = sf_open_fd(nFile, SFM_WRITE, &info, SF_TRUE);
    if (pFile == nullptr)
        return "";
    const std::array<short, kFrames> silence{};
    sf_writef_short(pFile, silence.data(), kFrames);
    sf_close(pFile);
    return strPath;
}

// The file is whole and the record in its place before anybody hears of it.
OSStatus Capture(Instance& instance)
{
    const std::string strPath = WriteFile();
    Element element{instance.nNextIndex, {}};
    if (strPath.empty() || strPath.size() >= sizeof element.record.szDubPath ||
        strPath.find_first_of("\"\\\r\n") != std::string::npos)
        return kAudioUnitErr_FailedInitialization;
    std::memcpy(element.record.szDubPath, strPath.c_str(), strPath.size() + 1);
    element.record.tDub.dPosition = 0; // where the host was when the capture began
    element.record.tDub.dEnd = kFrames;
    element.record.dSampleRate = kRate;
    instance.waiting.push_back(element);
    ++instance.nNextIndex;
    instance.Raise(TNProperty_Elements);
    return noErr;
}

CFStringRef MadeString(const char* szText)
{
    return CFStringCreateWithCString(kCFAllocatorDefault, szText, kCFStringEncodingUTF8);
}

// Where the view is: in the bundle beside this library. The reader releases both.
AudioUnitCocoaViewInfo ViewInfo()
{
    Dl_info info{};
    dladdr(reinterpret_cast<const void*>(&TarvaneConformPlay), &info);
    const std::string strBundle =
        std::filesystem::absolute(info.dli_fname).parent_path() / "TarvaneLink.bundle";
    return {CFURLCreateFromFileSystemRepresentation(
                kCFAllocatorDefault, reinterpret_cast<const UInt8*>(strBundle.data()),
                static_cast<CFIndex>(strBundle.size()), true),
            {MadeString("TarvaneLink_CocoaViewFactory")}};
}

template <typename Value> OSStatus Give(const Value& value, void* pData, UInt32* pnSize)
{
    if (*pnSize < sizeof value)
        return kAudioUnitErr_InvalidParameter;
    std::memcpy(pData, &value, sizeof value);
    *pnSize = sizeof value;
    return noErr;
}

OSStatus Get(void* pSelf, AudioUnitPropertyID nId, AudioUnitScope, AudioUnitElement nElement,
             void* pData, UInt32* pnSize)
{
    const Instance& instance = *static_cast<Instance*>(pSelf);
    const auto& waiting = instance.waiting;
    switch (nId)
    {
    case TNProperty_ElementInfo:
        for (const Element& element : waiting)
            if (static_cast<AudioUnitElement>(element.nIndex) == nElement)
                return Give(element.record, pData, pnSize);
        return kAudioUnitErr_InvalidElement;
    case TNProperty_ArmCapture:
        return Give(instance.fArmed, pData, pnSize);
    case TNProperty_NextElement:
        return Give(waiting.empty() ? SInt32(-1) : waiting.front().nIndex, pData, pnSize);
    case TNProperty_SelectedTrack:
        return Give(instance.nTrack, pData, pnSize);
    case kAudioUnitProperty_CocoaUI:
        return Give(ViewInfo(), pData, pnSize);
    default:
        return kAudioUnitErr_InvalidProperty;
    }
}

template <typename Value> bool Take(Value& value, const void* pData, UInt32 nSize)
{
    if (nSize == sizeof value)
        std::memcpy(&value, pData, sizeof value);
    return nSize == sizeof value;
}

OSStatus Set(void* pSelf, AudioUnitPropertyID nId, AudioUnitScope, AudioUnitElement,
             const void* pData, UInt32 nSize)
{
    Instance& instance = *static_cast<Instance*>(pSelf);
    TNArmRequest request;
    TNElementAck ack;
    switch (nId)
    {
    case TNProperty_SetArmCapture:
        if (!Take(request, pData, nSize))
            return kAudioUnitErr_InvalidPropertyValue;
        instance.fArmed = request.fArm;
        instance.Raise(TNProperty_ArmCapture);
        return noErr;
    case TNProperty_ElementDone:
        if (!Take(ack, pData, nSize) || instance.waiting.empty() ||
            instance.waiting.front().nIndex != ack.nElement)
            return kAudioUnitErr_InvalidPropertyValue;
        instance.waiting.pop_front();
        instance.Raise(TNProperty_ArmCapture);
        return noErr;
    case TNProperty_SelectedTrack:
        return Take(instance.nTrack, pData, nSize) ? OSStatus(noErr)
                                                   : kAudioUnitErr_InvalidPropertyValue;
    case kPlay:
        return instance.fArmed ? Capture(instance) : kAudioUnitErr_CannotDoInCurrentContext;
    default:
        return kAudioUnitErr_InvalidProperty;
    }
}

OSStatus AddListener(void* pSelf, AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc,
                     void* pUserData)
{
    static_cast<Instance*>(pSelf)->listeners.push_back({nId, pProc, pUserData});
    return noErr;
}

OSStatus RemoveListener(void* pSelf, AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc,
                        void* pUserData)
{
    std::erase(static_cast<Instance*>(pSelf)->listeners, Listener{nId, pProc, pUserData});
    return noErr;
}

OSStatus Open(void* pSelf, AudioComponentInstance pUnit)
{
    static_cast<Instance*>(pSelf)->pUnit = pUnit;
    return noErr;
}

OSStatus Close(void* pSelf)
{
    delete static_cast<Instance*>(pSelf);
    return noErr;
}

template <typename Method> AudioComponentMethod EntryPoint(Method pMethod)
{
    return reinterpret_cast<AudioComponentMethod>(pMethod);
}

AudioComponentMethod Lookup(SInt16 nSelector)
{
    switch (nSelector)
    {
    case kAudioUnitGetPropertySelect:
        return EntryPoint(&Get);
    case kAudioUnitSetPropertySelect:
        return EntryPoint(&Set);
    case kAudioUnitAddPropertyListenerSelect:
        return EntryPoint(&AddListener);
    case kAudioUnitRemovePropertyListenerWithUserDataSelect:
        return EntryPoint(&RemoveListener);
    default:
        return nullptr;
    }
}

} // namespace

AudioComponentPlugInInterface* TarvaneLinkSignalSideFactory(const AudioComponentDescription*)
{
    auto* pInstance = new Instance;
    pInstance->Open = &Open;
    pInstance->Close = &Close;
    pInstance->Lookup = &Lookup;
    return pInstance;
}

OSStatus TarvaneConformPlay(AudioUnit pUnit)
{
    return AudioUnitSetProperty(pUnit, kPlay, kAudioUnitScope_Global, 0, nullptr, 0);
}
