#include "apps/server/Misbehaviour.h"

#include <charconv>
#include <stdexcept>

namespace Tarvane::Server
{

namespace
{

std::string KnownFaults()
{
    std::string strNames;
    for (const FaultKind& kind : FaultKinds())
        strNames += std::string(strNames.empty() ? "" : ", ") + kind.szName;
    return strNames;
}

std::int64_t ParseEvent(std::string_view text)
{
    std::int64_t nEvent = 0;
    const char* pEnd = text.data() + text.size();
    const auto [pStop, error] = std::from_chars(text.data(), pEnd, nEvent);
    if (error != std::errc() || pStop != pEnd || nEvent < 1)
        throw std::invalid_argument("write NAME@N with the number of an event, from 1");
    return nEvent;
}

} // namespace

const std::vector<FaultKind>& FaultKinds()
{
    static const std::vector<FaultKind> kinds{
        {"exit-before-effect", Fault::ExitBeforeEffect, "ends before it runs the script"},
        {"exit-after-effect", Fault::ExitAfterEffect, "ends after the change, before the reply"},
        {"hang", Fault::Hang, "never answers and stays on the bus"},
    };
    return kinds;
}

PlannedFault ParseFault(std::string_view text)
{
    const std::size_t nAt = text.find('@');
    if (nAt == std::string_view::npos)
        throw std::invalid_argument("write NAME@N; the names are " + KnownFaults());
    for (const FaultKind& kind : FaultKinds())
    {
        if (text.substr(0, nAt) == kind.szName)
            return {kind.fault, ParseEvent(text.substr(nAt + 1))};
    }
    throw std::invalid_argument("there is no fault \"" + std::string(text.substr(0, nAt)) +
                                "\"; the names are " + KnownFaults());
}

Fault FaultAt(const std::vector<PlannedFault>& faults, std::int64_t nEvent)
{
    for (const PlannedFault& planned : faults)
    {
        if (planned.nEvent == nEvent)
            return planned.fault;
    }
    return Fault::None;
}

} // namespace Tarvane::Server
