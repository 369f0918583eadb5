// Commands that ask and change nothing.
#include "apps/link/commands/Commands.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <array>
#include <charconv>

namespace Tarvane::Link
{

namespace
{

// The shortest decimal number that reads as the same value.
std::string NumberText(double dNumber)
{
    std::array<char, 64> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), dNumber);
    return {buffer.data(), end.ptr};
}

} // namespace

std::string TrackLines(const std::vector<std::string>& tracks)
{
    std::string strText;
    for (std::size_t nTrack = 0; nTrack < tracks.size(); nTrack++)
        strText += std::to_string(nTrack) + "\t" + tracks[nTrack] + "\n";
    return strText;
}

Answer Tracks(CTarvaneScript& link, const Options& options)
{
    std::vector<std::string> tracks;
    link.ListTracksWithTimeout(options.fAudioSuite, &tracks, options.TimeoutTicks());
    return {OutcomeOf(link), TrackLines(tracks), {{"tracks", tracks}}};
}

Answer Offset(CTarvaneScript& link, const Options& options)
{
    const double dSeconds = link.GetLinkSMPTEOffset(options.fAudioSuite);
    const Outcome outcome = OutcomeOf(link);
    if (outcome != Outcome::Done)
        return {outcome};
    return {outcome, NumberText(dSeconds) + "\n", {{"seconds", dSeconds}}};
}

Answer Updates(CTarvaneScript& link, const Options&)
{
    const long nUpdates = link.GetUpdateCount();
    const Outcome outcome = OutcomeOf(link);
    if (outcome != Outcome::Done)
        return {outcome};
    return {outcome, std::to_string(nUpdates) + "\n", {{"updates", nUpdates}}};
}

} // namespace Tarvane::Link
