// A plug-in's signal side over the capture core. The core keeps takes, their journal and the whole
// property contract; what is left is where the audio comes from (Render), what a host asks of any
// component (apps/support/UnitComponent.h), and where the view is.
#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/PlugInEntry.h"
#include "apps/support/PropertyListeners.h"
#include "apps/support/UnitComponent.h"
#include "signal/CaptureCore.h"

#include <array>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>

namespace
{

// Of its own: hands out the instance behind a unit.
constexpr AudioUnitPropertyID kSelf = 65000;

CFStringRef MadeString(const char* szText)
{
    return CFStringCreateWithCString(kCFAllocatorDefault, szText, kCFStringEncodingUTF8);
}

// The reader releases both.
AudioUnitCocoaViewInfo ViewInfo()
{
    const std::string strBundle = VIEW_BUNDLE;
    return {CFURLCreateFromFileSystemRepresentation(
                kCFAllocatorDefault, reinterpret_cast<const UInt8*>(strBundle.data()),
                static_cast<CFIndex>(strBundle.size()), true),
            {MadeString("TarvaneLink_CocoaViewFactory")}};
}

Tarvane::CCaptureSettings Settings()
{
    Tarvane::CCaptureSettings settings;
    settings.format.nChannels = 1;
    settings.format.nRate = 48000;
    return settings;
}

// One instance. All but Render and Self: any thread.
class CMyPlugIn
{
public:
    CMyPlugIn() : m_core(Settings())
    {
        for (const AudioUnitPropertyID nId :
             {TNProperty_Elements, TNProperty_ArmCapture, kTNProperty_CurrentCaptureLength})
        {
            m_core.AddListener(nId, &Hear, this);
        }
    }
    // The file of a take that runs gets finished before anything goes.
    ~CMyPlugIn() { m_core.Close(); }

    static CMyPlugIn* Of(AudioUnit pUnit)
    {
        CMyPlugIn* pSelf = nullptr;
        UInt32 nSize = sizeof pSelf;
        return AudioUnitGetProperty(pUnit, kSelf, kAudioUnitScope_Global, 0, &pSelf, &nSize) ==
                       noErr
                   ? pSelf
                   : nullptr;
    }

    // The audio thread: the host's block, and where its transport is.
    void Render(const Tarvane::CTransport& transport, const float* const* ppChannels,
                UInt32 nFrames)
    {
        m_core.Process(transport, ppChannels, nFrames);
    }
    Tarvane::CCaptureCore& Core() { return m_core; }

    // --- What UnitComponent asks for

    void SetUnit(AudioUnit pUnit) { m_pUnit = pUnit; }
    void Stop() { m_core.Close(); }
    Tarvane::CPropertyListeners& Listeners() { return m_listeners; }

    OSStatus GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                             AudioUnitElement nElement, UInt32* pnSize, Boolean* pfWritable) const
    {
        if (nId == kAudioUnitProperty_CocoaUI)
        {
            return GiveInfo(sizeof(AudioUnitCocoaViewInfo), false, pnSize, pfWritable);
        }
        UInt32 nSize = 0;
        bool fWritable = false;
        const OSStatus nStatus = m_core.GetPropertyInfo(nId, nScope, nElement, &nSize, &fWritable);
        return nStatus == noErr ? GiveInfo(nSize, fWritable, pnSize, pfWritable) : nStatus;
    }

    OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         void* pData, UInt32* pnSize)
    {
        switch (nId)
        {
        case kAudioUnitProperty_CocoaUI:
            return *pnSize < sizeof(AudioUnitCocoaViewInfo)
                       ? OSStatus(kAudioUnitErr_InvalidParameter)
                       : Give(ViewInfo(), pData, pnSize);
        case kSelf:
            return Give(this, pData, pnSize);
        default:
            return m_core.GetProperty(nId, nScope, nElement, pData, pnSize);
        }
    }

    OSStatus SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         const void* pData, UInt32 nSize)
    {
        return m_core.SetProperty(nId, nScope, nElement, pData, nSize);
    }

private:
    static OSStatus GiveInfo(UInt32 nSize, bool fWritable, UInt32* pnSize, Boolean* pfWritable)
    {
        if (pnSize != nullptr)
        {
            *pnSize = nSize;
        }
        if (pfWritable != nullptr)
        {
            *pfWritable = fWritable;
        }
        return noErr;
    }

    template <typename Value> static OSStatus Give(const Value& value, void* pData, UInt32* pnSize)
    {
        if (*pnSize < sizeof value)
        {
            return kAudioUnitErr_InvalidParameter;
        }
        std::memcpy(pData, &value, sizeof value);
        *pnSize = sizeof value;
        return noErr;
    }

    // What the core tells goes on to the unit's own listeners.
    static void Hear(void* pUserData, Tarvane::CCaptureCore*, std::uint32_t nId,
                     std::uint32_t nScope, std::uint32_t nElement)
    {
        auto& self = *static_cast<CMyPlugIn*>(pUserData);
        self.m_listeners.Notify(self.m_pUnit, nId, nScope, nElement);
    }

    AudioUnit m_pUnit = nullptr;
    Tarvane::CPropertyListeners m_listeners;
    Tarvane::CCaptureCore m_core; // goes first: it notifies
};

} // namespace

AudioComponentPlugInInterface*
TarvaneLinkSignalSideFactory(const AudioComponentDescription* pDescription)
{
    return Tarvane::UnitComponent<CMyPlugIn>::MakeInstance(pDescription);
}

// A tenth of a second, as a host would play it: blocks behind one another, and a stop.
OSStatus TarvaneConformPlay(AudioUnit pUnit)
try
{
    constexpr UInt32 kBlocks = 10, kFrames = 480;
    CMyPlugIn& plugIn = *CMyPlugIn::Of(pUnit);
    plugIn.Core().SetCaptureFolder(std::filesystem::temp_directory_path());
    std::array<float, kFrames> samples{};
    const float* pChannel = samples.data();
    Tarvane::CTransport transport{true, false, 1, 480000};
    for (UInt32 nBlock = 0; nBlock < kBlocks; ++nBlock)
    {
        for (UInt32 n = 0; n < kFrames; ++n)
        {
            samples[n] = static_cast<float>(n % 48) / 100;
        }
        plugIn.Render(transport, &pChannel, kFrames);
        transport.dPosition += kFrames;
    }
    transport.dSpeed = 0;
    plugIn.Render(transport, &pChannel, kFrames);
    plugIn.Core().WaitUntilWritten();
    return noErr;
}
catch (const std::exception&)
{
    return kAudioUnitErr_FailedInitialization;
}
