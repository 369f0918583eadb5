// The host's signal side as a library of its own: what a plug-in that keeps the contract looks
// like, and, with names of faults in TARVANE_MISBEHAVE, what one looks like that does not.
#include "apps/support/PlugInEntry.h"
#include "apps/support/UnitComponent.h"
#include "apps/support/sound/SoundFile.h"
#include "apps/support/unit/FaultyUnit.h"
#include "apps/support/unit/SignalSide.h"

#include <CoreFoundation/CoreFoundation.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <unistd.h> // mkstemps, on macOS

namespace fs = std::filesystem;

namespace
{

constexpr int kRate = 48000;
constexpr std::size_t kFrames = 4800;
constexpr double kPosition = 480000;

fs::path FolderOfLibrary()
{
    Dl_info info{};
    dladdr(reinterpret_cast<const void*>(&TarvaneConformPlay), &info);
    return fs::absolute(info.dli_fname).parent_path();
}

const char* AskedFor()
{
    const char* szNames = std::getenv("TARVANE_MISBEHAVE");
    return szNames == nullptr ? "" : szNames;
}

OSStatus GiveView(void* pData, UInt32* pnSize)
{
    if (*pnSize < sizeof(AudioUnitCocoaViewInfo))
        return kAudioUnitErr_InvalidParameter;
    const fs::path bundle = FolderOfLibrary() / "TarvaneLink.bundle";
    const std::string& strPath = bundle.native();
    const AudioUnitCocoaViewInfo info{
        CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                reinterpret_cast<const UInt8*>(strPath.data()),
                                                static_cast<CFIndex>(strPath.size()), true),
        {CFStringCreateWithCString(kCFAllocatorDefault, "TarvaneLink_CocoaViewFactory",
                                   kCFStringEncodingUTF8)}};
    std::memcpy(pData, &info, sizeof info);
    *pnSize = sizeof info;
    return noErr;
}

// A unit that tells hosts where its view is: in the bundle beside this library.
template <typename Unit> class UnitWithView : public Unit
{
public:
    OSStatus GetPropertyInfo(AudioUnitPropertyID nId, AudioUnitScope nScope,
                             AudioUnitElement nElement, UInt32* pnSize, Boolean* pfWritable) const
    {
        if (nId != kAudioUnitProperty_CocoaUI || IsHidden())
            return Unit::GetPropertyInfo(nId, nScope, nElement, pnSize, pfWritable);
        if (pnSize != nullptr)
            *pnSize = sizeof(AudioUnitCocoaViewInfo);
        if (pfWritable != nullptr)
            *pfWritable = false;
        return noErr;
    }

    OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         void* pData, UInt32* pnSize)
    {
        if (nId == kAudioUnitProperty_CocoaUI && !IsHidden())
            return GiveView(pData, pnSize);
        return Unit::GetProperty(nId, nScope, nElement, pData, pnSize);
    }

private:
    static bool IsHidden()
    {
        return *AskedFor() != '\0' &&
               Tarvane::ParseSignalFaults(AskedFor()).count(Tarvane::SignalFault::ViewHidden) != 0;
    }
};

// Does from the first what has been asked for.
class CAskedUnit : public UnitWithView<Tarvane::CFaultyUnit>
{
public:
    void SetUnit(AudioUnit pUnit)
    {
        Tarvane::CFaultyUnit::SetUnit(pUnit);
        const Tarvane::SignalFaults faults = Tarvane::ParseSignalFaults(AskedFor());
        SetProperty(Tarvane::kFaultyUnitProperty_Faults, kAudioUnitScope_Global, 0, &faults,
                    sizeof faults);
    }
};

// A file that was not there: the folder may be everybody's.
fs::path WrittenSound(const fs::path& folder)
{
    std::string strPath = (folder / "played-XXXXXX.wav").string();
    const int nFile = mkstemps(strPath.data(), sizeof ".wav" - 1);
    SF_INFO info{};
    info.samplerate = kRate;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    const Tarvane::SoundFileHandle pFile(nFile < 0 ? nullptr
                                                   : sf_open_fd(nFile, SFM_WRITE, &info, SF_TRUE));
    const std::array<short, kFrames> silence{};
    if (pFile)
        sf_writef_short(pFile.get(), silence.data(), kFrames);
    return strPath;
}

SInt32 TrackOf(AudioUnit pUnit)
{
    SInt32 nTrack = 0;
    UInt32 nSize = sizeof nTrack;
    AudioUnitGetProperty(pUnit, TNProperty_SelectedTrack, kAudioUnitScope_Global, 0, &nTrack,
                         &nSize);
    return nTrack;
}

} // namespace

AudioComponentPlugInInterface*
TarvaneLinkSignalSideFactory(const AudioComponentDescription* pDescription)
{
    using namespace Tarvane;
    return *AskedFor() == '\0'
               ? UnitComponent<UnitWithView<CSignalSide>>::MakeInstance(pDescription)
               : UnitComponent<CAskedUnit>::MakeInstance(pDescription);
}

OSStatus TarvaneConformPlay(AudioUnit pUnit)
try
{
    const fs::path folder = fs::temp_directory_path();
    Tarvane::CSignalSide& side = *Tarvane::CSignalSide::Of(pUnit);
    side.Configure({folder, 0.0, TrackOf(pUnit), false});
    side.SetSource({WrittenSound(folder), kPosition});
    return noErr;
}
catch (const std::exception&)
{
    return kAudioUnitErr_FailedInitialization;
}
