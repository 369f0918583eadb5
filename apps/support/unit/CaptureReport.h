// What is known of one capture, from its first sample to its acknowledge. Small: a host keeps one
// for every capture of a day's work.
#pragma once

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "signal/Take.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace Tarvane
{

enum class CaptureState
{
    Running,
    Waiting,      ///< published; the acknowledge is still to come
    Acknowledged, ///< pAck says how it went
    Empty,        ///< disarmed before the first sample: nothing was published
    Failed,       ///< not a sample could be kept; strFailure says why
};

struct CCaptureReport
{
    size_t nNumber = 0; ///< captures of this instance that began before it
    CaptureState state = CaptureState::Running;
    std::filesystem::path source;
    std::string strFailure;
    int nElement = -1;                ///< its index under 64002; -1 until it is published
    std::filesystem::path dub;        ///< this and the next two as published; empty until then
    TNRegionTimes times;              ///< of the dub
    double dSampleRate = 0;           ///< of the dub, samples per second
    std::int32_t nTrack = -1;         ///< 64009 when the acknowledge came; -1 before
    std::optional<TNElementAck> pAck; ///< as received; the padding byte means nothing
    std::uint64_t nLostFrames = 0;    ///< that could not be kept; strFailure says why
    /// It was found in the journal of an earlier run; it has no number then.
    bool fRecovered = false;
    /// That, or it has been acknowledged before and was offered again.
    bool fLate = false;

    /// What became of it, as far as it is known; with the server's words where there are any, and
    /// the position on the server's timeline that it was meant for, where it was placed elsewhere.
    std::optional<TakeOutcome> outcome;
    std::string strWords;
    double dExpectedPosition = 0;

    bool IsOver() const { return state != CaptureState::Running && state != CaptureState::Waiting; }
    bool IsDelivered() const { return pAck && pAck->fNotDelivered == 0; }
    double Frames() const { return times.dEnd - times.dStart; }
};

} // namespace Tarvane
