#include "apps/server/faults/Misbehaviour.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace Tarvane::Server
{

namespace
{

constexpr std::uint64_t kEventsAFault = 4;

std::string KnownFaults()
{
    std::string strNames;
    for (const FaultKind& kind : FaultKinds())
        strNames += std::string(strNames.empty() ? "" : ", ") + kind.szName;
    return strNames;
}

Fault FaultOf(std::string_view name)
{
    for (const FaultKind& kind : FaultKinds())
    {
        if (name == kind.szName)
            return kind.fault;
    }
    throw std::invalid_argument("there is no fault \"" + std::string(name) + "\"; the names are " +
                                KnownFaults());
}

bool HappensOnce(Fault fault)
{
    return std::any_of(FaultKinds().begin(), FaultKinds().end(),
                       [fault](const FaultKind& kind)
                       { return kind.fault == fault && kind.fOnce; });
}

std::int64_t ParseEvent(std::string_view text)
{
    std::int64_t nEvent = 0;
    const char* pEnd = text.data() + text.size();
    const auto [pStop, error] = std::from_chars(text.data(), pEnd, nEvent);
    if (error != std::errc() || pStop != pEnd || nEvent < 1)
        throw std::invalid_argument("write NAME@N or NAME@N-M with numbers of events, from 1");
    return nEvent;
}

void ParseEvents(std::string_view text, FaultPlan& plan)
{
    const std::size_t nDash = text.find('-', 1);
    plan.nFirst = ParseEvent(text.substr(0, nDash));
    if (nDash == std::string_view::npos)
        return;
    plan.nLast = ParseEvent(text.substr(nDash + 1));
    if (plan.nLast < plan.nFirst)
        throw std::invalid_argument("write NAME@N-M with M no smaller than N");
}

bool IsInForce(const FaultPlan& plan, std::int64_t nEvent)
{
    return plan.nFirst <= nEvent && nEvent <= plan.nLast;
}

} // namespace

const std::vector<FaultKind>& FaultKinds()
{
    static const std::vector<FaultKind> kinds{
        {"slow-start", Fault::SlowStart, false, "is not on the bus before the delay is over"},
        {"no-reply", Fault::NoReply, false, "runs the script and never answers"},
        {"late-reply", Fault::LateReply, false, "answers when the delay is over"},
        {"exit-before-effect", Fault::ExitBeforeEffect, false, "ends before it runs the script"},
        {"exit-after-effect", Fault::ExitAfterEffect, false,
         "ends after the change, before the reply"},
        {"hang", Fault::Hang, false, "never answers and stays on the bus"},
        {"no-result", Fault::NoResult, false, "answers without 'Rslt'"},
        {"wrong-type", Fault::WrongType, false, "answers with a 'Rslt' of the type 'TEXT'"},
        {"empty-result", Fault::EmptyResult, false, "answers with an empty 'Rslt'"},
        {"error-beside-result", Fault::ErrorBesideResult, false,
         "adds an 'Errr' to what the script printed"},
        {"refusal-with-result", Fault::RefusalWithResult, false,
         "answers with an empty 'Rslt' and the error for a change that it does not make"},
        {"lone-surrogates", Fault::LoneSurrogates, false,
         "ends 'Rslt' with halves of surrogate pairs"},
        {"huge-reply", Fault::HugeReply, false, "fills 'Rslt' up to 16 MB with line ends"},
        {"document-vanishes", Fault::DocumentVanishes, false, "has no document any more"},
        {"track-vanishes", Fault::TrackVanishes, true, "loses the last track of each document"},
        {"tracks-move", Fault::TracksMove, true, "reverses the tracks and renames them"},
        {"frozen-counter", Fault::FrozenCounter, false, "counts no updates"},
        {"event-flood", Fault::EventFlood, true, "sends events to itself without end"},
        {"region-replaced", Fault::RegionReplaced, false,
         "throws away a track's regions for each new one"},
        {"path-refused", Fault::PathRefused, false, "refuses paths that are not ASCII"},
        {"stereo-refused", Fault::StereoRefused, false, "refuses files of several channels"},
        {"wide-refused", Fault::WideRefused, false,
         "refuses whole-number samples of more than 16 bits"},
        {"float-refused", Fault::FloatRefused, false, "refuses floating-point samples"},
        {"rate-refused", Fault::RateRefused, false, "refuses files of another rate than 48000"},
        {"offset-at-one-rate", Fault::OffsetAtOneRate, false,
         "looks for duplicates as if every file had the rate 48000"},
        {"duplicate-any-track", Fault::DuplicateAnyTrack, false,
         "takes what is on another track for a duplicate"},
        {"duplicate-whole-file", Fault::DuplicateWholeFile, false,
         "takes another stretch of the same file for a duplicate"},
        {"duplicate-by-path", Fault::DuplicateByPath, false,
         "knows audio again by the path of its file alone"},
    };
    return kinds;
}

const char* NameOf(Fault fault)
{
    for (const FaultKind& kind : FaultKinds())
    {
        if (kind.fault == fault)
            return kind.szName;
    }
    return "";
}

FaultPlan ParseFaults(std::string_view text)
{
    FaultPlan plan;
    const std::size_t nAt = text.find('@');
    if (nAt != std::string_view::npos)
        ParseEvents(text.substr(nAt + 1), plan);
    std::string_view names = text.substr(0, nAt);
    while (true)
    {
        const std::size_t nComma = names.find(',');
        plan.faults.push_back(FaultOf(names.substr(0, nComma)));
        if (nComma == std::string_view::npos)
            return plan;
        names.remove_prefix(nComma + 1);
    }
}

CMisbehaviour::CMisbehaviour(std::vector<FaultPlan> plans, std::optional<std::uint64_t> seed)
    : m_plans(std::move(plans))
{
    if (seed)
        m_random.emplace(*seed);
}

bool CMisbehaviour::StartsSlowly() const
{
    return std::any_of(m_plans.begin(), m_plans.end(),
                       [](const FaultPlan& plan)
                       {
                           return std::find(plan.faults.begin(), plan.faults.end(),
                                            Fault::SlowStart) != plan.faults.end();
                       });
}

FaultSet CMisbehaviour::At(std::int64_t nEvent)
{
    if (m_random)
        return Drawn(nEvent);
    FaultSet faults;
    for (const FaultPlan& plan : m_plans)
    {
        for (const Fault fault : plan.faults)
        {
            if (IsInForce(plan, nEvent) && (!HappensOnce(fault) || nEvent == plan.nFirst))
                faults.insert(fault);
        }
    }
    faults.erase(Fault::SlowStart);
    return faults;
}

FaultSet CMisbehaviour::Drawn(std::int64_t nEvent)
{
    std::vector<Fault> candidates;
    for (const FaultPlan& plan : m_plans)
    {
        if (IsInForce(plan, nEvent))
            candidates.insert(candidates.end(), plan.faults.begin(), plan.faults.end());
    }
    std::erase(candidates, Fault::SlowStart);
    // Drawn for every event, so that what a plan holds at one changes nothing at the next. The
    // remainder is the same with every standard library, which distributions are not.
    const std::uint64_t nDraw = (*m_random)();
    if (candidates.empty() || nDraw % kEventsAFault != 0)
        return {};
    return {candidates[nDraw / kEventsAFault % candidates.size()]};
}

} // namespace Tarvane::Server
