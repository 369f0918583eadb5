#include "apps/conform/plugin/PlugInRules.h"

#include <chrono>
#include <cmath>

namespace Tarvane::Conform
{
namespace
{

constexpr double kSeveralNotifications = 50;
constexpr double kNotificationsASecond = 1000;
constexpr AudioUnitPropertyID kNobodysProperty = 0x7FFFFF00;

void TellsLength(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Capture();
    if (peer.Heard().Count(kTNProperty_CurrentCaptureLength) == 0)
        throw CNotExaminable("no 64010 is raised");
    const std::optional<Float64> length = peer.Read<Float64>(kTNProperty_CurrentCaptureLength);
    if (!length)
        throw CBroken("nothing is written");
    if (!std::isfinite(*length) || *length < 0.0)
        throw CBroken("it is " + std::to_string(*length));
}

void KeepsPositionToItself(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Capture();
    if (peer.Heard().Count(TNProperty_CurrentSampleInTimeLine) != 0)
        throw CBroken("64006 was raised during a capture");
}

void NotifiesFromOneThread(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Capture();
    const std::size_t nThreads = peer.Heard().Threads(kTNProperty_CurrentCaptureLength);
    if (nThreads > 1)
        throw CBroken(std::to_string(nThreads) + " threads raised 64010 during one capture");
}

void NotifiesSparingly(const PlugInBench& bench)
{
    using Clock = std::chrono::steady_clock;
    const CPlugInPeer peer(bench);
    const Clock::time_point start = Clock::now();
    peer.Capture();
    LetPass(bench.dMoment);
    const std::size_t nHeard = peer.Heard().Count(kTNProperty_CurrentCaptureLength);
    const double dSeconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (static_cast<double>(nHeard) > kSeveralNotifications + kNotificationsASecond * dSeconds)
        throw CBroken("64010 was raised " + std::to_string(nHeard) + " times in " +
                      std::to_string(dSeconds) + " seconds");
}

void IsQuiet(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    LetPass(bench.dMoment);
    const std::size_t nBefore = peer.Heard().Count();
    LetPass(2 * bench.dMoment);
    const std::size_t nHeard = peer.Heard().Count() - nBefore;
    if (nHeard != 0)
        throw CBroken(std::to_string(nHeard) + " notifications came while nothing happened");
}

void DescribesProperties(const PlugInBench& bench)
{
    struct Property
    {
        AudioUnitPropertyID nId;
        UInt32 nSize;
        bool fWritten; // by the view
    };
    const CPlugInPeer peer(bench);
    for (const auto& [nId, nSize, fWritten] :
         {Property{TNProperty_ArmCapture, 1, false}, Property{TNProperty_SetArmCapture, 2, true},
          Property{TNProperty_NextElement, 4, false}, Property{TNProperty_ElementDone, 8, true},
          Property{TNProperty_SelectedTrack, 4, true},
          Property{kTNProperty_CurrentCaptureLength, 8, false}})
    {
        UInt32 nTold = 0;
        Boolean fWritable = false;
        const OSStatus nStatus = AudioUnitGetPropertyInfo(peer.Unit(), nId, kAudioUnitScope_Global,
                                                          0, &nTold, &fWritable);
        if (nStatus != noErr)
            throw CBroken("asked about " + std::to_string(nId) + ", it answers with status " +
                          std::to_string(nStatus));
        if (nTold != nSize)
            throw CBroken(std::to_string(nId) + " is said to have " + std::to_string(nTold) +
                          " bytes, and has " + std::to_string(nSize));
        if (fWritten && !fWritable)
            throw CBroken(std::to_string(nId) + " is said not to be writable");
    }
}

void RefusesShortRoom(const PlugInBench& bench)
{
    struct Value
    {
        AudioUnitPropertyID nId;
        UInt32 nSize;
    };
    const CPlugInPeer peer(bench);
    for (const auto& [nId, nSize] :
         {Value{TNProperty_ArmCapture, 1}, Value{TNProperty_NextElement, 4},
          Value{TNProperty_SelectedTrack, 4}})
    {
        UInt64 nRoom = 0;
        UInt32 nBytes = nSize - 1;
        if (peer.Get(nId, 0, &nRoom, nBytes) == noErr)
            throw CBroken(std::to_string(nId) + " is read into room for " +
                          std::to_string(nSize - 1) + " bytes without an error");
    }
}

void RefusesUnknown(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    UInt32 nValue = 0;
    UInt32 nSize = sizeof nValue;
    const auto expect = [](OSStatus nStatus, const char* szWhat)
    {
        if (nStatus != kAudioUnitErr_InvalidProperty)
            throw CBroken(std::string(szWhat) +
                          " a property that nobody has, it answers with "
                          "status " +
                          std::to_string(nStatus));
    };
    expect(peer.Get(kNobodysProperty, 0, &nValue, nSize), "asked for");
    expect(peer.Set(kNobodysProperty, &nValue, sizeof nValue), "given");
}

} // namespace

std::vector<PlugInRule> MannerRules()
{
    return {
        {{"P25", Level::Should, "tell under 64010 the seconds of a capture that it raises it for",
          "the view shows them"},
         TellsLength,
         true},
        {{"P26", Level::Should, "never raise 64006",
          "the view shows no progress any more from the first one on"},
         KeepsPositionToItself,
         true},
        {{"P27", Level::Should, "raise the 64010 of one capture from one thread",
          "the view counts them without a lock, and loses some that come together"},
         NotifiesFromOneThread,
         true},
        {{"P28", Level::Should, "raise 64010 no more than a thousand times a second",
          "the view shows one in 21 at most, and the rest costs its thread time"},
         NotifiesSparingly,
         true},
        {{"P29", Level::Should, "raise nothing while nothing happens",
          "each 64004 makes the view ask the server for its tracks"},
         IsQuiet},
        {{"P30", Level::Should,
          "tell the size of its properties, and that the written are writable",
          "hosts and their tools ask before they read or write"},
         DescribesProperties},
        {{"P31", Level::Should, "refuse to read a value into less room than it takes",
          "half a value looks like a whole one"},
         RefusesShortRoom},
        {{"P32", Level::Should,
          "refuse properties that it has not with kAudioUnitErr_InvalidProperty",
          "hosts find out in this way what a plug-in has"},
         RefusesUnknown},
    };
}

} // namespace Tarvane::Conform
