#include "apps/conform/plugin/PlugInRules.h"

#include <CoreFoundation/CoreFoundation.h>

#include <array>
#include <climits>
#include <filesystem>
#include <utility>

namespace Tarvane::Conform
{
namespace
{

constexpr SInt32 kTrack = 3;
constexpr SInt32 kOtherTrack = 5;
constexpr UInt8 kUntouched = 0x5A;
constexpr std::size_t kAmpleRoom = 8192;

void Opens(const PlugInBench& bench)
{
    CPlugInPeer peer(bench);
    UInt8 nArmed = 0;
    UInt32 nSize = sizeof nArmed;
    if (peer.Get(TNProperty_ArmCapture, 0, &nArmed, nSize) == kAudio_UnimplementedError)
        throw CBroken("no property can be read");
    if (peer.Set(TNProperty_SelectedTrack, &kTrack, sizeof kTrack) == kAudio_UnimplementedError)
        throw CBroken("no property can be written");
    CListener::Add(peer.Unit()).Remove();
}

void TellsArmedState(const PlugInBench& bench)
{
    const std::optional<UInt8> armed = CPlugInPeer(bench).Read<UInt8>(TNProperty_ArmCapture);
    if (!armed)
        throw CBroken("nothing is written");
    if (*armed > 1)
        throw CBroken("it is " + std::to_string(*armed));
}

void HasNothingAtFirst(const PlugInBench& bench)
{
    const std::optional<SInt32> index = CPlugInPeer(bench).Read<SInt32>(TNProperty_NextElement);
    if (!index)
        throw CBroken("nothing is written");
    if (*index >= 0)
        throw CBroken("an instance that has captured nothing says " + std::to_string(*index));
}

void KeepsTrack(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    for (const SInt32 nTrack : {kTrack, 0, kOtherTrack})
    {
        peer.Set(TNProperty_SelectedTrack, &nTrack, sizeof nTrack);
        const std::optional<SInt32> kept = peer.Read<SInt32>(TNProperty_SelectedTrack);
        if (!kept)
            throw CBroken("nothing is written");
        if (*kept != nTrack)
            throw CBroken("track " + std::to_string(nTrack) + " was chosen, and it says " +
                          std::to_string(*kept));
    }
}

// The bytes that a read leaves in room that held another byte everywhere.
std::array<UInt8, sizeof(Float64)> ReadOver(const CPlugInPeer& peer, AudioUnitPropertyID nId,
                                            UInt32 nSize, UInt8 nByte)
{
    std::array<UInt8, sizeof(Float64)> bytes;
    bytes.fill(nByte);
    peer.Get(nId, 0, bytes.data(), nSize);
    return bytes;
}

void WritesWholeValues(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    for (const auto& [nId, nSize] :
         {std::pair<AudioUnitPropertyID, UInt32>{TNProperty_ArmCapture, 1},
          {TNProperty_NextElement, 4},
          {TNProperty_SelectedTrack, 4},
          {kTNProperty_CurrentCaptureLength, 8}})
    {
        const auto one = ReadOver(peer, nId, nSize, kUntouched);
        const auto other = ReadOver(peer, nId, nSize, static_cast<UInt8>(~kUntouched));
        const auto isSame = [&](std::size_t nByte) { return one[nByte] == other[nByte]; };
        for (UInt32 nByte = 1; nByte < nSize; ++nByte)
            if (isSame(0) && !isSame(nByte))
                throw CBroken(std::to_string(nId) + " writes " + std::to_string(nByte) +
                              " bytes of " + std::to_string(nSize));
    }
}

std::string PathOf(CFURLRef url)
{
    std::array<UInt8, PATH_MAX> path{};
    if (url == nullptr || !CFURLGetFileSystemRepresentation(url, true, path.data(), path.size()))
        return "";
    return reinterpret_cast<const char*>(path.data());
}

void TellsWhereItsViewIs(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    UInt32 nSize = 0;
    Boolean fWritable = false;
    if (AudioUnitGetPropertyInfo(peer.Unit(), kAudioUnitProperty_CocoaUI, kAudioUnitScope_Global, 0,
                                 &nSize, &fWritable) == noErr &&
        nSize < sizeof(AudioUnitCocoaViewInfo))
        throw CBroken("kAudioUnitProperty_CocoaUI is said to have " + std::to_string(nSize) +
                      " bytes");
    AudioUnitCocoaViewInfo info{};
    nSize = sizeof info;
    const OSStatus nStatus = peer.Get(kAudioUnitProperty_CocoaUI, 0, &info, nSize);
    if (nStatus != noErr)
        throw CBroken("asked for kAudioUnitProperty_CocoaUI, it answers with status " +
                      std::to_string(nStatus));
    const std::string strBundle = PathOf(info.mCocoaAUViewBundleLocation);
    if (!std::filesystem::is_directory(strBundle))
        throw CBroken("there is no bundle \"" + strBundle + "\"");
    if (info.mCocoaAUViewClass[0] == nullptr)
        throw CBroken("it names no class of the bundle");
    CFRelease(info.mCocoaAUViewBundleLocation);
    CFRelease(info.mCocoaAUViewClass[0]);
}

void Arms(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    for (const bool fArm : {true, false})
    {
        peer.AskToArm(fArm);
        if (!WaitUntil(bench.dTimeout, [&] { return peer.IsArmed(fArm); }))
            throw CBroken(fArm ? "it does not arm" : "it does not disarm");
    }
}

void ExpectWithinRoom(const CPlugInPeer& peer, AudioUnitPropertyID nId, AudioUnitElement nElement,
                      UInt32 nRoom)
{
    std::array<UInt8, kAmpleRoom> bytes;
    bytes.fill(kUntouched);
    UInt32 nSize = nRoom;
    peer.Get(nId, nElement, bytes.data(), nSize);
    for (std::size_t nByte = nRoom; nByte < bytes.size(); ++nByte)
        if (bytes[nByte] != kUntouched)
            throw CBroken(std::to_string(nId) + " is read into room for " + std::to_string(nRoom) +
                          " bytes, and byte " + std::to_string(nByte + 1) + " is written");
}

void StaysWithinRoom(const PlugInBench& bench)
{
    struct Value
    {
        AudioUnitPropertyID nId;
        UInt32 nSize;
    };
    const CPlugInPeer peer(bench);
    for (const auto& [nId, nSize] :
         {Value{TNProperty_ArmCapture, 1}, Value{TNProperty_NextElement, 4},
          Value{TNProperty_SelectedTrack, 4}, Value{kTNProperty_CurrentCaptureLength, 8}})
        for (const UInt32 nRoom : {0U, nSize - 1, nSize})
            ExpectWithinRoom(peer, nId, 0, nRoom);
    if (!bench.library.CanPlay())
        return;
    const auto nElement = static_cast<AudioUnitElement>(peer.CaptureElement());
    for (const UInt32 nRoom : {sizeof(TNCaptureElement) - 1, sizeof(TNCaptureElement)})
        ExpectWithinRoom(peer, TNProperty_ElementInfo, nElement, nRoom);
}

void ExpectNothingOf(const PlugInBench& bench, const CPlugInPeer& one, const CPlugInPeer& other)
{
    const bool fNothing = other.Read<SInt32>(TNProperty_NextElement).value_or(0) < 0;
    one.Capture();
    LetPass(bench.dMoment);
    if (other.Heard().Count(TNProperty_Elements) != 0)
        throw CBroken("what one instance has captured is announced by another");
    if (fNothing && other.Read<SInt32>(TNProperty_NextElement).value_or(0) >= 0)
        throw CBroken("what one instance has captured is delivered by another");
}

void KeepsInstancesApart(const PlugInBench& bench)
{
    const CPlugInPeer one(bench);
    const CPlugInPeer other(bench);
    one.Set(TNProperty_SelectedTrack, &kTrack, sizeof kTrack);
    other.Set(TNProperty_SelectedTrack, &kOtherTrack, sizeof kOtherTrack);
    if (one.Read<SInt32>(TNProperty_SelectedTrack) == kOtherTrack)
        throw CBroken("the track that is chosen in one instance changes in another");
    one.Arm();
    LetPass(bench.dMoment);
    if (other.IsArmed(true))
        throw CBroken("when one instance is armed, another is");
    if (other.Heard().Count(TNProperty_ArmCapture) != 0)
        throw CBroken("when one instance is armed, another reports it");
    if (bench.library.CanPlay())
        ExpectNothingOf(bench, one, other);
}

} // namespace

std::vector<PlugInRule> PropertyRules()
{
    return {
        {{szOpening, Level::Must,
          "open as an instance whose properties can be read, written and listened to",
          "the view has nothing else of it"},
         Opens},
        {{"P2", Level::Must, "tell under 64004 whether it is armed, as one byte, 1 or 0",
          "the toggle shows it, and asks for the opposite"},
         TellsArmedState},
        {{"P3", Level::Must, "answer 64007 with a negative number while no element waits",
          "any other number is an element, which would be delivered"},
         HasNothingAtFirst},
        {{"P4", Level::Must, "keep under 64009 the track that was written last",
          "the menu returns to it whenever it is filled, and takes go where the menu stands"},
         KeepsTrack},
        {{"P5", Level::Must, "arm and disarm when 64005 asks it to",
          "the toggle does nothing without it"},
         Arms},
        {{"P6", Level::Must, "write no value beyond the room that the reader gives",
          "what lies behind it in the host's memory would be lost"},
         StaysWithinRoom},
        {{"P37", Level::Must, "write its values in their whole width",
          "what is left out is whatever stood there before"},
         WritesWholeValues},
        {{"P38", Level::Must,
          "answer kAudioUnitProperty_CocoaUI with the view's bundle and the name of its class",
          "hosts find the view by it, and nothing is delivered without the view"},
         TellsWhereItsViewIs},
        {{"P7", Level::Must, "keep its instances apart",
          "a take would go to the track of another instance"},
         KeepsInstancesApart},
    };
}

} // namespace Tarvane::Conform
