#include "apps/conform/plugin/PlugInRules.h"
#include "apps/support/sound/SoundFile.h"
#include "utils/UnicodeText.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace Tarvane::Conform
{
namespace
{

void Announces(const PlugInBench& bench)
{
    if (!CPlugInPeer(bench).PlayUntilAnnounced())
        throw CBroken("a capture was made, and no 64000 was raised");
}

void IsReadyWhenAnnounced(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Capture();
    const std::optional<SInt32> index = peer.Read<SInt32>(TNProperty_NextElement);
    if (!index)
        throw CBroken("64000 is raised, and 64007 writes nothing");
    if (*index < 0)
        throw CBroken("64000 is raised, and 64007 says " + std::to_string(*index));
    if (peer.Record(*index).szDubPath[0] == '\0')
        throw CBroken("64000 is raised, and 64002 has no record at " + std::to_string(*index));
}

TNCaptureElement RecordOver(const CPlugInPeer& peer, SInt32 nElement, int nPattern)
{
    TNCaptureElement record;
    std::memset(static_cast<void*>(&record), nPattern, sizeof record);
    UInt32 nSize = sizeof record;
    peer.Get(TNProperty_ElementInfo, static_cast<AudioUnitElement>(nElement), &record, nSize);
    return record;
}

bool IsSame(const double& d, const double& dOther)
{
    return std::memcmp(&d, &dOther, sizeof d) == 0;
}

// What the view reads of one.
bool IsSame(const TNRegionTimes& times, const TNRegionTimes& other)
{
    return IsSame(times.dPosition, other.dPosition) && IsSame(times.dAux, other.dAux) &&
           IsSame(times.dStart, other.dStart) && IsSame(times.dEnd, other.dEnd);
}

// A path is read up to its end alone.
bool IsSame(const char (&szPath)[kTNPathSize], const char (&szOther)[kTNPathSize])
{
    return std::strncmp(szPath, szOther, kTNPathSize) == 0;
}

void FillsRecord(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    const SInt32 nElement = peer.CaptureElement();
    // Twice over what cannot have been left by the same plug-in.
    const TNCaptureElement one = RecordOver(peer, nElement, 0x5A);
    const TNCaptureElement two = RecordOver(peer, nElement, 0xA5);
    const auto expect = [](bool fSame, const char* szField)
    {
        if (!fSame)
            throw CBroken(std::string(szField) + " is not written");
    };
    expect(IsSame(one.szGuidePath, two.szGuidePath), "szGuidePath");
    expect(IsSame(one.tGuide, two.tGuide), "tGuide");
    expect(IsSame(one.szDubPath, two.szDubPath), "szDubPath");
    expect(IsSame(one.tDub, two.tDub), "tDub");
    expect(one.fIdentical == two.fIdentical, "fIdentical");
    expect(IsSame(one.dSampleRate, two.dSampleRate), "dSampleRate");
}

bool HasEnd(const char (&szPath)[kTNPathSize])
{
    return strnlen(szPath, kTNPathSize) < kTNPathSize;
}

void EndsPaths(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    const TNCaptureElement record = peer.Record(peer.CaptureElement());
    if (!HasEnd(record.szGuidePath))
        throw CBroken("szGuidePath has no end");
    if (!HasEnd(record.szDubPath))
        throw CBroken("szDubPath has no end");
    if (!IsUtf8(record.szGuidePath) || !IsUtf8(record.szDubPath))
        throw CBroken("a path is not UTF-8");
    if (!fs::path(record.szDubPath).is_absolute())
        throw CBroken("szDubPath is no full path: \"" + std::string(record.szDubPath) + "\"");
}

bool IsRegionFinite(const TNRegionTimes& times)
{
    return std::isfinite(times.dStart) && std::isfinite(times.dEnd);
}

void GivesNumbers(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    const TNCaptureElement record = peer.Record(peer.CaptureElement());
    const auto expect = [](bool fGood, const char* szField, double dValue)
    {
        if (!fGood)
            throw CBroken(std::string(szField) + " is " + std::to_string(dValue));
    };
    expect(std::isfinite(record.tDub.dPosition), "dPosition", record.tDub.dPosition);
    expect(std::isfinite(record.tDub.dStart), "dStart", record.tDub.dStart);
    expect(std::isfinite(record.tDub.dEnd), "dEnd", record.tDub.dEnd);
    expect(std::isfinite(record.dSampleRate) && record.dSampleRate > 0.0, "dSampleRate",
           record.dSampleRate);
}

fs::path Dub(const TNCaptureElement& record)
{
    if (!HasEnd(record.szDubPath))
        throw CNotExaminable("the path of the file has no end");
    return record.szDubPath;
}

void ExpectFile(const fs::path& path, const char* szWhen)
{
    std::error_code error;
    const std::uintmax_t nBytes = fs::file_size(path, error);
    if (error)
        throw CBroken("there is no file " + path.string() + " " + szWhen);
    if (nBytes == 0)
        throw CBroken(path.string() + " is empty " + szWhen);
}

void KeepsFile(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    const fs::path dub = Dub(peer.Record(peer.CaptureElement()));
    ExpectFile(dub, "when its element is announced");
    LetPass(bench.dMoment);
    ExpectFile(dub, "before its element is acknowledged");
}

void HasAudio(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    const TNCaptureElement record = peer.Record(peer.CaptureElement());
    const fs::path dub = Dub(record);
    if (!fs::exists(dub))
        throw CNotExaminable("there is no file " + dub.string());
    if (!IsRegionFinite(record.tDub))
        throw CNotExaminable("the region has no bounds");
    SF_INFO info{};
    const SoundFileHandle pFile(sf_open(dub.c_str(), SFM_READ, &info));
    if (!pFile)
        throw CBroken(dub.string() + " is no sound file: " + sf_strerror(nullptr));
    const std::string strRegion = "the region goes from " + std::to_string(record.tDub.dStart) +
                                  " to " + std::to_string(record.tDub.dEnd);
    if (record.tDub.dEnd <= record.tDub.dStart)
        throw CBroken(strRegion + ", which is nothing");
    if (record.tDub.dStart < 0.0 || record.tDub.dEnd > static_cast<double>(info.frames))
        throw CBroken(strRegion + ", and the file has " + std::to_string(info.frames) + " samples");
}

void AnnouncesOnce(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    peer.Capture();
    LetPass(bench.dMoment);
    const std::size_t nHeard = peer.Heard().Count(TNProperty_Elements);
    if (nHeard != 1)
        throw CBroken("one capture was made, and 64000 was raised " + std::to_string(nHeard) +
                      " times");
}

void ExpectCarried(const std::string& strPath)
{
    const std::size_t nAt = strPath.find_first_of("\"\\\r\n");
    if (nAt != std::string::npos)
        throw CBroken("the path " + strPath + " has the byte " +
                      std::to_string(static_cast<unsigned char>(strPath[nAt])) +
                      " in it, at which a script ends or changes it");
    if (!fs::exists(strPath))
        throw CBroken("there is no file " + strPath);
}

// Lets the temporary folder be another one.
class CFolderForNow
{
public:
    explicit CFolderForNow(const fs::path& folder) : m_before(fs::temp_directory_path())
    {
        fs::create_directories(folder);
        setenv("TMPDIR", folder.c_str(), 1);
    }
    ~CFolderForNow() { setenv("TMPDIR", m_before.c_str(), 1); }
    CFolderForNow(const CFolderForNow&) = delete;
    CFolderForNow& operator=(const CFolderForNow&) = delete;

private:
    fs::path m_before;
};

fs::path LongFolder(fs::path folder)
{
    constexpr std::size_t kPiece = 200;
    while (folder.native().size() < kTNPathSize)
        folder /= std::string(kPiece, 'p');
    return folder;
}

void NamesFilesThatAreCarried(const PlugInBench& bench)
{
    {
        const CPlugInPeer peer(bench);
        ExpectCarried(Dub(peer.Record(peer.CaptureElement())));
    }
    const fs::path folder = fs::temp_directory_path();
    for (const fs::path& other :
         {folder / "6\" reel", folder / "a\\n", folder / "a\nb", LongFolder(folder)})
    {
        const CFolderForNow now(other);
        const CPlugInPeer peer(bench);
        peer.Arm();
        if (bench.library.Play(peer.Unit()) != noErr) // as it may
            continue;
        if (!WaitUntil(bench.dTimeout, [&] { return peer.Heard().Count(TNProperty_Elements) > 0; }))
            return;
        ExpectCarried(Dub(peer.Record(peer.NextElement())));
    }
}

void GivesTheFilesRate(const PlugInBench& bench)
{
    const CPlugInPeer peer(bench);
    const TNCaptureElement record = peer.Record(peer.CaptureElement());
    SF_INFO info{};
    const SoundFileHandle pFile(sf_open(Dub(record).c_str(), SFM_READ, &info));
    if (!pFile)
        throw CNotExaminable("the file of the capture cannot be read");
    if (record.dSampleRate != static_cast<double>(info.samplerate))
        throw CBroken("the record says " + std::to_string(record.dSampleRate) +
                      ", and the file has " + std::to_string(info.samplerate));
}

} // namespace

std::vector<PlugInRule> RecordRules()
{
    return {
        {{szAnnouncing, Level::Must, "raise 64000 for every capture that is finished",
          "the view looks for it then, and at no other time"},
         Announces,
         true},
        {{"P13", Level::Must,
          "have an element's index under 64007 and its record under 64002 before it raises 64000",
          "the view looks once for each 64000"},
         IsReadyWhenAnnounced,
         true},
        {{"P14", Level::Must, "write every field of a record that the view reads",
          "what is left out is whatever stood there before"},
         FillsRecord,
         true},
        {{"P15", Level::Must,
          "give paths in UTF-8 that end within their fields, the dub's as a full path",
          "the server looks for the file under this text"},
         EndsPaths,
         true},
        {{"P16", Level::Must, "give position, start and end as finite numbers, and a positive rate",
          "the place on the server's track is computed from them"},
         GivesNumbers,
         true},
        {{"P17", Level::Must, "keep the file from the announcement to the acknowledge",
          "the server reads it in between"},
         KeepsFile,
         true},
        {{"P18", Level::Must, "name a region that lies within the audio of the file",
          "the server refuses what is not there, and nothing is delivered of what is empty"},
         HasAudio,
         true},
        {{"P33", Level::Must, "raise 64000 once for each element",
          "an element that is announced again before it is done is delivered again"},
         AnnouncesOnce,
         true},
        {{"P34", Level::Must,
          "name files by paths without double quotes, backslashes and line ends, of at most 1023 "
          "bytes, and capture nothing where it cannot",
          "the path stands in a script as it is, between double quotes"},
         NamesFilesThatAreCarried,
         true},
        {{"P35", Level::Must, "give the rate of the file",
          "the offset between the timelines is turned into samples with it"},
         GivesTheFilesRate,
         true},
    };
}

} // namespace Tarvane::Conform
