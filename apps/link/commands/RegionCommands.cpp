// Commands about the region that is selected in the server.
#include "apps/link/commands/Commands.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "utils/FileIO/FileName.h"

namespace Tarvane::Link
{

namespace
{

constexpr long kNoRate = -1;
constexpr char szRateWarning[] = "Warning - Session Sample Rate is: ";

// Of an operation that answers false without a word when it cannot make sense of the result.
Outcome OutcomeOf(const CTarvaneScript& link, bool fDone)
{
    const Outcome outcome = Link::OutcomeOf(link);
    return !fDone && outcome == Outcome::Done ? Outcome::NoAnswer : outcome;
}

} // namespace

Answer Export(CTarvaneScript& link, const Options& options)
{
    CFileName file;
    const bool fDone = link.ExportSelectedRegion(options.fAudioSuite, kNoRate, &file);
    Answer answer{OutcomeOf(link, fDone)};
    if (fDone)
    {
        answer.strText = file.GetFullPathString() + "\n";
        answer.fields["file"] = file.GetFullPathString();
    }
    return answer;
}

Answer Render(CTarvaneScript& link, const Options& options)
{
    long long nStart = 0;
    long long nEnd = 0;
    const bool fDone = link.RenderSelectedRegion(options.fAudioSuite,
                                                 options.rate.value_or(kNoRate), &nStart, &nEnd);
    const bool fRatesDiffer =
        fDone && options.rate &&
        link.m_strLastError.compare(0, sizeof szRateWarning - 1, szRateWarning) == 0;
    // A render at another rate is a render all the same.
    Answer answer{fRatesDiffer ? Outcome::Done : OutcomeOf(link, fDone)};
    if (fDone)
    {
        answer.strText = link.m_strSelectedRegion1 + "\n";
        answer.fields = {{"start", nStart},
                         {"end", nEnd},
                         {"summary", link.m_strSelectedRegion1},
                         {"ratesDiffer", fRatesDiffer}};
    }
    return answer;
}

} // namespace Tarvane::Link
