#include "apps/conform/server/CaptureScripts.h"
#include "apps/conform/server/ServerRules.h"

#include <vector>

namespace Tarvane::Conform
{
namespace
{

constexpr long long kElsewhere = 960000;

Capture TakeAt(const ServerBench& bench, long long nPosition = Capture{}.nPosition)
{
    return {bench.sound.Take(), nPosition};
}

Capture OtherTake(const ServerBench& bench)
{
    return {bench.sound.OtherTake()};
}

void NewAudioIsNew(const ServerBench& bench)
{
    if (IsThere(bench, TakeAt(bench)))
        throw CBroken("audio that the server has never seen is called a duplicate");
}

void AddedAudioIsThere(const ServerBench& bench)
{
    Add(bench, TakeAt(bench));
    if (!IsThere(bench, TakeAt(bench)))
        throw CBroken("audio that was just added is not called a duplicate");
}

void OnlyTheSameIsADuplicate(const ServerBench& bench)
{
    if (!IsThere(bench, TakeAt(bench)))
        throw CNotExaminable("what was added is not found again");
    if (IsThere(bench, TakeAt(bench, kElsewhere)))
        throw CBroken("the same audio at another place is called a duplicate");
    if (IsThere(bench, OtherTake(bench)))
        throw CBroken("other audio at the same place is called a duplicate");
}

void NamesDoNotMatter(const ServerBench& bench)
{
    if (!IsThere(bench, TakeAt(bench)))
        throw CNotExaminable("what was added is not found again");
    if (!IsThere(bench, {bench.sound.SameTake()}))
        throw CBroken("the same audio in a file of another name is not called a duplicate");
}

void RegionStandsWhereItWasPut(const ServerBench& bench)
{
    const Place place = PlaceOf(bench, 0);
    const Place expected = ExpectedPlace(bench, TakeAt(bench));
    if (place != expected)
        throw CBroken("a region put at " + Told(expected) + " stands at " + Told(place));
}

// What cannot be done.
struct Attempt
{
    const char* szWhat;
    std::string strScript;
};

std::vector<Attempt> AttemptsInVain(const ServerBench& bench)
{
    const auto adding = [&](const std::string& strPath, int nEnd = Capture{}.nEnd) {
        return AddingScript(bench.nTrack, {strPath, kElsewhere, Capture{}.nStart, nEnd});
    };
    const CTestSound& sound = bench.sound;
    return {
        {"a file that is not there", adding(sound.Missing())},
        {"a file without sound", adding(sound.NoSound())},
        {"a stretch beyond the end of its file",
         adding(sound.OtherTake(), CTestSound::kFrames + 1)},
        {"a track that is not there",
         AddingScript(TrackCount(bench), {sound.OtherTake(), kElsewhere})},
    };
}

std::string FailingBehindItsRegion(const ServerBench& bench)
{
    return AddingScript(bench.nTrack, {bench.sound.OtherTake(), kElsewhere}) + "\nerror('behind')";
}

void RefusesWhatItCannotAdd(const ServerBench& bench)
{
    for (const Attempt& attempt : AttemptsInVain(bench))
        if (bench.peer.ErrorInDocument(attempt.strScript).empty())
            throw CBroken(std::string(attempt.szWhat) + " is added without an error");
}

void TellsWhatItDidNotDo(const ServerBench& bench)
{
    std::vector<Attempt> attempts = AttemptsInVain(bench);
    attempts.push_back({"a path that ends its own text",
                        AddingScript(bench.nTrack, {"/a \" quote.wav", kElsewhere})});
    attempts.push_back({"a script that fails behind its region", FailingBehindItsRegion(bench)});
    for (const Attempt& attempt : attempts)
        if (bench.peer.HasResultInDocument(attempt.strScript))
            throw CBroken(std::string(attempt.szWhat) + " is answered with 'Rslt'");
}

void UndoesWhatItDidNotFinish(const ServerBench& bench)
{
    const double dBefore = RegionCount(bench, bench.nTrack);
    bench.peer.ErrorInDocument(FailingBehindItsRegion(bench));
    const double dAfter = RegionCount(bench, bench.nTrack);
    if (dAfter > dBefore)
        throw CBroken("a region that a script added before it failed stays");
}

void KeepsWhatWasThere(const ServerBench& bench)
{
    const double dBefore = RegionCount(bench, bench.nTrack);
    bench.peer.ErrorInDocument(FailingBehindItsRegion(bench));
    if (RegionCount(bench, bench.nTrack) < dBefore)
        throw CBroken("a region of before is gone when a script has failed");
    if (!IsThere(bench, TakeAt(bench)))
        throw CBroken("what was added before is not found again when a script has failed");
}

void CountsChanges(const ServerBench& bench)
{
    const double dBefore = Number(bench.peer.Line("print(GetUpdateCount())"));
    Add(bench, OtherTake(bench));
    const double dAfter = Number(bench.peer.Line("print(GetUpdateCount())"));
    if (dAfter <= dBefore)
        throw CBroken("the count of updates stood still at " +
                      std::to_string(static_cast<long>(dAfter)) + " while a region was added");
}

} // namespace

std::vector<ServerRule> CaptureRules()
{
    return {
        {{"S18", Level::Must, "answer 0 for audio that it does not have",
          "a take that counts as a duplicate is not delivered"},
         NewAudioIsNew,
         true},
        {{"S19", Level::Must, "answer 1 for audio that it has at that place of that track",
          "a take that is captured again is doubled"},
         AddedAudioIsThere,
         true},
        {{"S20", Level::Must, "answer 0 for the same audio elsewhere, and for other audio there",
          "a take that counts as a duplicate is not delivered"},
         OnlyTheSameIsADuplicate,
         true},
        {{"S21", Level::Must, "know audio again whatever its file is called",
          "every capture is a new file, so that each one that is made again would be doubled"},
         NamesDoNotMatter,
         true},
        {{"S22", Level::Must, "put a region where it is told to, to the sample",
          "a misplaced take"},
         RegionStandsWhereItWasPut,
         true},
        {{"S23", Level::Must,
          "fail a script that adds a file that is missing, unreadable or too short, or to no track",
          "the take would be lost without a word"},
         RefusesWhatItCannotAdd,
         true},
        {{"S33", Level::Must, "answer without 'Rslt' to a script that changes and fails",
          "with one the take counts as delivered, whatever 'Errr' says"},
         TellsWhatItDidNotDo,
         true},
        {{"S34", Level::Should, "undo what a script changed before it failed",
          "what was told as not delivered stands on the track all the same"},
         UndoesWhatItDidNotFinish,
         true},
        {{"S35", Level::Must, "keep what was there before when a script fails",
          "takes that were delivered would be lost"},
         KeepsWhatWasThere,
         true},
        {{"S24", Level::Should, "raise the count of updates with every change",
          "clients look at it to see whether anything is new"},
         CountsChanges,
         true},
    };
}

} // namespace Tarvane::Conform
