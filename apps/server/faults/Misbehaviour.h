// Faults on request, so that clients can be tested against a server that fails.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Server
{

enum class Fault
{
    SlowStart,         ///< takes its name on the bus late; of the start, not of an event
    NoReply,           ///< the script runs and nobody hears of it; other events are served
    LateReply,         ///< the reply waits for the delay, and all other events with it
    ExitBeforeEffect,  ///< the process ends before the script runs
    ExitAfterEffect,   ///< the process ends when the change is on disk, before the reply
    Hang,              ///< the event is never answered; the process keeps its name on the bus
    NoResult,          ///< a reply without 'Rslt'
    WrongType,         ///< 'Rslt' as 'TEXT'
    EmptyResult,       ///< 'Rslt' of no bytes
    ErrorBesideResult, ///< 'Errr' beside what the script printed
    RefusalWithResult, ///< an empty 'Rslt' with 'Errr' for a change that was not made
    LoneSurrogates,    ///< 'Rslt' with halves of characters in it
    HugeReply,         ///< 'Rslt' of 16,000,000 bytes, which reads as what the script printed
    DocumentVanishes,  ///< no document can be selected
    TrackVanishes,     ///< the last track of each document goes, with all that is on it
    TracksMove,        ///< the tracks stand in reverse order, under other names
    FrozenCounter,     ///< GetUpdateCount answers what it answered first
    EventFlood,        ///< events to itself without end
    /// The next ones deliver worse than they answer; FaultyFunctions.h has them.
    RegionReplaced,    ///< a new region throws away the track's others
    PathRefused,       ///< paths with other characters than ASCII
    StereoRefused,     ///< files of two channels and more
    WideRefused,       ///< whole numbers of more than 16 bits
    FloatRefused,      ///< samples that are no whole numbers
    RateRefused,       ///< files of another rate than 48000
    OffsetAtOneRate,   ///< the offset counts as samples of 48000 a second, whatever the file's rate
    DuplicateAnyTrack, ///< what is on another track is a duplicate
    DuplicateWholeFile, ///< another stretch of the same file is a duplicate
    DuplicateByPath,    ///< a file of another name is no duplicate
};

using FaultSet = std::set<Fault>;

struct FaultKind
{
    const char* szName;
    Fault fault;
    /// Happens at the first event of its plan only; the others last.
    bool fOnce;
    const char* szMeaning; ///< completes "the server ..."
};

/// Every fault that can be asked for.
const std::vector<FaultKind>& FaultKinds();
const char* NameOf(Fault fault);

/// Faults and the events at which they are in force, counted from 1 from the start of the process.
struct FaultPlan
{
    std::vector<Fault> faults;
    std::int64_t nFirst = 1;
    std::int64_t nLast = std::numeric_limits<std::int64_t>::max();
};

/// Reads "NAME[,NAME...][@FIRST[-LAST]]". Throws std::invalid_argument, whose text says what can be
/// asked for.
FaultPlan ParseFaults(std::string_view text);

/// Decides what goes wrong, event by event.
class CMisbehaviour
{
public:
    /// Without a seed every fault of a plan comes at each of its events. With one, about every
    /// fourth of them meets one fault, and the seed alone decides which.
    explicit CMisbehaviour(std::vector<FaultPlan> plans = {},
                           std::optional<std::uint64_t> seed = std::nullopt);

    bool StartsSlowly() const;

    /// To be asked once for every event, in their order.
    FaultSet At(std::int64_t nEvent);

private:
    FaultSet Drawn(std::int64_t nEvent);

    std::vector<FaultPlan> m_plans;
    std::optional<std::mt19937_64> m_random;
};

} // namespace Tarvane::Server
