#include "apps/editor/Editor.h"

#include <gmock/gmock.h>

using namespace Tarvane::Editor;
using namespace testing;

namespace
{

Model With(const Region& region)
{
    return {{{"Vox", {region}}}};
}

Region Plain()
{
    Region region;
    region.strName = "take";
    region.nLength = 10;
    region.nRate = 48000;
    return region;
}

std::string Refusal(const Abilities& table, const Model& model)
{
    try
    {
        RequireAble(table, model);
    }
    catch (const CEditorError& error)
    {
        return error.what();
    }
    return "";
}

} // namespace

TEST(Editor, WhatTheTableDoesNotPromiseIsRefused)
{
    const Abilities none{.szName = "Nothing", .nLargestPosition = 100};
    const Abilities all{.szName = "All",
                        .fMutes = true,
                        .fTakesSomeChannels = true,
                        .fTakesSeveralRates = true,
                        .nLargestPosition = 100};
    Region muted = Plain();
    muted.fMuted = true;
    Region left = Plain();
    left.channels = {0};
    Region other = Plain();
    other.nRate = 44100;
    Region last = Plain();
    last.nPosition = 90;
    Region far = Plain();
    far.nPosition = 91;
    EXPECT_THAT(Refusal(none, With(muted)), HasSubstr("cannot go to Nothing: it is muted"));
    EXPECT_THAT(Refusal(none, With(left)), HasSubstr("only some channels"));
    EXPECT_THAT(Refusal(none, {{{"Vox", {Plain()}}, {"Guitar", {other}}}}),
                HasSubstr("its rate is 44100"));
    for (const Region& region : {Plain(), muted, left, other, last})
        EXPECT_EQ(Refusal(all, With(region)), "");
    EXPECT_EQ(Refusal(all, {{{"Vox", {Plain()}}, {"Guitar", {other}}}}), "");
    EXPECT_THAT(Refusal(all, With(far)), HasSubstr("too far"));
    const Abilities seconds{.szName = "Clock", .nLargestPosition = 1 << 30, .nLargestTime = 2};
    last.nPosition = 2 * 48000 - 10;
    far.nPosition = 2 * 48000 - 9;
    EXPECT_EQ(Refusal(seconds, With(last)), "");
    EXPECT_THAT(Refusal(seconds, With(far)), HasSubstr("behind 2 seconds"));
}

TEST(Editor, ARegionWithoutAudioOrAPlaceIsRefused)
{
    const Abilities table{.szName = "Editor", .nLargestPosition = 100};
    Region empty = Plain();
    empty.nLength = 0;
    Region before = Plain();
    before.nPosition = -1;
    Region unknown = Plain();
    unknown.nRate = 0;
    EXPECT_THAT(Refusal(table, With(empty)), HasSubstr("no audio"));
    EXPECT_THAT(Refusal(table, With(unknown)), HasSubstr("no audio"));
    EXPECT_THAT(Refusal(table, With(before)), HasSubstr("before the timeline"));
}

TEST(Editor, KindAndPlaceMakeAnEditor)
{
    EXPECT_STREQ(MakeEditor("ardour:/tmp/a:b")->Table().szName, "Ardour");
    EXPECT_STREQ(MakeEditor("audacity:/tmp/a:b.aup3")->Table().szName, "Audacity");
    for (const char* szWrong :
         {"", "ardour", "ardour:", "other:/tmp", "audacity", "audacity:", "audacity:/tmp/a.wav"})
        EXPECT_THROW(MakeEditor(szWrong), Tarvane::CUsageError) << szWrong;
}
