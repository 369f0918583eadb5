// Commands about a stretch of a sound file.
#include "apps/link/commands/Commands.h"
#include "apps/link/shared/SendableText.h"
#include "apps/support/sound/SoundFile.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "utils/FileIO/FileName.h"

namespace Tarvane::Link
{

namespace
{

struct Stretch
{
    CFileName file;
    double dStart;
    double dEnd;
};

Stretch StretchOf(const FilePlace& place)
{
    const std::string strPath = QuotablePath(place.strFile);
    Stretch stretch{CFileName(strPath.c_str()), 0.0, 0.0};
    if (place.start)
    {
        stretch.dStart = *place.start;
        stretch.dEnd = *place.end;
    }
    else
    {
        stretch.dEnd = static_cast<double>(CSoundReader(strPath).Info().frames);
    }
    return stretch;
}

nlohmann::ordered_json FieldsOf(const Stretch& stretch, const FilePlace& place)
{
    return {{"file", stretch.file.GetFullPathString()},
            {"track", place.nTrack},
            {"position", place.dPosition},
            {"start", stretch.dStart},
            {"end", stretch.dEnd}};
}

} // namespace

Answer Send(CTarvaneScript& link, const Options& options)
{
    const FilePlace& place = options.place;
    Stretch stretch = StretchOf(place);
    link.SendFile(options.fAudioSuite, place.nTrack, &stretch.file, place.dPosition, stretch.dStart,
                  stretch.dEnd, place.nIndexMask);
    return {OutcomeOf(link), "", FieldsOf(stretch, place)};
}

Answer Duplicate(CTarvaneScript& link, const Options& options)
{
    const FilePlace& place = options.place;
    Stretch stretch = StretchOf(place);
    const bool fDuplicate =
        link.CheckDuplicateRegion(options.fAudioSuite, place.nTrack, &stretch.file, place.dPosition,
                                  stretch.dStart, stretch.dEnd);
    // The words about a duplicate are an answer, and no error.
    Answer answer{fDuplicate ? Outcome::Done : OutcomeOf(link), "", FieldsOf(stretch, place)};
    if (answer.outcome == Outcome::Done)
    {
        answer.strText = fDuplicate ? "duplicate\n" : "new\n";
        answer.fields["duplicate"] = fDuplicate;
    }
    return answer;
}

} // namespace Tarvane::Link
