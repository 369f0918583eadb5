#include "apps/support/recording/EventWatch.h"

#include <TarvanePlatform/EventBus.h>
#include <TarvanePlatform/EventObserver.h>

#include <cstdio>
#include <exception>
#include <utility>

namespace Tarvane
{
namespace
{

std::vector<SeenParameter> ParametersOf(const TarvaneSeenEvent& event)
{
    std::vector<SeenParameter> parameters;
    for (UInt32 n = 0; n < event.parameterCount; ++n)
    {
        const TarvaneSeenParameter& parameter = event.parameters[n];
        parameters.push_back(
            {parameter.keyword,
             parameter.type,
             {static_cast<const char*>(parameter.data), static_cast<std::size_t>(parameter.size)}});
    }
    return parameters;
}

std::vector<CEventWatcher*>& Watchers()
{
    static std::vector<CEventWatcher*> watchers;
    return watchers;
}

void Show(const TarvaneSeenEvent* pEvent, void*)
try
{
    const std::vector<SeenParameter> parameters = ParametersOf(*pEvent);
    for (CEventWatcher* pWatcher : Watchers())
    {
        if (pEvent->ended)
            pWatcher->Add(
                SeenReply{pEvent->number, pEvent->status, pEvent->microseconds, parameters});
        else
            pWatcher->Add(SeenEvent{pEvent->number, pEvent->target, pEvent->eventClass,
                                    pEvent->eventID, parameters});
    }
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "an event is missing in the recording: %s\n", error.what());
}

} // namespace

bool WatchEvents(std::vector<CEventWatcher*> watchers)
{
    // While the list changes, nothing is shown.
    TarvaneSetEventObserver(nullptr, nullptr);
    Watchers() = std::move(watchers);
    if (!Watchers().empty())
        TarvaneSetEventObserver(&Show, nullptr);
    return true;
}

std::int64_t ReceiverOf(OSType nSignature)
{
    constexpr SInt32 kPatience = 120; // ticks of 1/60 second
    return TarvaneEventReceiverProcess(nSignature, kPatience);
}

} // namespace Tarvane
