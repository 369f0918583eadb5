#include "apps/conform/server/CaptureScripts.h"

#include <cmath>

namespace Tarvane::Conform
{
namespace
{

std::string Stretch(int nTrack, const Capture& capture, const std::string& strMiddle)
{
    return "(GetTrackID(" + std::to_string(nTrack) + "), \"" + capture.strPath + "\", " +
           strMiddle + std::to_string(capture.nPosition) + "," + std::to_string(capture.nStart) +
           "," + std::to_string(capture.nEnd) + ")";
}

// Where the link adds what was captured at a position of the host's timeline.
long long ServerPosition(const ServerBench& bench, const Capture& capture)
{
    return static_cast<long long>(
        std::trunc(Offset(bench) * capture.nRate + static_cast<double>(capture.nPosition)));
}

} // namespace

std::string Told(const Place& place)
{
    return std::to_string(static_cast<long long>(place.dStart)) + " to " +
           std::to_string(static_cast<long long>(place.dEnd));
}

std::string AddingScript(int nTrack, const Capture& capture)
{
    return "AddAudioRegion" + Stretch(nTrack, capture, "true, false, ");
}

int TrackCount(const ServerBench& bench)
{
    return static_cast<int>(Number(bench.peer.Line("print(GetTrackCount())")));
}

double RegionCount(const ServerBench& bench, int nTrack)
{
    return Number(
        bench.peer.Line("print(GetRegionCount(GetTrackID(" + std::to_string(nTrack) + ")))"));
}

bool IsThereOn(int nTrack, const ServerBench& bench, const Capture& capture)
{
    const std::string strLine =
        bench.peer.Line("print(CheckForDuplicateRegion" + Stretch(nTrack, capture, "") + ")");
    const double dAnswer = Number(strLine);
    if (dAnswer != 0.0 && dAnswer != 1.0)
        throw CBroken("asked for a duplicate, the server answered " + strLine);
    return dAnswer == 1.0;
}

bool IsThere(const ServerBench& bench, const Capture& capture)
{
    return IsThereOn(bench.nTrack, bench, capture);
}

double Offset(const ServerBench& bench)
{
    return Number(bench.peer.Line("print(GetLinkSMPTEOffset())"));
}

void Add(const ServerBench& bench, const Capture& capture)
{
    Capture added = capture;
    added.nPosition = ServerPosition(bench, capture);
    const std::string strError = bench.peer.ErrorInDocument(AddingScript(bench.nTrack, added));
    if (!strError.empty())
        throw CBroken("a region cannot be added: " + QuotedText(strError));
}

Place ExpectedPlace(const ServerBench& bench, const Capture& capture)
{
    const auto dPosition = static_cast<double>(ServerPosition(bench, capture));
    return {dPosition + capture.nStart, dPosition + capture.nEnd};
}

Place PlaceOf(const ServerBench& bench, int nRegion)
{
    const std::string strRegion = "GetRegionID(GetTrackID(" + std::to_string(bench.nTrack) + "), " +
                                  std::to_string(nRegion) + ")";
    return {Number(bench.peer.Line("print(GetRegionStartPosition(" + strRegion + "))")),
            Number(bench.peer.Line("print(GetRegionEndPosition(" + strRegion + "))"))};
}

} // namespace Tarvane::Conform
