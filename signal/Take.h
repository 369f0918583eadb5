// What is known of one take, from its first block until its fate is settled.
#pragma once

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace Tarvane
{

/// What became of a take that a view tried to deliver, as the process that holds the view saw it in
/// the events between the view and the server. The numbers travel between processes.
enum class TakeOutcome : std::uint8_t
{
    Delivered = 0,
    Duplicate = 1, ///< the server has this audio already
    Refused = 2,   ///< the server said why
    /// No server was there, it did not answer, or there was no track to send to: the server has not
    /// refused it, and may get it later.
    Unreachable = 3,
    PlacedWithoutOffset = 4, ///< the offset of the timelines could not be had, and counted as 0
};

/// "delivered", "duplicate", "refused", "unreachable", "placed without the offset".
const char* TakeOutcomeWord(TakeOutcome outcome);
std::optional<TakeOutcome> TakeOutcomeOf(std::uint8_t nNumber);

/// Whether a take is offered again by itself once a server appears. A placed one is not, nor one of
/// which the server has said something.
constexpr bool IsOfferedAgain(TakeOutcome outcome)
{
    return outcome == TakeOutcome::Unreachable;
}

enum class TakeState
{
    Running,
    Waiting,      ///< whole, in the queue; a view has still to acknowledge it
    Acknowledged, ///< outcome says how
    Failed,       ///< not a sample could be kept; strFailure says why
};

struct CTake
{
    std::uint32_t nNumber = 0; ///< of this instance, from 0; takes of the journal have one too
    TakeState state = TakeState::Running;
    bool fRecovered = false;       ///< found in the journal
    std::int32_t nElement = -1;    ///< its index while it waits; a take offered again has a new one
    std::filesystem::path file;    ///< absolute; hidden and unfinished while the take runs
    std::filesystem::path guide;   ///< may be empty
    double dPosition = 0;          ///< of the first sample on the host's timeline, samples
    double dRate = 0;              ///< samples per second
    std::uint64_t nFrames = 0;     ///< in the file
    std::uint64_t nLostFrames = 0; ///< that followed and could not be kept
    std::string strFailure;        ///< why they could not; empty when all is well
    std::int32_t nTrack = -1;      ///< 64009 when the acknowledge came; -1 before
    std::optional<TNElementAck> ack; ///< as received; the padding byte means nothing

    /// Of the last attempt; none while there was none.
    std::optional<TakeOutcome> outcome;
    std::string strWords;         ///< the server's own, where there are any
    double dExpectedPosition = 0; ///< on the server's timeline, where it is known
};

} // namespace Tarvane
