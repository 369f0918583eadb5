#include "apps/conform/plugin/PlugInRules.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace Tarvane::Conform
{
namespace
{

constexpr UInt8 kAnyByte = 0xFF;
constexpr char szOneOfTwo[] = "of two captures that wait, only one is delivered";

void TakesAcknowledges(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    const SInt32 nElement = peer.CaptureElement();
    peer.Acknowledge(nElement);
    if (!peer.NothingWaits())
        throw CBroken("element " + std::to_string(nElement) +
                      " was acknowledged, and is still the one to deliver");
}

void ExpectTaken(const CPlugInPeer& peer)
{
    if (!peer.NothingWaits())
        throw CNotExaminable("the plug-in takes in no acknowledge");
}

void ReportsAcknowledges(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    const SInt32 nElement = peer.CaptureElement();
    // What the end of the capture has changed is reported by then.
    LetPass(bench.dMoment);
    const std::size_t nBefore = peer.Heard().Count(TNProperty_ArmCapture);
    peer.Acknowledge(nElement);
    ExpectTaken(peer);
    if (!WaitUntil(bench.dTimeout,
                   [&] { return peer.Heard().Count(TNProperty_ArmCapture) > nBefore; }))
        throw CBroken("an acknowledge was taken in, and no 64004 was raised");
}

// The element to deliver when this one has been acknowledged; negative for none.
SInt32 NextBehind(const PlugInBench& bench, const CPlugInPeer& peer, SInt32 nElement)
{
    peer.Acknowledge(nElement);
    const auto next = [&] { return peer.Read<SInt32>(TNProperty_NextElement).value_or(-1); };
    WaitUntil(bench.dTimeout, [&] { return next() != nElement; });
    return next();
}

void DeliversEachOnce(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Capture();
    if (!peer.PlayUntilAnnounced())
        throw CBroken("two captures were made, and one was announced");
    const SInt32 nOne = peer.NextElement();
    const TNCaptureElement one = peer.Record(nOne);
    const SInt32 nTwo = NextBehind(bench, peer, nOne);
    if (nTwo == nOne)
        throw CBroken("two captures wait, and the first is delivered twice");
    if (nTwo < 0)
        throw CBroken("two captures wait, and one is delivered");
    if (std::strncmp(one.szDubPath, peer.Record(nTwo).szDubPath, kTNPathSize) == 0)
        throw CBroken("two captures wait, and name one file");
    peer.Acknowledge(nTwo);
    if (!peer.NothingWaits())
        throw CBroken("two captures were delivered, and there is still one to deliver");
}

void IgnoresPadding(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Acknowledge(peer.CaptureElement());
    ExpectTaken(peer);
    peer.Acknowledge(peer.CaptureElement(), kAnyByte);
    if (!peer.NothingWaits())
        throw CBroken("an acknowledge whose last byte is not 0 was not taken in");
}

void DeliversInOrder(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Capture();
    LetPass(bench.dMoment);
    const fs::file_time_type between = fs::file_time_type::clock::now();
    LetPass(bench.dMoment);
    peer.Capture();
    const SInt32 nOne = peer.NextElement();
    std::error_code error;
    const fs::file_time_type written = fs::last_write_time(peer.Record(nOne).szDubPath, error);
    if (error)
        throw CNotExaminable("the first element has no file");
    const SInt32 nTwo = NextBehind(bench, peer, nOne);
    if (nTwo < 0 || nTwo == nOne)
        throw CNotExaminable(szOneOfTwo);
    if (written > between)
        throw CBroken("the later of two captures is delivered first");
}

void MatchesAcknowledges(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Capture();
    peer.Capture();
    const SInt32 nOne = peer.NextElement();
    const SInt32 nTwo = NextBehind(bench, peer, nOne);
    if (nTwo < 0 || nTwo == nOne)
        throw CNotExaminable(szOneOfTwo);
    peer.Acknowledge(nOne);
    LetPass(bench.dMoment);
    if (peer.Read<SInt32>(TNProperty_NextElement) != nTwo)
        throw CBroken("an element was acknowledged a second time, and another was taken for it");
}

} // namespace

std::vector<PlugInRule> QueueRules()
{
    return {
        {{"P19", Level::Must, "deliver an element no more when it has been acknowledged",
          "a take would be doubled, and those behind it never delivered"},
         TakesAcknowledges,
         true},
        {{"P20", Level::Must, "raise 64004 when it has taken in an acknowledge",
          "a take that was not delivered goes unnoticed: the view shows why when that comes"},
         ReportsAcknowledges,
         true},
        {{"P21", Level::Must,
          "deliver each of several elements that wait, once for each 64000 and acknowledge",
          "a capture may end while the one before is being delivered"},
         DeliversEachOnce,
         true},
        {{"P22", Level::Must, "take in an acknowledge whatever its last byte holds",
          "that byte is padding, and never written"},
         IgnoresPadding,
         true},
        {{"P23", Level::Should, "deliver elements in the order in which they were captured",
          "the server's display follows the take that came last"},
         DeliversInOrder,
         true},
        {{"P24", Level::Should, "leave other elements alone when one is acknowledged again",
          "an acknowledge speaks of its element and no other"},
         MatchesAcknowledges,
         true},
    };
}

} // namespace Tarvane::Conform
