#include "apps/replay/HostPart.h"

#include "apps/replay/Comparison.h"
#include "apps/replay/EventParameters.h"
#include "apps/support/event/EventDescriptor.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace Tarvane::Replay
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr double kTicksPerSecond = 60.0;

OSErr Send(const Exchange& exchange, SInt32 nTimeoutTicks, AppleEvent* pReply)
{
    CEventDescriptor target, event;
    OSErr nStatus =
        AECreateDesc(typeApplSignature, &exchange.nTarget, sizeof exchange.nTarget, &target);
    if (nStatus == noErr)
        nStatus = AECreateAppleEvent(exchange.nClass, exchange.nId, &target, kAutoGenerateReturnID,
                                     kAnyTransactionID, &event);
    if (nStatus == noErr)
        nStatus = PutParameters(&event, exchange.event);
    if (nStatus == noErr)
        nStatus = static_cast<OSErr>(AESend(&event, pReply, kAEWaitReply | kAECanInteract,
                                            kAENormalPriority, nTimeoutTicks, nullptr, nullptr));
    return nStatus;
}

// Empty when the event comes out as recorded.
std::string Parting(const Exchange& exchange, OSErr nStatus, const AppleEvent* pReply)
{
    if (nStatus != exchange.nStatus)
        return "  the status is " + std::to_string(nStatus) + ", and " +
               std::to_string(exchange.nStatus) + " was recorded\n";
    if (nStatus != noErr)
        return {};
    std::set<AEKeyword> keywords{'Rslt', 'Errr'};
    for (const auto& [nKeyword, parameter] : exchange.reply)
        keywords.insert(nKeyword);
    return Differences(exchange.reply, ReadParameters(pReply, keywords));
}

} // namespace

bool PlayHost(const std::vector<Exchange>& exchanges, const PlaySettings& settings,
              std::ostream& story)
{
    const auto nTicks =
        std::max(SInt32(1), static_cast<SInt32>(std::lround(settings.dTimeout * kTicksPerSecond)));
    const Clock::time_point began = Clock::now();
    std::size_t nSent = 0, nPartings = 0;
    for (const Exchange& exchange : exchanges)
    {
        if (exchange.nStatus == procNotFound)
        {
            story << PlaceOf(exchange) << ": it found no server then, and is not sent\n";
            continue;
        }
        if (!settings.fFast)
            std::this_thread::sleep_until(
                began + std::chrono::microseconds(exchange.nTime - exchanges.front().nTime));
        CEventDescriptor reply;
        const OSErr nStatus = Send(exchange, nTicks, &reply);
        ++nSent;
        const std::string strParting = Parting(exchange, nStatus, &reply);
        if (strParting.empty())
            continue;
        ++nPartings;
        story << PlaceOf(exchange) << ": it came out otherwise\n" << strParting << std::flush;
        if (nStatus == procNotFound)
        {
            story << "There is no server; the events behind it are not sent." << std::endl;
            return false;
        }
    }
    if (nPartings == 0)
        story << "All " << nSent << " events came out as recorded." << std::endl;
    else
        story << nPartings << " of " << nSent << " events came out otherwise." << std::endl;
    return nPartings == 0;
}

} // namespace Tarvane::Replay
