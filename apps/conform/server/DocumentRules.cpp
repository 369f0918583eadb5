#include "TarvaneLinkShared/ScriptTexts.h"
#include "apps/conform/server/ServerRules.h"

#include <cmath>
#include <sstream>

namespace Tarvane::Conform
{
namespace
{

constexpr int kLooks = 3;

std::vector<std::string> Tracks(const ServerBench& bench)
{
    const std::vector<std::string> items = Items(bench.peer.PrintedWithoutError(szListTracks));
    if (items.empty() || items.size() < 2)
        throw CNotExaminable("the server has no document with tracks open");
    return {items.begin() + 1, items.end()};
}

// One script asks for all of them, so that what is shown of the exchange names those that are
// missing.
void HasFunctions(const ServerBench& bench, const std::vector<std::string>& names)
{
    std::string strScript;
    for (const std::string& strName : names)
        strScript += "print('" + strName + " ' .. type(" + strName + "))\n";
    std::istringstream lines(bench.peer.Printed(strScript));
    std::string strMissing;
    for (const std::string& strName : names)
    {
        std::string strLine;
        std::getline(lines, strLine);
        if (strLine != strName + " function")
            strMissing += " " + strName;
    }
    if (!strMissing.empty())
        throw CBroken("there is no" + strMissing);
}

void HasCaptureFunctions(const ServerBench& bench)
{
    HasFunctions(bench, {"SelectScriptDocument", "GetTrackCount", "GetTrackID", "GetTrackName",
                         "CheckForDuplicateRegion", "GetLinkSMPTEOffset", "AddAudioRegion",
                         "MoveDisplayToPosition"});
}

void HasOtherFunctions(const ServerBench& bench)
{
    HasFunctions(bench, {"SelectAudioSuiteDocument",
                         "GetUpdateCount",
                         "GetSelectedRegionID",
                         "IsNullRegionID",
                         "ExportRegion",
                         "GetSampleRate",
                         "RegionRender",
                         "GetRegionStartPosition",
                         "GetRegionEndPosition",
                         "FindLastProcessCreated",
                         "IsNullProcessID",
                         "SelectProcess",
                         "CreateProcess",
                         "GetMarkerTrackID",
                         "CountMarkerAreas",
                         "GetMarkerAreaID",
                         "DeleteMarkerArea",
                         "GetRegionCount",
                         "GetRegionID",
                         "DeleteRegion"});
}

void ListsTracks(const ServerBench& bench)
{
    const std::vector<std::string> tracks = Tracks(bench);
    for (std::size_t nTrack = 0; nTrack < tracks.size(); ++nTrack)
    {
        const std::string strName =
            bench.peer.Line("print(GetTrackName(GetTrackID(" + std::to_string(nTrack) + ")))");
        if (strName != tracks[nTrack])
            throw CBroken("track " + std::to_string(nTrack) + " is " + QuotedText(tracks[nTrack]) +
                          " in the list, and " + QuotedText(strName) + " when asked for");
    }
}

void StaysAsItIs(const ServerBench& bench)
try
{
    const std::vector<std::string> tracks = Tracks(bench);
    for (int nLook = 0; nLook < kLooks; ++nLook)
        if (Tracks(bench) != tracks)
            throw CBroken("the list of tracks changed between two commands");
}
catch (const CNotExaminable&)
{
    throw CBroken("the document went between two commands");
}

void RefusesUnknownTracks(const ServerBench& bench)
{
    const std::string strTracks = bench.peer.Line("print(GetTrackCount())");
    if (bench.peer.ErrorInDocument("GetTrackName(GetTrackID(" + strTracks + "))").empty())
        throw CBroken("track " + strTracks + " of " + strTracks + " is not refused");
}

void TellsItsOffset(const ServerBench& bench)
{
    if (!std::isfinite(Number(bench.peer.Line("print(GetLinkSMPTEOffset())"))))
        throw CBroken("the offset between the timelines is no finite number");
}

void TakesExponents(const ServerBench& bench)
{
    const std::string strError = bench.peer.ErrorInDocument("MoveDisplayToPosition(1.23457e+06)");
    if (!strError.empty())
        throw CBroken("MoveDisplayToPosition(1.23457e+06) failed: " + QuotedText(strError));
}

} // namespace

std::vector<ServerRule> DocumentRules()
{
    return {
        {{"S11", Level::Must, "offer every function that a delivery calls",
          "a call of a function that is not there ends the script"},
         HasCaptureFunctions},
        {{"S12", Level::Should, "offer every function that the other commands call",
          "export, render, alignment, spreading and clearing do not work without them"},
         HasOtherFunctions},
        {{"S13", Level::Must,
          "count tracks from 0, and give each a name of one line, neither empty nor above 999 "
          "bytes",
          "a count that does not match its lines stops the host"},
         ListsTracks},
        {{"S14", Level::Must, "keep document and tracks as they are while nobody edits them",
          "a take goes to the track that stands at the place the user chose"},
         StaysAsItIs},
        {{"S15", Level::Must, "fail a script that names a track which is not there",
          "the take would be lost without a word"},
         RefusesUnknownTracks},
        {{"S16", Level::Must, "tell the offset between the timelines as a number of seconds",
          "every position is computed from it"},
         TellsItsOffset},
        {{"S17", Level::Must, "take the position of the display in exponent form too",
          "positions of seven digits and more are written so, behind the region that was added"},
         TakesExponents},
    };
}

} // namespace Tarvane::Conform
