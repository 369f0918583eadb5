#include "apps/editor/Editor.h"

#include "apps/editor/ArdourEditor.h"
#include "apps/editor/AudacityEditor.h"
#include "utils/UnicodeText.h"

namespace Tarvane::Editor
{

namespace
{

[[noreturn]] void Refuse(const Abilities& table, const Region& region, const std::string& strWhy)
{
    throw CEditorError("the region " + region.strName + " cannot go to " + table.szName + ": " +
                       strWhy + ".");
}

} // namespace

std::optional<std::string> WhyUnable(const Abilities& table, const Region& region)
{
    if (region.nLength <= 0 || region.nStart < 0 || region.nRate <= 0)
        return "it holds no audio";
    if (region.nPosition < 0)
        return "it begins before the timeline, at sample " + std::to_string(region.nPosition);
    if (region.nPosition > table.nLargestPosition - region.nLength)
        return "it lies too far along the timeline to be placed exactly";
    if (table.nLargestTime != 0 &&
        region.nPosition > table.nLargestTime * region.nRate - region.nLength)
        return "it lies too far along the timeline, behind " + std::to_string(table.nLargestTime) +
               " seconds";
    if (region.fMuted && !table.fMutes)
        return "it is muted, and would sound there";
    if (!region.channels.empty() && !table.fTakesSomeChannels)
        return "it takes only some channels of its file";
    if (table.takesRate != nullptr && !table.takesRate(region.nRate))
        return "audio of " + std::to_string(region.nRate) +
               " samples per second cannot be placed exactly";
    return std::nullopt;
}

void RequireAble(const Abilities& table, const Model& model)
{
    std::int32_t nRate = 0;
    for (const Track& track : model.tracks)
    {
        for (const Region& region : track.regions)
        {
            if (const auto why = WhyUnable(table, region))
                Refuse(table, region, *why);
            if (nRate != 0 && nRate != region.nRate && !table.fTakesSeveralRates)
                Refuse(table, region,
                       "its rate is " + std::to_string(region.nRate) +
                           ", that of the regions before it " + std::to_string(nRate) +
                           ", and one session there has one rate");
            nRate = region.nRate;
        }
    }
}

void RequireText(const Model& model)
{
    for (const Track& track : model.tracks)
    {
        if (!IsUtf8(track.strName))
            throw CEditorError("the name of a track is not UTF-8 text.");
        for (const Region& region : track.regions)
        {
            if (!IsUtf8(region.strFile) || !IsUtf8(region.strName))
                throw CEditorError("the name of a file is not UTF-8 text.");
        }
    }
}

std::unique_ptr<CEditor> MakeEditor(const std::string& strKindAndPlace)
{
    const std::size_t nColon = strKindAndPlace.find(':');
    const std::string strKind = strKindAndPlace.substr(0, nColon);
    const std::string strPlace =
        nColon == std::string::npos ? "" : strKindAndPlace.substr(nColon + 1);
    if (strKind == "ardour" && !strPlace.empty())
        return std::make_unique<CArdourEditor>(strPlace);
    if (strKind == "audacity" && !strPlace.empty())
        return std::make_unique<CAudacityEditor>(strPlace);
    throw CUsageError("\"" + strKindAndPlace +
                      "\" is no editor; there is ardour:FOLDER and audacity:PROJECT.aup3.");
}

} // namespace Tarvane::Editor
