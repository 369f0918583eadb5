#include "apps/conform/plugin/PlugInRules.h"

namespace Tarvane::Conform
{
namespace
{

// A state is what a view reads of it when it has been notified.
bool IsReported(const PlugInBench& bench, const CPlugInPeer& peer, bool fArmed, std::size_t& nHeard)
{
    return WaitUntil(bench.dTimeout,
                     [&]
                     {
                         const std::size_t nNow = peer.Heard().Count(TNProperty_ArmCapture);
                         if (nNow == nHeard)
                             return false;
                         nHeard = nNow;
                         return peer.IsArmed(fArmed);
                     });
}

void ReportsArming(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    std::size_t nHeard = 0;
    for (const bool fArm : {true, false})
    {
        peer.AskToArm(fArm);
        if (IsReported(bench, peer, fArm, nHeard))
            continue;
        if (!peer.IsArmed(fArm))
            throw CNotExaminable("the plug-in does not arm and disarm");
        throw CBroken(std::string("it was ") + (fArm ? "armed" : "disarmed") +
                      ", and no 64004 was raised with the new state in place");
    }
}

void ReportsDisarming(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Capture();
    LetPass(bench.dMoment);
    // Its arming was one notification, its disarming is to be another.
    if (peer.IsArmed(false) && peer.Heard().Count(TNProperty_ArmCapture) < 2)
        throw CBroken("it was disarmed by the end of a capture, and no 64004 was raised");
}

// Arms the instance, and waits until the listener knows.
void ExpectToBeTold(const PlugInBench& bench, const CPlugInPeer& peer, const CListener& listener)
{
    peer.AskToArm(true);
    if (!WaitUntil(bench.dTimeout, [&] { return listener.Count(TNProperty_ArmCapture) > 0; }))
        throw CNotExaminable("the plug-in reports no change of its armed state");
}

// So that notifications are under way, if that can be had.
void TryToPlay(const CPlugInPeer& peer)
try
{
    peer.Play();
}
catch (const CNotExaminable&)
{
}

void ForgetsListeners(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    CListener& gone = CListener::Add(peer.Unit());
    ExpectToBeTold(bench, peer, gone);
    TryToPlay(peer);
    gone.Remove();
    const std::size_t nBefore = gone.Count();
    LetPass(bench.dMoment);
    peer.AskToArm(true);
    peer.AskToArm(false);
    LetPass(bench.dMoment);
    if (gone.Count() != nBefore)
        throw CBroken("a listener was called after it had been removed");
}

void KeepsOtherListeners(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    CListener& other = CListener::Add(peer.Unit());
    ExpectToBeTold(bench, peer, peer.Heard());
    other.Remove();
    const std::size_t nBefore = peer.Heard().Count(TNProperty_ArmCapture);
    peer.AskToArm(false);
    if (!WaitUntil(bench.dTimeout,
                   [&] { return peer.Heard().Count(TNProperty_ArmCapture) > nBefore; }))
        throw CBroken("a listener was removed, and another with the same procedure and user data "
                      "of its own is no longer called");
}

void IsSilentInTheEnd(const PlugInBench& bench)
{
    CPlugInPeer peer(bench);
    peer.AskToArm(true);
    TryToPlay(peer);
    peer.Dispose();
    const std::size_t nBefore = peer.Heard().Count();
    LetPass(2 * bench.dMoment);
    if (peer.Heard().Count() != nBefore)
        throw CBroken("a listener was called after the instance had been disposed of");
}

} // namespace

std::vector<PlugInRule> ListenerRules()
{
    return {
        {{"P8", Level::Must, "raise 64004 when it has been armed or disarmed, whatever the cause",
          "the toggle shows a state that is not the plug-in's"},
         ReportsArming},
        {{"P36", Level::Must, "raise 64004 when it disarms by itself",
          "the toggle goes on to show that it captures, and the next press disarms what is not "
          "armed"},
         ReportsDisarming,
         true},
        {{"P9", Level::Must, "call no listener any more once its removal has returned",
          "the view has gone by then, and the host with the next call"},
         ForgetsListeners},
        {{"P10", Level::Must,
          "go on calling listeners when one with other user data has been removed",
          "a host may open the next view before it closes the last; takes would wait for ever"},
         KeepsOtherListeners},
        {{"P11", Level::Must, "call no listener any more once its disposal has returned",
          "nothing that it could speak of is there any more, and the host may have gone on"},
         IsSilentInTheEnd},
    };
}

} // namespace Tarvane::Conform
