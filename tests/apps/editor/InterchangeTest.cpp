#include "apps/editor/Interchange.h"

#include <gmock/gmock.h>

using namespace Tarvane::Editor;
using namespace testing;

namespace
{

Region At(std::int64_t nPosition, std::int64_t nStart = 0, std::int64_t nLength = 48000)
{
    Region region;
    region.strFile = "/takes/one.wav";
    region.strName = "one";
    region.nPosition = nPosition;
    region.nStart = nStart;
    region.nLength = nLength;
    region.nRate = 48000;
    return region;
}

EdlSettings At25()
{
    EdlSettings settings;
    settings.strTitle = "demo";
    settings.nOffset = 90000;
    return settings;
}

template <typename Write> std::string Refusal(Write&& write)
{
    try
    {
        write();
    }
    catch (const Tarvane::CUsageError& error)
    {
        return error.what();
    }
    return "";
}

std::string EdlRefusal(const Model& model)
{
    return Refusal([&] { EditDecisionList(model, At25()); });
}

} // namespace

TEST(EditDecisionList, AnEventARegionByTheirPlacesWithRateAndOffset)
{
    Region muted = At(0);
    muted.fMuted = true;
    muted.strName = "silent";
    const Model model{{{"Vox", {At(96000, 1920, 48000), muted}},
                       {"Empty", {}},
                       {"Guitar", {At(48000)}},
                       {"Third", {At(0)}}}};
    EXPECT_EQ(EditDecisionList(model, At25()),
              "TITLE: demo\nFCM: NON-DROP FRAME\n* RATE: 25 FRAMES PER SECOND\n"
              "* OFFSET: THE TIMELINE BEGINS AT 01:00:00:00\n* TRACK 1: Vox\n* TRACK 2: Guitar\n"
              "* TRACK 3: Third\n* LEFT OUT, MUTED: silent\n"
              "001  AX       NONE  C        00:00:00:00 00:00:01:00 01:00:00:00 01:00:01:00\n"
              "AUD   3\n* FROM CLIP NAME: one\n* SOURCE FILE: /takes/one.wav\n"
              "002  AX       A2    C        00:00:00:00 00:00:01:00 01:00:01:00 01:00:02:00\n"
              "* FROM CLIP NAME: one\n* SOURCE FILE: /takes/one.wav\n"
              "003  AX       A     C        00:00:00:01 00:00:01:01 01:00:02:00 01:00:03:00\n"
              "* FROM CLIP NAME: one\n* SOURCE FILE: /takes/one.wav\n");
}

TEST(EditDecisionList, WhatFramesCannotHoldIsRefusedOrSaid)
{
    for (const Region& region : {At(1), At(0, 1), At(0, 0, 48001)})
    {
        const Model model{{{"Vox", {region}}}};
        EXPECT_THAT(EdlRefusal(model),
                    HasSubstr("does not begin and end on frames of 25 a second"));
        EdlSettings settings = At25();
        settings.fBetweenFrames = true;
        EXPECT_THAT(EditDecisionList(model, settings),
                    HasSubstr("* BETWEEN FRAMES: TIMELINE SAMPLE " +
                              std::to_string(region.nPosition) + ", FILE SAMPLE " +
                              std::to_string(region.nStart) + ", " +
                              std::to_string(region.nLength) + " SAMPLES\n"));
    }
    EdlSettings settings = At25();
    settings.fBetweenFrames = true;
    EXPECT_THAT(EditDecisionList({{{"Vox", {At(96000 + 1919)}}}}, settings),
                HasSubstr("01:00:02:00 01:00:03:00\n"));
    EXPECT_THAT(EditDecisionList({{{"Vox", {At(0)}}}}, settings), Not(HasSubstr("BETWEEN")));
    EXPECT_THAT(Refusal(
                    [&] {
                        EditDecisionList({{{"Vox", {At(0, 0, 1919)}}}}, settings);
                    }),
                HasSubstr("shorter than a frame"));
}

TEST(EditDecisionList, WhatAListCannotHoldIsRefused)
{
    EXPECT_THAT(EdlRefusal({{{"Vox", std::vector<Region>(1000, At(0))}}}), HasSubstr("999 events"));
    EXPECT_EQ(EdlRefusal({{{"Vox", std::vector<Region>(999, At(0))}}}), "");
    const Model five{std::vector<Track>(5, {"Vox", {At(0)}})};
    EXPECT_THAT(EdlRefusal(five), HasSubstr("four sound tracks"));
    EXPECT_THAT(EdlRefusal({{{"Vox", {At(48000LL * 3600 * 23)}}}}), HasSubstr("clock of 24 hours"));
    Region before = At(-1920);
    EXPECT_THAT(EdlRefusal({{{"Vox", {before}}}}), HasSubstr("begins before the timeline"));
    Region left = At(0);
    left.channels = {0};
    EXPECT_THAT(EdlRefusal({{{"Vox", {left}}}}), HasSubstr("only some channels"));
}

TEST(EditDecisionList, FramesAreCountedAsEachRateCountsThem)
{
    const auto text = [](std::int64_t nFrame, const char* szRate)
    { return FrameText(nFrame, FrameRateNamed(szRate)); };
    EXPECT_EQ(text(86399, "24"), "00:59:59:23");
    EXPECT_EQ(text(1800, "29.97"), "00:01:00:00");
    EXPECT_EQ(text(1799, "29.97df"), "00:00:59;29");
    EXPECT_EQ(text(1800, "29.97df"), "00:01:00;02");
    EXPECT_EQ(text(17981, "29.97df"), "00:09:59;29");
    EXPECT_EQ(text(17982, "29.97df"), "00:10:00;00");
    EXPECT_EQ(text(107892, "29.97df"), "01:00:00;00");
    for (const char* szRate : {"23.976", "24", "25", "29.97", "29.97df", "30"})
    {
        const FrameRate rate = FrameRateNamed(szRate);
        for (std::int64_t nFrame = 0; nFrame < 40000; nFrame += 7)
            ASSERT_EQ(FrameNumbered(FrameText(nFrame, rate), rate), nFrame) << szRate;
    }
    for (const char* szWrong : {"", "1:0:0:0", "00:00:00:25", "00:60:00:00", "24:00:00:00",
                                "00:00:00:00x", "-1:00:00:00"})
        EXPECT_THROW(FrameNumbered(szWrong, FrameRate{}), Tarvane::CUsageError) << szWrong;
    EXPECT_THROW(FrameNumbered("00:01:00;00", FrameRateNamed("29.97df")), Tarvane::CUsageError);
    EXPECT_THROW(FrameRateNamed("26"), Tarvane::CUsageError);
}

TEST(EditDecisionList, AFrameOf2997LastsAsLongAsItDoes)
{
    EdlSettings settings = At25();
    settings.rate = FrameRateNamed("29.97");
    settings.nOffset = 0;
    // 30000/1001 frames a second: 48048 samples are 30 of them.
    EXPECT_THAT(EditDecisionList({{{"Vox", {At(48048, 0, 48048)}}}}, settings),
                HasSubstr("00:00:00:00 00:00:01:00 00:00:01:00 00:00:02:00\n"));
    EXPECT_THROW(EditDecisionList({{{"Vox", {At(48000, 0, 48048)}}}}, settings), CEditorError);
}

TEST(ReaperProject, EveryRegionIsAnItemWithoutFadesAtItsSeconds)
{
    Region region = At(123457, 7, 100);
    region.fMuted = true;
    region.channels = {1};
    EXPECT_EQ(ReaperProject({{{"Say \"hi\"", {region}}, {"Empty", {}}}}, 3600),
              "<REAPER_PROJECT 0.1 \"6.0\" 0\n  SAMPLERATE 48000 1 0\n  PROJOFFS 3600 0 0\n"
              "  <TRACK\n    NAME 'Say \"hi\"'\n    <ITEM\n      POSITION 2.572020833333333\n"
              "      LENGTH 0.0020833333333333333\n      LOOP 0\n      FADEIN 0 0 0 0 0 0 0\n"
              "      FADEOUT 0 0 0 0 0 0 0\n      MUTE 1 0\n      NAME \"one\"\n"
              "      SOFFS 0.00014583333333333335\n      CHANMODE 4\n      <SOURCE WAVE\n"
              "        FILE \"/takes/one.wav\"\n      >\n    >\n  >\n  <TRACK\n    NAME \"Empty\"\n"
              "  >\n>\n");
}

TEST(ReaperProject, ChannelsThatAnItemCannotChooseAreRefused)
{
    const auto mode = [](std::vector<std::int32_t> channels)
    {
        Region region = At(0);
        region.channels = std::move(channels);
        return ReaperProject({{{"Vox", {region}}}}, 0);
    };
    EXPECT_THAT(mode({}), HasSubstr("CHANMODE 0\n"));
    EXPECT_THAT(mode({0}), HasSubstr("CHANMODE 3\n"));
    EXPECT_THAT(mode({2, 3}), HasSubstr("CHANMODE 69\n"));
    EXPECT_THROW(mode({0, 2}), CEditorError);
    EXPECT_THROW(mode({0, 1, 2}), CEditorError);
}

TEST(ReaperProject, FilesOfOtherKindsAndNamesAreWhatTheyAre)
{
    Region region = At(0);
    region.strFile = "/a\"b'c.FLAC";
    const std::string strText = ReaperProject({{{"Vox", {region}}}}, 0);
    EXPECT_THAT(strText, HasSubstr("<SOURCE FLAC\n        FILE `/a\"b'c.FLAC`\n"));
    for (const char* szFile : {"/a\"b'c`d.wav", "/a\nb.wav"})
    {
        region.strFile = szFile;
        EXPECT_THROW(ReaperProject({{{"Vox", {region}}}}, 0), CEditorError) << szFile;
    }
    Region other = At(44100, 0, 44100);
    other.nRate = 44100;
    EXPECT_THAT(ReaperProject({{{"Vox", {At(0), other}}}}, 0), HasSubstr("POSITION 1\n"));
    EXPECT_THROW(ReaperProject({{{"Vox", {At(-1)}}}}, 0), CEditorError);
}
