#include "apps/conform/ServerRules.h"

#include <cmath>
#include <vector>

namespace Tarvane::Conform
{
namespace
{

constexpr long kPosition = 480000; // of the take, on the host's timeline
constexpr long kElsewhere = 960000;
constexpr int kStart = 100; // of the region, in the take
constexpr int kEnd = 4000;

std::string Stretch(const std::string& strTrack, const std::string& strPath,
                    const std::string& strMiddle, long nPosition, int nEnd)
{
    return "(GetTrackID(" + strTrack + "), \"" + strPath + "\", " + strMiddle +
           std::to_string(nPosition) + "," + std::to_string(kStart) + "," + std::to_string(nEnd) +
           ")";
}

std::string Adding(const std::string& strTrack, const std::string& strPath, long nPosition,
                   int nEnd = kEnd)
{
    return "AddAudioRegion" + Stretch(strTrack, strPath, "true, false, ", nPosition, nEnd);
}

std::string Track(const ServerBench& bench)
{
    return std::to_string(bench.nTrack);
}

bool IsThere(const ServerBench& bench, const std::string& strPath, long nPosition)
{
    const std::string strLine =
        bench.peer.Line("print(CheckForDuplicateRegion" +
                        Stretch(Track(bench), strPath, "", nPosition, kEnd) + ")");
    const double dAnswer = Number(strLine);
    if (dAnswer != 0.0 && dAnswer != 1.0)
        throw CBroken("asked for a duplicate, the server answered " + strLine);
    return dAnswer == 1.0;
}

// Where the link adds what was captured at a position of the host's timeline.
long ServerPosition(const ServerBench& bench, long nPosition)
{
    const double dOffset = Number(bench.peer.Line("print(GetLinkSMPTEOffset())"));
    return static_cast<long>(std::trunc(dOffset * CTestSound::kRate + double(nPosition)));
}

void Add(const ServerBench& bench, const std::string& strPath, long nPosition)
{
    const std::string strError =
        bench.peer.ErrorInDocument(Adding(Track(bench), strPath, ServerPosition(bench, nPosition)));
    if (!strError.empty())
        throw CBroken("a region cannot be added: " + Quoted(strError));
}

void NewAudioIsNew(const ServerBench& bench)
{
    if (IsThere(bench, bench.sound.Take(), kPosition))
        throw CBroken("audio that the server has never seen is called a duplicate");
}

void AddedAudioIsThere(const ServerBench& bench)
{
    Add(bench, bench.sound.Take(), kPosition);
    if (!IsThere(bench, bench.sound.Take(), kPosition))
        throw CBroken("audio that was just added is not called a duplicate");
}

void OnlyTheSameIsADuplicate(const ServerBench& bench)
{
    if (!IsThere(bench, bench.sound.Take(), kPosition))
        throw CNotExaminable("what was added is not found again");
    if (IsThere(bench, bench.sound.Take(), kElsewhere))
        throw CBroken("the same audio at another place is called a duplicate");
    if (IsThere(bench, bench.sound.OtherTake(), kPosition))
        throw CBroken("other audio at the same place is called a duplicate");
}

void NamesDoNotMatter(const ServerBench& bench)
{
    if (!IsThere(bench, bench.sound.Take(), kPosition))
        throw CNotExaminable("what was added is not found again");
    if (!IsThere(bench, bench.sound.SameTake(), kPosition))
        throw CBroken("the same audio in a file of another name is not called a duplicate");
}

void RegionStandsWhereItWasPut(const ServerBench& bench)
{
    const std::string strRegion = "GetRegionID(GetTrackID(" + Track(bench) + "), 0)";
    const double dStart =
        Number(bench.peer.Line("print(GetRegionStartPosition(" + strRegion + "))"));
    const double dEnd = Number(bench.peer.Line("print(GetRegionEndPosition(" + strRegion + "))"));
    const long nPosition = ServerPosition(bench, kPosition);
    if (dStart != double(nPosition + kStart) || dEnd != double(nPosition + kEnd))
        throw CBroken("a region put at " + std::to_string(nPosition + kStart) + " to " +
                      std::to_string(nPosition + kEnd) + " stands at " +
                      std::to_string(static_cast<long>(dStart)) + " to " +
                      std::to_string(static_cast<long>(dEnd)));
}

// What cannot be done.
struct Attempt
{
    const char* szWhat;
    std::string strScript;
};

std::vector<Attempt> AttemptsInVain(const ServerBench& bench)
{
    const CTestSound& sound = bench.sound;
    const std::string strTracks = bench.peer.Line("print(GetTrackCount())");
    return {
        {"a file that is not there", Adding(Track(bench), sound.Missing(), kElsewhere)},
        {"a file without sound", Adding(Track(bench), sound.NoSound(), kElsewhere)},
        {"a stretch beyond the end of its file",
         Adding(Track(bench), sound.OtherTake(), kElsewhere, CTestSound::kFrames + 1)},
        {"a track that is not there", Adding(strTracks, sound.OtherTake(), kElsewhere)},
    };
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
                        Adding(Track(bench), "/a \" quote.wav", kElsewhere)});
    attempts.push_back({"a script that fails behind its region",
                        Adding(Track(bench), bench.sound.OtherTake(), kElsewhere) +
                            "\nerror('behind')"});
    for (const Attempt& attempt : attempts)
        if (bench.peer.HasResultInDocument(attempt.strScript))
            throw CBroken(std::string(attempt.szWhat) + " is answered with 'Rslt'");
}

void UndoesWhatItDidNotFinish(const ServerBench& bench)
{
    const std::string strCount = "print(GetRegionCount(GetTrackID(" + Track(bench) + ")))";
    const double dBefore = Number(bench.peer.Line(strCount));
    bench.peer.ErrorInDocument(Adding(Track(bench), bench.sound.OtherTake(), kElsewhere) +
                               "\nerror('behind')");
    if (Number(bench.peer.Line(strCount)) != dBefore)
        throw CBroken("a region that a script added before it failed stays");
}

void CountsChanges(const ServerBench& bench)
{
    const double dBefore = Number(bench.peer.Line("print(GetUpdateCount())"));
    Add(bench, bench.sound.OtherTake(), kPosition);
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
        {{"S21", Level::Should, "know audio again whatever its file is called",
          "every capture is a new file"},
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
        {{"S24", Level::Should, "raise the count of updates with every change",
          "clients look at it to see whether anything is new"},
         CountsChanges,
         true},
    };
}

} // namespace Tarvane::Conform
