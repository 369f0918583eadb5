// Captured audio on the tracks of the selected document.
#include "apps/server/script/ScriptFunctions.h"
#include "apps/server/sound/Duplicates.h"
#include "apps/server/sound/SoundFiles.h"
#include "utils/UnicodeText.h"

namespace Tarvane::Server
{

namespace
{

// The one value that says that a list of channels follows.
constexpr std::int64_t kChannelsFollow = 1;
constexpr std::size_t kMostChannels = 1024;

std::string PathArgument(const CScriptArguments& arguments, int nPlace)
{
    std::string strPath = arguments.String(nPlace);
    if (!IsUtf8(strPath))
        throw CScriptError("the file's path is not UTF-8 text");
    return strPath;
}

// Fills in the stretch and the place from three arguments, the first of them at nPlace.
void ReadPlace(Region& region, const CScriptArguments& arguments, int nPlace)
{
    region.nPosition = arguments.Integer(nPlace);
    region.nStart = arguments.Integer(nPlace + 1);
    region.nEnd = arguments.Integer(nPlace + 2);
    if (const auto flaw = RegionPlaceFlaw(region))
        throw CScriptError(*flaw);
}

std::vector<std::int32_t> ChannelsArgument(const CScriptArguments& arguments, int nPlace,
                                           const CSoundFile& file)
{
    std::vector<std::int32_t> channels;
    for (std::int64_t nChannel : arguments.Integers(nPlace, kMostChannels))
    {
        if (nChannel < 0 || nChannel >= file.Channels())
            throw CScriptError("the file has no channel " + std::to_string(nChannel) + "; it has " +
                               std::to_string(file.Channels()) + ", counted from 0");
        if (!channels.empty() && nChannel <= channels.back())
            throw CScriptError("the channel numbers do not rise");
        channels.push_back(static_cast<std::int32_t>(nChannel));
    }
    if (channels.empty())
        throw CScriptError("the list of channels is empty");
    return channels;
}

ScriptValue CheckForDuplicate(CScriptContext& context, const CScriptArguments& arguments)
{
    Region captured;
    captured.nTrackId = context.FindTrack(arguments.Integer(1)).nId;
    captured.strPath = PathArgument(arguments, 2);
    ReadPlace(captured, arguments, 3);

    CSoundFile file(captured.strPath);
    file.RequireFrames(captured.nEnd);
    captured.nSampleRate = file.SampleRate();
    return std::int64_t(HasDuplicate(context.Session(), captured) ? 1 : 0);
}

ScriptValue AddRegion(CScriptContext& context, const CScriptArguments& arguments)
{
    Region region;
    region.nTrackId = context.FindTrack(arguments.Integer(1)).nId;
    region.strPath = PathArgument(arguments, 2);
    const bool fSelect = arguments.Boolean(3);
    region.fMuted = arguments.Boolean(4);
    ReadPlace(region, arguments, 5);

    CSoundFile file(region.strPath);
    file.RequireFrames(region.nEnd);
    region.nSampleRate = file.SampleRate();
    if (arguments.Has(8))
    {
        if (arguments.Integer(8) != kChannelsFollow)
            throw CScriptError("argument 8 can only be 1, for the channels that follow");
        region.channels = ChannelsArgument(arguments, 9, file);
    }

    const std::int64_t nRegionId = context.Session().AddRegion(region);
    if (fSelect)
        context.Session().SelectRegion(context.Selected(), nRegionId);
    return nRegionId;
}

} // namespace

std::vector<ScriptFunction> RegionFunctions(CScriptContext& context)
{
    return {
        {"CheckForDuplicateRegion", [&context](const CScriptArguments& arguments)
         { return CheckForDuplicate(context, arguments); }},
        {"AddAudioRegion",
         [&context](const CScriptArguments& arguments) { return AddRegion(context, arguments); },
         true},
    };
}

} // namespace Tarvane::Server
