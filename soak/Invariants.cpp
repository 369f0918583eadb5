#include "soak/Invariants.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

namespace Tarvane::Soak
{

namespace
{

// What the platform keeps for reuse grows to some 120 of them in the first captures.
constexpr long kObjectsThatAreKept = 300;
constexpr const char* kSaveRefused = "nothing was changed, for the session could not be saved";

using Place = std::tuple<int, std::int64_t>; // track, position on the server's timeline

const char* WordFor(Outcome outcome)
{
    switch (outcome)
    {
    case Outcome::Delivered:
        return "delivered";
    case Outcome::Duplicate:
        return "a duplicate";
    case Outcome::Undelivered:
        return "not delivered";
    case Outcome::NotPublished:
        return "failed";
    case Outcome::Unanswered:
        break;
    }
    return "unanswered";
}

std::string Describe(const Attempt& attempt)
{
    return "host " + std::to_string(attempt.nLife) + ", element " +
           std::to_string(attempt.nElement) + ", track " + std::to_string(attempt.nTrack) +
           ", sample " + std::to_string(attempt.nPosition) + ", " + WordFor(attempt.outcome) +
           ", file " + (attempt.strPath.empty() ? "unknown" : attempt.strPath);
}

std::string Describe(const SeenRegion& region)
{
    return "region on track " + std::to_string(region.nTrack) + " at " +
           std::to_string(region.nPosition) + ", " + std::to_string(region.nStart) + " to " +
           std::to_string(region.nEnd) + " of " + region.strPath;
}

Place PlaceOf(const Attempt& attempt)
{
    return {attempt.nTrack, attempt.nPosition + attempt.nOffset};
}

// One round's evidence under the check.
class CRoundCheck
{
public:
    explicit CRoundCheck(const RoundEvidence& evidence);

    std::vector<Finding> Run();

private:
    void Break(const char* szInvariant, const std::string& strWhat)
    {
        m_findings.push_back({szInvariant, strWhat});
    }
    void CheckAcknowledges(const Life& life);
    void CheckAcknowledge(const Attempt& attempt, const Acknowledge& acknowledge);
    void CheckAttempt(const Attempt& attempt);
    void CheckDelivered(const Attempt& attempt, size_t nRegions);
    bool IsRefused(const Attempt& attempt) const;
    void CheckUndelivered(const Attempt& attempt);
    void CheckRefused(const Attempt& attempt, size_t nRegions);
    void CheckDuplicate(const Attempt& attempt, size_t nRegions);
    void CheckRegion(const Attempt& attempt, const SeenRegion& region);
    void CheckDoubles();
    void CheckStrangers();
    bool TakeUnanswered(const SeenRegion& region);

    const RoundEvidence& m_evidence;
    std::multimap<std::string, const SeenRegion*> m_regions; // by path
    std::map<std::string, const ServerAnswer*> m_answers;    // by path
    std::map<int, std::vector<const Attempt*>> m_attempts;   // by life
    std::map<std::string, const Attempt*> m_last;            // by path, of each capture
    std::vector<const Attempt*> m_unanswered;                // that no region has been found for
    std::vector<Finding> m_findings;
};

CRoundCheck::CRoundCheck(const RoundEvidence& evidence) : m_evidence(evidence)
{
    for (const SeenRegion& region : evidence.regions)
        m_regions.emplace(region.strPath, &region);
    for (const ServerAnswer& answer : evidence.answers)
        m_answers[answer.strPath] = &answer;
    for (const Attempt& attempt : evidence.attempts)
    {
        m_attempts[attempt.nLife].push_back(&attempt);
        if (!attempt.strPath.empty())
            m_last[attempt.strPath] = &attempt;
        if (attempt.outcome == Outcome::Unanswered)
            m_unanswered.push_back(&attempt);
    }
}

std::vector<Finding> CRoundCheck::Run()
{
    for (const Life& life : m_evidence.lives)
        CheckAcknowledges(life);
    for (const Attempt& attempt : m_evidence.attempts)
        CheckAttempt(attempt);
    CheckDoubles();
    CheckStrangers();
    return std::move(m_findings);
}

void CRoundCheck::CheckAcknowledges(const Life& life)
{
    std::map<int, std::vector<const Acknowledge*>> acknowledges;
    for (const Acknowledge& acknowledge : life.acknowledges)
        acknowledges[acknowledge.nElement].push_back(&acknowledge);

    int nElements = life.nElementsBefore;
    std::set<int> known;
    for (const Attempt* pAttempt : m_attempts[life.nLife])
    {
        if (pAttempt->nElement < 0)
            continue;
        known.insert(pAttempt->nElement);
        nElements = std::max(nElements, pAttempt->nElement + 1);
        for (const Acknowledge* pAcknowledge : acknowledges[pAttempt->nElement])
            CheckAcknowledge(*pAttempt, *pAcknowledge);
    }
    const std::string strHost = "host " + std::to_string(life.nLife) + ", element ";
    for (int nElement = 0; nElement < nElements; ++nElement)
    {
        // Of what a killed host was sending again it could not tell any more.
        const size_t nCount = acknowledges[nElement].size();
        if (nCount > 1 || (nCount == 0 && !(life.fKilled && known.count(nElement) == 0)))
            Break("acknowledged-once", strHost + std::to_string(nElement) + " was acknowledged " +
                                           std::to_string(nCount) + " times");
    }
    for (const auto& [nElement, list] : acknowledges)
    {
        if (nElement >= 0 && (nElement < nElements || list.empty()))
            continue;
        // Those that were under way when the host was killed.
        if (!life.fKilled || nElement < 0)
            Break("acknowledged-once",
                  strHost + std::to_string(nElement) + " was acknowledged and never captured");
        else if (list.size() > 1)
            Break("acknowledged-once", strHost + std::to_string(nElement) +
                                           " was acknowledged again before the host was killed");
    }
}

void CRoundCheck::CheckAcknowledge(const Attempt& attempt, const Acknowledge& acknowledge)
{
    const int nExpected = attempt.outcome == Outcome::Delivered ? 0 : 1;
    if (acknowledge.nHandled != 1 || acknowledge.nFinal != 1 ||
        acknowledge.nNotDelivered != nExpected)
        Break("acknowledged-once", Describe(attempt) + " has an acknowledge of fHandled " +
                                       std::to_string(acknowledge.nHandled) + ", fNotDelivered " +
                                       std::to_string(acknowledge.nNotDelivered) + ", fFinal " +
                                       std::to_string(acknowledge.nFinal));
}

void CRoundCheck::CheckAttempt(const Attempt& attempt)
{
    if (attempt.outcome == Outcome::NotPublished || attempt.strPath.empty())
        return;
    if (attempt.file != FileState::Intact)
        Break("file-kept", Describe(attempt) + (attempt.file == FileState::Missing
                                                    ? " has lost its file"
                                                    : " has another file than it captured"));
    // Where it stands is the last one's to say.
    if (m_last[attempt.strPath] != &attempt)
    {
        if (attempt.outcome == Outcome::Undelivered)
            CheckUndelivered(attempt);
        return;
    }
    const auto [first, last] = m_regions.equal_range(attempt.strPath);
    for (auto at = first; at != last; ++at)
        CheckRegion(attempt, *at->second);
    const auto nRegions = static_cast<size_t>(std::distance(first, last));
    if (nRegions > 1)
        Break("in-session-once",
              Describe(attempt) + " stands in the session " + std::to_string(nRegions) + " times");
    if (attempt.outcome == Outcome::Delivered)
        CheckDelivered(attempt, nRegions);
    else if (attempt.outcome == Outcome::Duplicate)
        CheckDuplicate(attempt, nRegions);
    else
    {
        CheckUndelivered(attempt);
        CheckRefused(attempt, nRegions);
    }
}

void CRoundCheck::CheckDelivered(const Attempt& attempt, size_t nRegions)
{
    const auto answer = m_answers.find(attempt.strPath);
    if (answer == m_answers.end())
    {
        Break("in-session-once", Describe(attempt) + " was never answered by the server");
        return;
    }
    if (!answer->second->strError.empty())
        Break("in-session-once",
              Describe(attempt) + " was refused by the server: " + answer->second->strError);
    else if (nRegions == 0)
        Break("in-session-once", Describe(attempt) + " is not in the session");
}

bool CRoundCheck::IsRefused(const Attempt& attempt) const
{
    const auto answer = m_answers.find(attempt.strPath);
    return answer != m_answers.end() && !answer->second->strError.empty();
}

void CRoundCheck::CheckUndelivered(const Attempt& attempt)
{
    if (!attempt.fServerAway && !IsRefused(attempt))
        Break("undelivered-for-cause", Describe(attempt) + ", while the server was there");
}

// What is still not delivered in the end.
void CRoundCheck::CheckRefused(const Attempt& attempt, size_t nRegions)
{
    if (!IsRefused(attempt))
    {
        Break("arrives-in-the-end", Describe(attempt) + " has never arrived");
        return;
    }
    const std::string& strError = m_answers[attempt.strPath]->strError;
    if (strError.rfind(kSaveRefused, 0) != 0)
        Break("refused-for-cause", Describe(attempt) + " was refused: " + strError);
    if (nRegions != 0)
        Break("in-session-once", Describe(attempt) + " was refused and is in the session");
}

void CRoundCheck::CheckDuplicate(const Attempt& attempt, size_t nRegions)
{
    const bool fThere =
        std::any_of(m_evidence.regions.begin(), m_evidence.regions.end(),
                    [&](const SeenRegion& region)
                    { return Place(region.nTrack, region.nPosition) == PlaceOf(attempt); });
    if (!fThere)
        Break("duplicate-is-there", Describe(attempt) + " has nothing at its place");
    // One that is sent again may have been added the first time, without an answer.
    if (nRegions != 0 && !attempt.fLate && !attempt.fViewKilled)
        Break("duplicate-is-there", Describe(attempt) + " was added all the same");
}

void CRoundCheck::CheckRegion(const Attempt& attempt, const SeenRegion& region)
{
    if (region.nTrack != attempt.nTrack)
        Break("on-its-track", Describe(attempt) + " stands as " + Describe(region));
    // Required: where the question for the offset fails and the next command does not, the offset
    // counts as 0.
    const bool fWithoutOffset = attempt.fServerAway && region.nPosition == attempt.nPosition;
    if (region.nPosition != attempt.nPosition + attempt.nOffset && !fWithoutOffset)
        Break("at-its-sample", Describe(attempt) + " stands as " + Describe(region));
    if (region.nStart != 0 || region.nEnd != attempt.nFrames)
        Break("with-its-length", Describe(attempt) + " of " + std::to_string(attempt.nFrames) +
                                     " frames stands as " + Describe(region));
}

void CRoundCheck::CheckDoubles()
{
    std::map<std::tuple<Place, std::int64_t>, const Attempt*> first;
    for (const Attempt& attempt : m_evidence.attempts)
    {
        if (m_regions.count(attempt.strPath) == 0)
            continue;
        const auto [at, fFirst] =
            first.emplace(std::tuple(PlaceOf(attempt), attempt.nFrames), &attempt);
        // Required: a question for duplicates that fails reads as none.
        const bool fAway = attempt.fServerAway || at->second->fServerAway;
        if (!fFirst && at->second->strPath != attempt.strPath && !fAway)
            Break("not-doubled", Describe(attempt) + " was added beside " + Describe(*at->second));
    }
}

// A region that no answer names is of a capture whose host was killed.
bool CRoundCheck::TakeUnanswered(const SeenRegion& region)
{
    const auto fits = [&](const Attempt* pAttempt)
    {
        const bool fPlace = region.nPosition == pAttempt->nPosition + pAttempt->nOffset ||
                            (pAttempt->fServerAway && region.nPosition == pAttempt->nPosition);
        return fPlace && region.nTrack == pAttempt->nTrack && region.nStart == 0 &&
               region.nEnd == pAttempt->nFrames;
    };
    const auto at = std::find_if(m_unanswered.begin(), m_unanswered.end(), fits);
    if (at == m_unanswered.end())
        return false;
    m_unanswered.erase(at);
    return true;
}

void CRoundCheck::CheckStrangers()
{
    const size_t nUnanswered = m_unanswered.size();
    for (const SeenRegion& region : m_evidence.regions)
    {
        if (!region.fFileThere)
            Break("file-kept", Describe(region) + " has lost its file");
        if (m_last.count(region.strPath) == 0 && !TakeUnanswered(region))
            Break("captured-by-somebody", Describe(region) + " was captured by nobody");
    }
    // Its unfinished file, and the name that it was about to get.
    if (m_evidence.strayFiles.size() > 2 * nUnanswered)
        Break("captured-by-somebody",
              std::to_string(m_evidence.strayFiles.size()) + " files are of no capture, the last " +
                  m_evidence.strayFiles.back() + "; " + std::to_string(nUnanswered) +
                  " hosts were killed while they captured");
}

} // namespace

std::vector<Finding> CheckRound(const RoundEvidence& evidence)
{
    return CRoundCheck(evidence).Run();
}

std::vector<Finding> CheckGrowth(const std::string& strProcess, const ProcessSample& first,
                                 const ProcessSample& last, long nAllowance, long nDescriptors)
{
    std::vector<Finding> findings;
    const auto compare = [&](const char* szWhat, long nFirst, long nLast, long nMore)
    {
        if (nLast > nFirst + nMore)
            findings.push_back({"no-growth", strProcess + " went from " + std::to_string(nFirst) +
                                                 " to " + std::to_string(nLast) + " " + szWhat});
    };
    compare("KiB", first.nMemory, last.nMemory, nAllowance);
    compare("descriptors", first.nDescriptors, last.nDescriptors, nDescriptors);
    compare("threads", first.nThreads, last.nThreads, 0);
    compare("objects", first.nObjects, last.nObjects, kObjectsThatAreKept);
    return findings;
}

} // namespace Tarvane::Soak
