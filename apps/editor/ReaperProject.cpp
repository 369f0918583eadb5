#include "apps/editor/Interchange.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>

namespace Tarvane::Editor
{

namespace
{

constexpr std::int32_t kUsualRate = 48000;
// Modes of an item's channels; channels are counted from 0.
constexpr int kAllChannels = 0;
constexpr int kOneChannel = 3;
constexpr int kTwoChannels = 67;

// In whichever quotes do not occur in it; a line's end would end it.
std::string Quoted(std::string strText)
{
    std::replace_if(
        strText.begin(), strText.end(), [](unsigned char c) { return c < 0x20; }, '_');
    for (char quote : {'"', '\'', '`'})
    {
        if (strText.find(quote) == std::string::npos)
            return quote + strText + quote;
    }
    std::replace(strText.begin(), strText.end(), '`', '\'');
    return '`' + strText + '`';
}

std::string Number(double d)
{
    char text[64];
    const auto result = std::to_chars(text, text + sizeof text, d, std::chars_format::fixed);
    return {text, result.ptr};
}

// The nearest number of seconds: places up to 2^53 samples stay apart.
std::string Seconds(std::int64_t nSamples, std::int32_t nRate)
{
    return Number(static_cast<double>(nSamples) / nRate);
}

int ChannelMode(const Region& region)
{
    const std::vector<std::int32_t>& channels = region.channels;
    if (channels.empty())
        return kAllChannels;
    if (channels.size() == 1)
        return kOneChannel + channels[0];
    if (channels.size() == 2 && channels[1] == channels[0] + 1)
        return kTwoChannels + channels[0];
    throw CEditorError("the region " + region.strName +
                       " takes channels of its file that an item " +
                       "there cannot choose: it takes all, one, or two neighbours.");
}

const char* SourceKind(const std::string& strFile)
{
    std::string strExtension = std::filesystem::path(strFile).extension().string();
    std::transform(strExtension.begin(), strExtension.end(), strExtension.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    if (strExtension == ".flac")
        return "FLAC";
    if (strExtension == ".ogg")
        return "VORBIS";
    return strExtension == ".mp3" ? "MP3" : "WAVE";
}

std::string FileText(const Region& region)
{
    // A path in quotes of another kind would be another path.
    const std::string strQuoted = Quoted(region.strFile);
    if (strQuoted.substr(1, strQuoted.size() - 2) != region.strFile)
        throw CEditorError("the path " + region.strFile + " cannot be written into the project.");
    return strQuoted;
}

std::string ItemText(const Region& region)
{
    return "    <ITEM\n      POSITION " + Seconds(region.nPosition, region.nRate) +
           "\n      LENGTH " + Seconds(region.nLength, region.nRate) +
           "\n      LOOP 0\n      FADEIN 0 0 0 0 0 0 0\n      FADEOUT 0 0 0 0 0 0 0\n      MUTE " +
           (region.fMuted ? "1" : "0") + " 0\n      NAME " + Quoted(region.strName) +
           "\n      SOFFS " + Seconds(region.nStart, region.nRate) + "\n      CHANMODE " +
           std::to_string(ChannelMode(region)) + "\n      <SOURCE " + SourceKind(region.strFile) +
           "\n        FILE " + FileText(region) + "\n      >\n    >\n";
}

} // namespace

std::string ReaperProject(const Model& model, double dOffset)
{
    RequireAble({.szName = "a REAPER project",
                 .fMutes = true,
                 .fTakesSomeChannels = true,
                 .fTakesSeveralRates = true,
                 .nLargestPosition = std::int64_t(1) << 53},
                model);
    std::int32_t nRate = 0;
    std::string strTracks;
    for (const Track& track : model.tracks)
    {
        strTracks += "  <TRACK\n    NAME " + Quoted(track.strName) + "\n";
        for (const Region& region : track.regions)
        {
            nRate = nRate == 0 ? region.nRate : nRate;
            strTracks += ItemText(region);
        }
        strTracks += "  >\n";
    }
    return "<REAPER_PROJECT 0.1 \"6.0\" 0\n  SAMPLERATE " +
           std::to_string(nRate == 0 ? kUsualRate : nRate) + " 1 0\n  PROJOFFS " + Number(dOffset) +
           " 0 0\n" + strTracks + ">\n";
}

} // namespace Tarvane::Editor
