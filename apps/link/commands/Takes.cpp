// The takes of this machine that wait for a server.
#include "apps/link/commands/Commands.h"
#include "apps/link/doctor/TakesCheck.h"
#include "apps/support/program/CommandLine.h"
#include "signal/TakeJournal.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "utils/FileIO/FileName.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace fs = std::filesystem;

namespace Tarvane::Link
{

namespace
{

struct KeptTake
{
    CJournalTake take;
    fs::path journal;
    bool fHeld; // a running host has it, and sends it itself
};

std::vector<KeptTake> AllKept()
{
    std::vector<KeptTake> all;
    for (const fs::path& folder : JournalFolders())
    {
        for (const fs::path& journal : CTakeJournal::In(folder))
        {
            const bool fHeld = CTakeJournal::IsHeld(journal);
            for (const CJournalTake& take :
                 CTakeJournal(folder, CTakeJournal::UuidOf(journal)).Open())
                all.push_back({take, journal, fHeld});
        }
    }
    return all;
}

// Behind how many takes frames were lost of late, and the last of these takes.
struct Losses
{
    std::size_t nTakes = 0;
    CJournalTake last;
};

Losses AllLosses()
{
    Losses losses;
    for (const fs::path& folder : JournalFolders())
    {
        for (const fs::path& journal : CTakeJournal::In(folder))
        {
            for (const CJournalTake& take :
                 CTakeJournal(folder, CTakeJournal::UuidOf(journal)).Losses())
            {
                ++losses.nTakes;
                if (take.nFinishedTime >= losses.last.nFinishedTime)
                    losses.last = take;
            }
        }
    }
    return losses;
}

std::string StateOf(const KeptTake& kept)
{
    if (kept.fHeld)
        return "held by a running host";
    if (!kept.take.fFinished)
        return "not finished";
    return kept.take.strOutcome.empty() ? "waiting" : kept.take.strOutcome;
}

// Of a take that its host's disk was too slow or too full for. Empty for any other.
std::string LossOf(const CJournalTake& take)
{
    if (take.nLostFrames == 0)
        return "";
    return ", " + std::to_string(take.nLostFrames) + " frames behind it are lost";
}

nlohmann::ordered_json FieldsOf(const KeptTake& kept)
{
    const CJournalTake& take = kept.take;
    return {{"file", take.file.string()}, {"position", take.dPosition}, {"rate", take.dRate},
            {"frames", take.nFrames},     {"lost", take.nLostFrames},   {"state", StateOf(kept)},
            {"words", take.strWords}};
}

std::string LineOf(const KeptTake& kept)
{
    const CJournalTake& take = kept.take;
    char szPlace[96];
    std::snprintf(szPlace, sizeof szPlace, "\t%.0f\t%.0f\t%llu\t", take.dPosition, take.dRate,
                  static_cast<unsigned long long>(take.nFrames));
    return take.file.string() + szPlace + StateOf(kept) +
           (take.strWords.empty() ? "" : ": " + take.strWords) + LossOf(take) + "\n";
}

Answer List()
{
    Answer answer;
    answer.fields["takes"] = nlohmann::ordered_json::array();
    for (const KeptTake& kept : AllKept())
    {
        answer.fields["takes"].push_back(FieldsOf(kept));
        answer.strText += LineOf(kept);
    }
    return answer;
}

KeptTake Find(const std::string& strFile)
{
    const fs::path file = fs::absolute(strFile).lexically_normal();
    for (const KeptTake& kept : AllKept())
    {
        if (kept.take.file == file)
            return kept;
    }
    throw CUsageError("no take " + strFile + " waits - tarvane-link takes lists those that do.");
}

// Nobody else may touch it from here on.
void Hold(CTakeJournal& journal, const std::string& strFile)
{
    if (!journal.Hold())
        throw CUsageError("the take " + strFile + " is a running host's, which sends it itself.");
}

void Settle(CTakeJournal& journal, const CJournalTake& take, const char* szOutcome)
{
    if (!journal.Ended(take.nTake, szOutcome, "", 0))
        throw std::runtime_error(journal.Failure());
}

// One that was not finished is mended, and stands in the journal under its new name.
void Finish(CTakeJournal& journal, CJournalTake& take)
{
    const bool fFinished = take.fFinished;
    if (!RecoverTake(take, journal))
        throw CUsageError("nothing is left of the take " + take.file.string() +
                          " - tarvane-link takes --forget forgets it.");
    if (fFinished)
        return;
    CTake mended;
    mended.file = take.file;
    mended.guide = take.guide;
    mended.dPosition = take.dPosition;
    mended.dRate = take.dRate;
    mended.nFrames = take.nFrames;
    if (!journal.Finished(take.nTake, mended))
        throw std::runtime_error(journal.Failure());
}

Answer Forget(const KeptTake& kept)
{
    CTakeJournal journal(kept.journal.parent_path(), CTakeJournal::UuidOf(kept.journal));
    Hold(journal, kept.take.file);
    Settle(journal, kept.take, CTakeJournal::kForgotten);
    return {Outcome::Done, "forgotten\n", FieldsOf(kept)};
}

// As a view sends it, but for an offset that cannot be had: unless the server has it already,
// behind the offset of the timelines.
Answer SendTake(CTarvaneScript& link, const Options& options, KeptTake kept)
{
    CTakeJournal journal(kept.journal.parent_path(), CTakeJournal::UuidOf(kept.journal));
    Hold(journal, kept.take.file);
    CJournalTake& take = kept.take;
    Finish(journal, take);
    Answer answer{Outcome::Done, "", FieldsOf(kept)};
    const auto dFrames = static_cast<double>(take.nFrames);
    CFileName file(take.file.c_str());
    const bool fDuplicate = link.CheckDuplicateRegion(options.fAudioSuite, options.place.nTrack,
                                                      &file, take.dPosition, 0, dFrames);
    if (!fDuplicate)
    {
        const double dOffset = link.GetLinkSMPTEOffset(options.fAudioSuite);
        answer.outcome = OutcomeOf(link);
        if (answer.outcome != Outcome::Done)
            return answer;
        link.SendFile(options.fAudioSuite, options.place.nTrack, &file,
                      dOffset * take.dRate + take.dPosition, 0, dFrames, 0);
        answer.outcome = OutcomeOf(link);
        if (answer.outcome != Outcome::Done)
            return answer;
    }
    const char* const szOutcome =
        TakeOutcomeWord(fDuplicate ? TakeOutcome::Duplicate : TakeOutcome::Delivered);
    Settle(journal, take, szOutcome);
    answer.fields["state"] = szOutcome;
    answer.strText = std::string(szOutcome) + "\n";
    return answer;
}

} // namespace

Answer Takes(CTarvaneScript& link, const Options& options)
{
    if (!options.strSentTake.empty())
        return SendTake(link, options, Find(options.strSentTake));
    if (!options.strForgottenTake.empty())
        return Forget(Find(options.strForgottenTake));
    return List();
}

Finding CheckTakes()
{
    const std::vector<KeptTake> all = AllKept();
    const auto nLeft =
        std::count_if(all.begin(), all.end(), [](const KeptTake& kept) { return !kept.fHeld; });
    if (nLeft == 0)
        return {"takes", Verdict::Good, "no take waits that no running host would send"};
    const auto first =
        std::find_if(all.begin(), all.end(), [](const KeptTake& kept) { return !kept.fHeld; });
    char szPosition[64];
    std::snprintf(szPosition, sizeof szPosition, " from sample %.0f", first->take.dPosition);
    return {"takes", Verdict::Warning,
            std::to_string(nLeft) + (nLeft == 1 ? " take waits" : " takes wait") +
                " for a server, the first " + first->take.file.string() + szPosition + ", " +
                StateOf(*first) + LossOf(first->take),
            "Open the host's session again, which sends them, or list them with tarvane-link takes "
            "and send them by hand."};
}

Finding CheckLosses()
{
    const Losses losses = AllLosses();
    if (losses.nTakes == 0)
        return {"losses", Verdict::Good, "no disk has lost frames within a day"};
    const CJournalTake& last = losses.last;
    char szFrames[128];
    std::snprintf(szFrames, sizeof szFrames, ", %llu frames from sample %.0f on",
                  static_cast<unsigned long long>(last.nLostFrames),
                  last.dPosition + static_cast<double>(last.nFrames));
    return {"losses", Verdict::Warning,
            "within a day a disk was too slow or too full for what followed " +
                std::to_string(losses.nTakes) + (losses.nTakes == 1 ? " take" : " takes") +
                ", the last time for what followed " + last.file.string() + szFrames,
            "Play that again; make room on the disk, or have captures written to a faster one."};
}

} // namespace Tarvane::Link
