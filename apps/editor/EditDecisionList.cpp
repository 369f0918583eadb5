#include "apps/editor/Interchange.h"

#include <algorithm>
#include <cstdio>

namespace Tarvane::Editor
{

namespace
{

constexpr std::size_t kMostEvents = 999;
constexpr std::size_t kMostTracks = 4;
// Every minute but each tenth goes without its first two numbers.
constexpr std::int64_t kLeftOut = 2;

const FrameRate* FindRate(const std::string& strName)
{
    static const FrameRate rates[] = {{24000, 1001, false, "23.976"}, {24, 1, false, "24"},
                                      {25, 1, false, "25"},           {30000, 1001, false, "29.97"},
                                      {30000, 1001, true, "29.97df"}, {30, 1, false, "30"}};
    const auto found = std::find_if(std::begin(rates), std::end(rates),
                                    [&](const FrameRate& rate) { return rate.strName == strName; });
    return found == std::end(rates) ? nullptr : &*found;
}

// Numbers in a second.
std::int64_t Nominal(const FrameRate& rate)
{
    return (rate.nNumber + rate.nDivisor - 1) / rate.nDivisor;
}

struct Frames
{
    std::int64_t nWhole;
    bool fExact;
};

Frames ToFrames(std::int64_t nSamples, std::int32_t nRate, const FrameRate& rate)
{
    const auto nTicks = static_cast<__int128>(nSamples) * rate.nNumber;
    const auto nTicksInFrame = static_cast<__int128>(nRate) * rate.nDivisor;
    return {static_cast<std::int64_t>(nTicks / nTicksInFrame), nTicks % nTicksInFrame == 0};
}

struct Event
{
    const Region* pRegion;
    std::size_t nTrack;
    Frames place;
    Frames start;
    Frames length;

    bool IsExact() const { return place.fExact && start.fExact && length.fExact; }
};

// In a comment, which is a line.
std::string InOneLine(std::string strText)
{
    std::replace_if(
        strText.begin(), strText.end(), [](unsigned char c) { return c < 0x20; }, '_');
    return strText;
}

std::string EventText(std::size_t nNumber, const Event& event, const EdlSettings& settings)
{
    // The third and the fourth sound track have no column of their own.
    static constexpr const char* channels[kMostTracks] = {"A", "A2", "NONE", "NONE"};
    const auto text = [&](std::int64_t nFrame) { return FrameText(nFrame, settings.rate); };
    const std::int64_t nRecord = settings.nOffset + event.place.nWhole;
    char line[128];
    std::snprintf(line, sizeof line, "%03zu  AX       %-5s C        %s %s %s %s\n", nNumber,
                  channels[event.nTrack], text(event.start.nWhole).c_str(),
                  text(event.start.nWhole + event.length.nWhole).c_str(), text(nRecord).c_str(),
                  text(nRecord + event.length.nWhole).c_str());
    std::string strEvent = line;
    if (event.nTrack >= 2)
        strEvent += "AUD   " + std::to_string(event.nTrack + 1) + "\n";
    strEvent += "* FROM CLIP NAME: " + InOneLine(event.pRegion->strName) +
                "\n* SOURCE FILE: " + InOneLine(event.pRegion->strFile) + "\n";
    if (!event.IsExact())
        strEvent += "* BETWEEN FRAMES: TIMELINE SAMPLE " +
                    std::to_string(event.pRegion->nPosition) + ", FILE SAMPLE " +
                    std::to_string(event.pRegion->nStart) + ", " +
                    std::to_string(event.pRegion->nLength) + " SAMPLES\n";
    return strEvent;
}

void RequireWhole(const Event& event, const EdlSettings& settings)
{
    const Region& region = *event.pRegion;
    if (!event.IsExact() && !settings.fBetweenFrames)
        throw CEditorError(
            "the region " + region.strName + " at sample " + std::to_string(region.nPosition) +
            ", from " + std::to_string(region.nStart) + ", " + std::to_string(region.nLength) +
            " long, does not begin and end on frames of " + settings.rate.strName +
            " a second; with --between-frames it goes to the frame before, and the list says so.");
    if (event.length.nWhole == 0)
        throw CEditorError("the region " + region.strName + " is shorter than a frame.");
}

} // namespace

FrameRate FrameRateNamed(const std::string& strName)
{
    if (const FrameRate* pRate = FindRate(strName))
        return *pRate;
    throw CUsageError("\"" + strName +
                      "\" is no rate of frames; there are 23.976, 24, 25, 29.97, "
                      "29.97df and 30.");
}

std::string FrameText(std::int64_t nFrame, const FrameRate& rate)
{
    const std::int64_t nSecond = Nominal(rate);
    std::int64_t nNumber = nFrame;
    if (rate.fDropFrame)
    {
        const std::int64_t nMinute = 60 * nSecond - kLeftOut;
        const std::int64_t nTenMinutes = 10 * nMinute + kLeftOut;
        const std::int64_t nInTen = nFrame % nTenMinutes;
        nNumber += nFrame / nTenMinutes * 9 * kLeftOut;
        if (nInTen >= kLeftOut)
            nNumber += (nInTen - kLeftOut) / nMinute * kLeftOut;
    }
    const std::int64_t nSeconds = nNumber / nSecond;
    if (nFrame < 0 || nSeconds >= 24 * 3600)
        throw CEditorError("frame " + std::to_string(nFrame) + " is not on a clock of 24 hours.");
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d%c%02d", static_cast<int>(nSeconds / 3600),
                  static_cast<int>(nSeconds / 60 % 60), static_cast<int>(nSeconds % 60),
                  rate.fDropFrame ? ';' : ':', static_cast<int>(nNumber % nSecond));
    return text;
}

std::int64_t FrameNumbered(const std::string& strText, const FrameRate& rate)
{
    int nHour = 0, nMinute = 0, nSecond = 0, nFrame = 0, nRead = 0;
    const int nValues = std::sscanf(strText.c_str(), "%2d:%2d:%2d%*1[:;]%2d%n", &nHour, &nMinute,
                                    &nSecond, &nFrame, &nRead);
    const std::int64_t nMinutes = nHour * 60 + nMinute;
    std::int64_t nNumber = (nMinutes * 60 + nSecond) * Nominal(rate) + nFrame;
    if (rate.fDropFrame)
        nNumber -= kLeftOut * (nMinutes - nMinutes / 10);
    // What is out of range, or left out, is shown otherwise than it was written.
    std::string strShown =
        nValues == 4 && nNumber >= 0 && nHour < 24 ? FrameText(nNumber, rate) : "";
    std::string strWritten = strText;
    std::replace(strShown.begin(), strShown.end(), ';', ':');
    std::replace(strWritten.begin(), strWritten.end(), ';', ':');
    if (strShown != strWritten || strShown.empty())
        throw CUsageError("\"" + strText + "\" is no frame of a clock with " + rate.strName +
                          " frames a second; write it as 01:00:00:00.");
    return nNumber;
}

std::string EditDecisionList(const Model& model, const EdlSettings& settings)
{
    RequireAble({.szName = "an edit decision list",
                 .fMutes = true,
                 .fTakesSeveralRates = true,
                 .nLargestPosition = std::int64_t(1) << 53},
                model);
    std::vector<Event> events;
    std::string strTracks;
    std::string strMuted;
    std::size_t nTracks = 0;
    for (const Track& track : model.tracks)
    {
        const std::size_t nBefore = events.size();
        for (const Region& region : track.regions)
        {
            if (region.fMuted)
            {
                strMuted += "* LEFT OUT, MUTED: " + InOneLine(region.strName) + "\n";
                continue;
            }
            const auto frames = [&](std::int64_t nSamples)
            { return ToFrames(nSamples, region.nRate, settings.rate); };
            const Event event{&region, nTracks, frames(region.nPosition), frames(region.nStart),
                              frames(region.nLength)};
            RequireWhole(event, settings);
            events.push_back(event);
        }
        if (events.size() == nBefore)
            continue;
        nTracks++;
        strTracks += "* TRACK " + std::to_string(nTracks) + ": " + InOneLine(track.strName) + "\n";
    }
    if (events.size() > kMostEvents)
        throw CEditorError("such a list holds 999 events, and these are " +
                           std::to_string(events.size()) +
                           "; take a track at a time with --track.");
    if (nTracks > kMostTracks)
        throw CEditorError("such a list holds four sound tracks, and these are " +
                           std::to_string(nTracks) + "; take a track at a time with --track.");
    std::stable_sort(events.begin(), events.end(),
                     [](const Event& a, const Event& b)
                     { return a.place.nWhole < b.place.nWhole; });

    std::string strText = "TITLE: " + InOneLine(settings.strTitle) +
                          "\nFCM: " + (settings.rate.fDropFrame ? "DROP FRAME" : "NON-DROP FRAME") +
                          "\n* RATE: " + settings.rate.strName +
                          " FRAMES PER SECOND\n* OFFSET: " + "THE TIMELINE BEGINS AT " +
                          FrameText(settings.nOffset, settings.rate) + "\n" + strTracks + strMuted;
    for (std::size_t n = 0; n < events.size(); n++)
        strText += EventText(n + 1, events[n], settings);
    return strText;
}

} // namespace Tarvane::Editor
