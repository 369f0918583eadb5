#include "apps/support/recording/EventWatch.h"

#include "apps/support/recording/Recorder.h"

#include <TarvanePlatform/EventObserver.h>

#include <cstdio>
#include <exception>

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

void Record(const TarvaneSeenEvent* pEvent, void* pRecorder)
try
{
    CRecorder& recorder = *static_cast<CRecorder*>(pRecorder);
    if (pEvent->ended)
        recorder.Add(
            SeenReply{pEvent->number, pEvent->status, pEvent->microseconds, ParametersOf(*pEvent)});
    else
        recorder.Add(SeenEvent{pEvent->number, pEvent->target, pEvent->eventClass, pEvent->eventID,
                               ParametersOf(*pEvent)});
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "an event is missing in the recording: %s\n", error.what());
}

} // namespace

bool RecordEvents(CRecorder* pRecorder)
{
    TarvaneSetEventObserver(pRecorder != nullptr ? &Record : nullptr, pRecorder);
    return true;
}

} // namespace Tarvane
