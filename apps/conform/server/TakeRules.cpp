// Takes of every kind, side by side.
#include "apps/conform/server/CaptureScripts.h"

#include <algorithm>
#include <functional>
#include <sstream>
#include <utility>

namespace Tarvane::Conform
{
namespace
{

constexpr long long kFirstPlace = 2000000; // where no other rule puts anything
constexpr long long kApart = 10000;
constexpr int kSideBySide = 4;
constexpr std::size_t kLongestPath = 1023; // what a record has room for

// A track beside the one to work on, which is only looked at.
int OtherTrack(const ServerBench& bench)
{
    if (TrackCount(bench) < 2)
        throw CNotExaminable("the document has one track; open one with two");
    return bench.nTrack == 0 ? 1 : 0;
}

// Adds it, and finds it again.
void Deliver(const ServerBench& bench, const Capture& capture)
{
    Add(bench, capture);
    if (!IsThere(bench, capture))
        throw CBroken("it was added, and is not called a duplicate");
}

// The number of regions counts too.
void DeliverBesideOthers(const ServerBench& bench, const Capture& capture)
{
    if (IsThere(bench, capture))
        throw CBroken("it is called a duplicate before it was added");
    const double dBefore = RegionCount(bench, bench.nTrack);
    Deliver(bench, capture);
    const double dNow = RegionCount(bench, bench.nTrack);
    if (dNow != dBefore + 1.0)
        throw CBroken("one region was added to " + std::to_string(static_cast<long>(dBefore)) +
                      ", and there are " + std::to_string(static_cast<long>(dNow)));
}

// Tries each, notes what was tried, and throws what went wrong with all of them.
template <typename Case>
void TryEach(const ServerBench& bench, const std::vector<Case>& cases,
             const std::function<void(const Case&)>& attempt)
{
    std::string strTried;
    std::vector<std::pair<std::string, std::string>> broken; // what was seen, and with which
    for (const Case& one : cases)
    {
        strTried += (strTried.empty() ? "" : ", ") + std::string(one.szName);
        try
        {
            attempt(one);
        }
        catch (const CBroken& error)
        {
            const std::string strSeen = error.what();
            const auto found =
                std::find_if(broken.begin(), broken.end(),
                             [&](const auto& seen) { return seen.first == strSeen; });
            if (found == broken.end())
                broken.emplace_back(strSeen, one.szName);
            else
                found->second += std::string(", ") + one.szName;
        }
    }
    bench.tried.push_back(strTried);
    std::string strBroken;
    for (const auto& [strSeen, strWith] : broken)
        strBroken += (strBroken.empty() ? "" : "; ") + strWith + ": " + strSeen;
    if (!strBroken.empty())
        throw CBroken(strBroken);
}

void KeepsRegionsSideBySide(const ServerBench& bench)
{
    std::vector<Capture> captures;
    for (int n = 0; n < kSideBySide; ++n)
    {
        captures.push_back(
            {bench.sound.New("side-" + std::to_string(n) + ".wav"), kFirstPlace + n * kApart});
        DeliverBesideOthers(bench, captures.back());
    }
    for (const Capture& capture : captures)
        if (!IsThere(bench, capture))
            throw CBroken("of " + std::to_string(kSideBySide) +
                          " regions that were added side by side, one is not there any more");
    bench.tried.push_back(std::to_string(kSideBySide) + " regions side by side");
}

void KeepsTracksApart(const ServerBench& bench)
{
    const int nOther = OtherTrack(bench);
    const double dBefore = RegionCount(bench, nOther);
    const Capture capture{bench.sound.New("apart.wav"), kFirstPlace + kSideBySide * kApart};
    Deliver(bench, capture);
    if (RegionCount(bench, nOther) != dBefore)
        throw CBroken("a region that was added to one track is on another");
    if (IsThereOn(nOther, bench, capture))
        throw CBroken("audio that is on one track is called a duplicate on another");
    bench.tried.push_back("tracks " + std::to_string(bench.nTrack) + " and " +
                          std::to_string(nOther));
}

void QuestionsChangeNothing(const ServerBench& bench)
{
    const Capture capture{bench.sound.New("asked.wav"), kFirstPlace};
    const double dBefore = RegionCount(bench, bench.nTrack);
    for (int n = 0; n < 2; ++n)
        if (IsThere(bench, capture))
            throw CBroken("audio that was only asked for is called a duplicate");
    if (RegionCount(bench, bench.nTrack) != dBefore)
        throw CBroken("a question for a duplicate changed the regions of the track");
}

void LooksAtTheStretch(const ServerBench& bench)
{
    const Capture whole;
    const auto expect = [&](bool fThere, const Capture& capture, const char* szWhat)
    {
        if (IsThere(bench, capture) != fThere)
            throw CBroken(std::string(szWhat) +
                          (fThere ? " is not called a duplicate" : " is called a duplicate"));
    };
    const std::string strTake = bench.sound.Take();
    if (!IsThere(bench, {strTake}))
        throw CNotExaminable("what was added is not found again");
    expect(false, {strTake, whole.nPosition, whole.nStart, whole.nEnd - 1000},
           "the first part of a stretch that is there");
    expect(false, {strTake, whole.nPosition, whole.nStart, whole.nEnd + 500},
           "a longer stretch, of which a part is there");
    expect(false, {strTake, whole.nPosition, whole.nStart + 1000, whole.nEnd + 500},
           "a stretch of the same file that overlaps in part");
    constexpr int nBehind = CTestSound::kFrames;
    expect(true,
           {bench.sound.LongTake(), whole.nPosition - nBehind, whole.nStart + nBehind,
            whole.nEnd + nBehind},
           "the same audio at the same place, from the middle of a longer file,");
}

struct NameCase
{
    const char* szName;
    std::string strFile;
};

// The kinds of names that a path carries.
std::vector<NameCase> NameCases()
{
    return {
        {"composed accents", "Caf\u00E9.wav"},
        {"decomposed accents", "Cafe\u0301.wav"},
        {"Hangul in parts", "\u1112\u1161\u11AB.wav"},
        {"Chinese", "\u58F0\u97F3.wav"},
        {"Arabic and Hebrew", "\u0645\u064F\u062D \u05D0 1.wav"},
        {"emoji", "Mic \U0001F399 \U0001F468\u200D\U0001F469.wav"},
        {"private use", "\uF8FF \uE000.wav"},
        {"a byte order mark", "\uFEFFVox.wav"},
        {"wide spaces", "a\u00A0\u3000b.wav"},
        {"blanks around", "  Vox  .wav"},
        {"a single quote", "it's.wav"},
        {"typographic quotes", "\u201EVox\u201C.wav"},
        {"formats", "%n%s%d %@ 100%.wav"},
        {"a shell's characters", "$(x) `y` ${HOME} ~ * ? ; | & < > !.wav"},
        {"Lua's brackets and comments", "]] ]=] -- --[[ #t.wav"},
        {"colons", "Macintosh HD:Vox:1.wav"},
        {"a hyphen first", "--help.wav"},
        {"a control character", "a\tb.wav"},
        {"a name of 255 bytes", std::string(251, 'x') + ".wav"},
    };
}

// A path of exactly so many bytes, below the work folder.
std::string NameOfPathOf(const ServerBench& bench, std::size_t nBytes)
{
    const std::size_t nFolder = bench.sound.Missing().size() - std::string("missing.wav").size();
    std::string strName;
    std::size_t nLeft = nBytes - nFolder;
    for (constexpr std::size_t nPiece = 200; nLeft > nPiece + 10; nLeft -= nPiece + 1)
        strName += std::string(nPiece, 'p') + "/";
    return strName + std::string(nLeft - 4, 'x') + ".wav";
}

void TakesNames(const ServerBench& bench)
{
    std::vector<NameCase> cases = NameCases();
    cases.push_back({"a path of 1023 bytes", NameOfPathOf(bench, kLongestPath)});
    TryEach<NameCase>(bench, cases,
                      [&](const NameCase& one) {
                          Deliver(bench, {bench.sound.New(one.strFile), kFirstPlace});
                      });
}

std::string FileOf(const SoundKind& kind)
{
    return std::to_string(kind.nRate) + "-" + std::to_string(kind.nChannels) + "-" +
           std::to_string(kind.nFormat) + ".wav";
}

void DeliverKind(const ServerBench& bench, const SoundKind& kind)
{
    Capture capture{bench.sound.New(FileOf(kind), kind), kFirstPlace};
    capture.nRate = kind.nRate;
    Deliver(bench, capture);
}

void TakesSounds(const ServerBench& bench)
{
    const std::vector<SoundKind> kinds{
        {"24 bits", 48000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_24},
        {"32-bit float", 48000, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT},
        {"2 channels", 48000, 2},
        {"8 channels", 48000, 8},
        {"an extensible header", 48000, 2, SF_FORMAT_WAVEX | SF_FORMAT_PCM_24},
        {"RF64", 48000, 1, SF_FORMAT_RF64 | SF_FORMAT_PCM_24},
    };
    TryEach<SoundKind>(bench, kinds, [&](const SoundKind& kind) { DeliverKind(bench, kind); });
}

// With an offset of 0 no rate can be the wrong one.
void CountsAtTheFilesRate(const ServerBench& bench)
{
    const double dOffset = Offset(bench);
    std::ostringstream text;
    text << "an offset of " << dOffset << " s";
    bench.tried.push_back(text.str());
    const std::vector<SoundKind> kinds{
        {"44100", 44100},   {"88200", 88200},   {"96000", 96000},
        {"176400", 176400}, {"192000", 192000},
    };
    TryEach<SoundKind>(bench, kinds, [&](const SoundKind& kind) { DeliverKind(bench, kind); });
    if (dOffset == 0.0 && !bench.fNoOffset)
        throw CNotExaminable("the offset between the timelines is 0; give the server another one, "
                             "or say --no-offset if it never has one");
}

struct PositionCase
{
    const char* szName;
    long long nPosition;
};

void TakesPositions(const ServerBench& bench)
{
    const std::vector<PositionCase> cases{
        {"0", 0},
        {"-96000", -96000},
        {"3000000000", 3000000000},
        {"5000000000", 5000000000}, // half a day at the highest rate
    };
    TryEach<PositionCase>(
        bench, cases,
        [&](const PositionCase& one)
        {
            const Capture capture{bench.sound.New(std::string(one.szName) + ".wav"), one.nPosition};
            Deliver(bench, capture);
            const int nLast = static_cast<int>(RegionCount(bench, bench.nTrack)) - 1;
            const Place expected = ExpectedPlace(bench, capture);
            for (int nRegion = nLast; nRegion >= 0; --nRegion)
                if (PlaceOf(bench, nRegion) == expected)
                    return;
            throw CBroken("no region stands from " + Told(expected));
        });
}

} // namespace

std::vector<ServerRule> TakeRules()
{
    return {
        {{"S36", Level::Must,
          "add one region for each AddAudioRegion, and keep those that are on the track",
          "earlier takes of the track would be lost"},
         KeepsRegionsSideBySide,
         true},
        {{"S37", Level::Must, "keep its tracks apart, in what it adds and what it looks for",
          "a take that is on another track only counts as a duplicate, and is not delivered"},
         KeepsTracksApart,
         true},
        {{"S38", Level::Must, "change no region when it is asked for a duplicate",
          "each capture is asked for before it is added, and would be doubled"},
         QuestionsChangeNothing,
         true},
        {{"S39", Level::Must,
          "answer 1 for the same stretch of audio in any file, and 0 for one that overlaps in part",
          "a take that is longer than what is there would not be delivered"},
         LooksAtTheStretch,
         true},
        {{"S40", Level::Must, "take files under every name that a path carries",
          "takes are named after tracks, in their user's language"},
         TakesNames,
         true},
        {{"S41", Level::Must,
          "take files of 16 and 24 bits and of 32-bit float, of one channel and several",
          "a plug-in writes what its host plays"},
         TakesSounds,
         true},
        {{"S42", Level::Must,
          "take files of any rate, and count positions and the offset in samples of the file",
          "the take is doubled when it is made again, or stands elsewhere"},
         CountsAtTheFilesRate,
         true},
        {{"S43", Level::Must, "put regions at positions below 0 and above 2^32 too",
          "a session that begins before zero, or is half a day long"},
         TakesPositions,
         true},
    };
}

} // namespace Tarvane::Conform
