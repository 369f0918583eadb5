#include "apps/demo/Verdict.h"

#include <algorithm>

namespace Tarvane
{
namespace
{

using nlohmann::json;
using Server::Document;
using Server::DocumentKind;
using Server::Region;

std::string TrackName(const Document& document, const Region& region)
{
    const Server::Track* pTrack = document.FindTrack(region.nTrackId);
    return pTrack != nullptr ? pTrack->strName : "no track";
}

std::string Describe(const Region& region, const std::string& strTrack)
{
    return "samples " + std::to_string(region.nStart) + " to " + std::to_string(region.nEnd) +
           " of " + region.strPath + " at " + std::to_string(region.nPosition) + " on " + strTrack;
}

bool AreSame(const Region& one, const Region& other)
{
    return one.strPath == other.strPath && one.nStart == other.nStart && one.nEnd == other.nEnd &&
           one.nPosition == other.nPosition && one.nSampleRate == other.nSampleRate &&
           one.channels.empty() && !one.fMuted;
}

void CheckRegions(const std::vector<DemoCapture>& captures, const Document& document,
                  double dLinkOffset, std::vector<std::string>& faults)
{
    std::vector<Region> unexplained = document.regions;
    for (const DemoCapture& capture : captures)
    {
        if (capture.fDuplicate)
        {
            continue;
        }
        const Region expected = ExpectedRegion(capture, dLinkOffset);
        const auto found = std::find_if(unexplained.begin(), unexplained.end(),
                                        [&](const Region& region) {
                                            return AreSame(region, expected) &&
                                                   TrackName(document, region) == capture.strTrack;
                                        });
        if (found == unexplained.end())
        {
            faults.push_back("the session lacks " + Describe(expected, capture.strTrack));
            continue;
        }
        unexplained.erase(found);
    }
    for (const Region& region : unexplained)
    {
        faults.push_back("the session has, unasked, " +
                         Describe(region, TrackName(document, region)));
    }
}

void CheckAcknowledge(const DemoCapture& capture, size_t nElement, std::vector<std::string>& faults)
{
    const std::string strOutcome = capture.hostAnswer.value("outcome", "");
    const std::string strExpected = capture.fDuplicate ? "duplicate" : "delivered";
    if (strOutcome != strExpected)
    {
        const std::string strRefusal = capture.hostAnswer.value("refusal", "");
        faults.push_back(capture.strSource + " should be " + strExpected + " and is " + strOutcome +
                         (strRefusal.empty() ? "" : "; the server says: " + strRefusal));
    }
    const json expected = {{"nElement", nElement},
                           {"fHandled", 1},
                           {"fNotDelivered", capture.fDuplicate ? 1 : 0},
                           {"fFinal", 1}};
    const json ack = capture.hostAnswer.value("ack", json());
    if (ack != expected)
    {
        faults.push_back(capture.strSource + " should be acknowledged with " + expected.dump() +
                         " and is with " + ack.dump());
    }
}

} // namespace

Region ExpectedRegion(const DemoCapture& capture, double dLinkOffset)
{
    const double dSampleRate = capture.hostAnswer.value("sampleRate", 0.0);
    Region region;
    region.strPath = capture.hostAnswer.value("dub", "");
    region.nStart = 0;
    region.nEnd = static_cast<std::int64_t>(capture.hostAnswer.value("frames", 0.0));
    region.nPosition = static_cast<std::int64_t>(dLinkOffset * dSampleRate + capture.dPosition);
    region.nSampleRate = static_cast<std::int32_t>(dSampleRate);
    return region;
}

std::vector<std::string> FindFaults(const std::vector<DemoCapture>& captures,
                                    const Server::CSession& session, double dLinkOffset)
{
    std::vector<std::string> faults;
    if (session.LinkOffset() != dLinkOffset)
    {
        faults.push_back("the session's offset is " + std::to_string(session.LinkOffset()) + " s");
    }
    CheckRegions(captures, session.GetDocument(DocumentKind::Script), dLinkOffset, faults);
    CheckRegions({}, session.GetDocument(DocumentKind::AudioSuite), dLinkOffset, faults);
    for (size_t n = 0; n < captures.size(); ++n)
    {
        CheckAcknowledge(captures[n], n, faults);
    }
    return faults;
}

} // namespace Tarvane
