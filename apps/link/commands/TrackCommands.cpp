// Commands that have the server work on its tracks.
#include "apps/link/commands/Commands.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"

namespace Tarvane::Link
{

Answer Align(CTarvaneScript& link, const Options& options)
{
    const TrackStretch& guide = options.guide;
    const TrackStretch& dub = options.dub;
    link.CreateGDX(options.fAudioSuite, guide.nTrack, guide.nStart, guide.nEnd, dub.nTrack,
                   dub.nStart, dub.nEnd, options.nOutputTrack);
    return {OutcomeOf(link)};
}

Answer Spread(CTarvaneScript& link, const Options& options)
{
    const TrackStretch& input = options.input;
    link.CreateSpreader(options.fAudioSuite, input.nTrack, input.nStart, input.nEnd, 0,
                        options.nOutputTrack);
    return {OutcomeOf(link)};
}

Answer Clear(CTarvaneScript& link, const Options& options)
{
    link.ClearTrack(options.fAudioSuite, options.nTrack);
    return {OutcomeOf(link)};
}

} // namespace Tarvane::Link
