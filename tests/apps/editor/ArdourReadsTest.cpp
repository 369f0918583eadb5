// What Ardour itself finds in the sessions that are made for it.
#include "apps/editor/ArdourEditor.h"
#include "apps/support/process/ChildProcess.h"
#include "tests/apps/editor/EditorFixture.h"

#include <chrono>
#include <cstdlib>
#include <gmock/gmock.h>
#include <map>
#include <sstream>

using namespace Tarvane::Editor;
using namespace TarvaneTest;
using namespace testing;
using Tarvane::CChildProcess;

namespace
{

constexpr std::chrono::seconds kLong{90};

constexpr const char* szExportPreset = R"(<?xml version="1.0" encoding="UTF-8"?>
<ExportPreset id="75969a1c-3133-4694-864b-a1fa50e43349" name="exact">
  <ExportFormat id="20b4ab09-6452-4cb3-bd66-b921cdbd2942"/>
  <ExportFilename>
    <Folder relative="1" path="export"/>
    <Field name="timespan" enabled="1"/>
  </ExportFilename>
</ExportPreset>
)";

class ArdourReads : public EditorFixture
{
protected:
    ArdourReads()
    {
        std::filesystem::create_directories(folder / "config/ardour7/export");
        WriteText(folder / "config/ardour7/export/exact.preset", szExportPreset);
        ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
        ::setenv("EDITOR_FOLDER", Session().c_str(), 1);
        ::setenv("EDITOR_NAME", "edit", 1);
        ::setenv("EDITOR_RATE", "48000", 1);
        ::unsetenv("EDITOR_EXPORT");
        ::unsetenv("EDITOR_HOLD");
    }

    std::filesystem::path Session() const { return folder / "edit"; }

    // It crashes or stands still at times, in what is its own ("double free"), before it is done or
    // after: what counts is that it gets there in one of three runs.
    std::string Read()
    {
        constexpr int kRuns = 3;
        std::string strSaid;
        for (int nRun = 0; nRun < kRuns; ++nRun)
        {
            std::filesystem::remove(folder / "EXPORT.wav");
            CChildProcess ardour({"ardour7-lua", ARDOUR_READS});
            ardour.CloseInput();
            if (ardour.WaitForLine("done", kLong))
                return ardour.Output();
            strSaid += ardour.ErrorOutput();
        }
        ADD_FAILURE() << "Ardour is never done: " << strSaid;
        return "";
    }

    // The lines that Ardour is to print of a region.
    static std::string Line(const std::string& strTrack, const Region& region,
                            const std::string& strSources)
    {
        std::ostringstream line;
        line << "region\t" << strTrack << '\t' << region.strName << '\t' << region.nPosition << '\t'
             << region.nStart << '\t' << region.nLength << '\t'
             << (region.fMuted ? "true" : "false") << "\tfalse\t" << strSources;
        return line.str();
    }

    static std::vector<std::string> RegionLines(const std::string& strOutput)
    {
        std::vector<std::string> lines;
        std::istringstream output(strOutput);
        for (std::string strLine; std::getline(output, strLine);)
        {
            if (strLine.starts_with("region\t"))
                lines.push_back(strLine);
        }
        return lines;
    }
};

// A model of which every sample is known, and what an export of it has to hold.
struct Known
{
    Model model;
    std::vector<std::string> lines;
    std::vector<double> exported; // of the channels of the master, side by side
};

} // namespace

class ArdourReadsRates : public ArdourReads, public WithParamInterface<std::pair<int, int>>
{
protected:
    static constexpr std::size_t kMasterChannels = 4;
    static constexpr std::int64_t kLength = 97;
    static constexpr int kExported = 300;

    // Regions one behind the other, on tracks of one, two and four channels, from the middle of
    // files, some of one channel of two, some muted. Those behind the first few hundred lie ten
    // minutes farther on, behind what is exported.
    Known Make(int nRate, int nRegions, int nTracks)
    {
        Known known;
        const int channelsOf[] = {1, 2, 4};
        for (int nTrack = 0; nTrack < nTracks; nTrack++)
            known.model.tracks.push_back({"Track " + std::to_string(nTrack), {}});
        for (int nChannels : channelsOf)
        {
            Sound("take" + std::to_string(nChannels) + ".wav", 5000, nChannels, nRate,
                  static_cast<unsigned>(nChannels));
            sounds.push_back(ReadSamples(folder / ("take" + std::to_string(nChannels) + ".wav")));
        }
        std::int64_t nAt = 12345;
        known.exported.resize(static_cast<std::size_t>(nAt + kExported * (kLength + 3)) *
                              kMasterChannels);
        for (int n = 0; n < nRegions; n++)
        {
            if (n == kExported)
                nAt += 600 * nRate;
            Track& track = known.model.tracks[static_cast<std::size_t>(n % nTracks)];
            const std::size_t nKind = static_cast<std::size_t>(n % nTracks) % 3;
            const std::string strFile = "take" + std::to_string(channelsOf[nKind]) + ".wav";
            Region region = RegionOf((folder / strFile).string(), nAt, kLength);
            region.nRate = nRate;
            region.nStart = (n * 31) % 4000;
            region.strName = "take " + std::to_string(n);
            region.fMuted = n % 11 == 5;
            if (nKind == 1 && n % 2 == 0)
                region.channels = {1};
            track.regions.push_back(region);

            std::string strSources;
            for (int nChannel = 0; nChannel < channelsOf[nKind]; nChannel++)
            {
                if (region.channels.empty() || nChannel == 1)
                    strSources += " " + strFile + ":" + std::to_string(nChannel);
            }
            known.lines.push_back(Line(track.strName, region, strSources));
            if (!region.fMuted && n < kExported)
                Play(known, region, static_cast<std::size_t>(channelsOf[nKind]), sounds[nKind]);
            nAt += kLength + n % 4;
        }
        return known;
    }

    // What one channel has sounds on the first two.
    void Play(Known& known, const Region& region, std::size_t nChannels,
              const std::vector<double>& sound) const
    {
        for (std::int64_t n = 0; n < kLength; n++)
        {
            for (std::size_t nOut = 0; nOut < std::max<std::size_t>(nChannels, 2); nOut++)
            {
                const std::size_t nIn =
                    !region.channels.empty() ? 1 : std::min(nOut, nChannels - 1);
                known.exported[static_cast<std::size_t>(region.nPosition + n) * kMasterChannels +
                               nOut] =
                    sound[static_cast<std::size_t>(region.nStart + n) * nChannels + nIn];
            }
        }
    }

    std::vector<std::vector<double>> sounds;
};

TEST_P(ArdourReadsRates, EveryRegionLiesWhereItWasToldAndAnExportIsTheTakes)
{
    const auto [nRate, nRegions] = GetParam();
    const Known known = Make(nRate, nRegions, 6);
    CArdourEditor(Session()).Take(known.model);

    const std::size_t nFrames = known.exported.size() / kMasterChannels;
    ::setenv("EDITOR_RATE", std::to_string(nRate).c_str(), 1);
    ::setenv("EDITOR_EXPORT", std::to_string(nFrames).c_str(), 1);
    const std::vector<std::string> lines = RegionLines(Read());
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(nRegions));
    const std::multiset<std::string> found(lines.begin(), lines.end());
    const std::multiset<std::string> told(known.lines.begin(), known.lines.end());
    const auto [wrong, right] = std::mismatch(found.begin(), found.end(), told.begin(), told.end());
    if (wrong != found.end())
        ADD_FAILURE() << *wrong << "\n" << *right;

    const std::vector<double> exported = ReadSamples(folder / "EXPORT.wav");
    ASSERT_GE(exported.size(), known.exported.size());
    std::size_t nWrong = 0;
    for (std::size_t n = 0; n < known.exported.size(); n++)
        nWrong += exported[n] != known.exported[n];
    EXPECT_EQ(nWrong, 0U) << "of " << known.exported.size();
}
INSTANTIATE_TEST_SUITE_P(Rates, ArdourReadsRates,
                         Values(std::pair(48000, 10000), std::pair(44100, 400),
                                std::pair(96000, 400)),
                         [](const auto& info) { return std::to_string(info.param.first); });
