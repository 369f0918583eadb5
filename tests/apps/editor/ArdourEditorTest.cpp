#include "apps/editor/ArdourEditor.h"
#include "apps/support/process/ChildProcess.h"
#include "tests/apps/editor/EditorFixture.h"

#include <chrono>
#include <gmock/gmock.h>
#include <pugixml.hpp>
#include <sys/file.h>
#include <unistd.h>

using namespace Tarvane::Editor;
using namespace TarvaneTest;
using namespace testing;
namespace fs = std::filesystem;

namespace
{

class ArdourEditor : public EditorFixture
{
protected:
    fs::path Session() const { return folder / "edit"; }
    fs::path File() const { return Session() / "edit.ardour"; }
    fs::path Audio() const { return Session() / "interchange/edit/audiofiles"; }

    Model OneTake(const std::string& strTrack = "Vox")
    {
        return {{{strTrack, {RegionOf(Sound("take.wav", 1000), 123457, 1000)}}}};
    }
    void Take(const Model& model) { CArdourEditor(Session()).Take(model); }
    // The text of what the editor throws.
    std::string Refusal(const Model& model)
    {
        try
        {
            Take(model);
        }
        catch (const CEditorError& error)
        {
            return error.what();
        }
        ADD_FAILURE() << "nothing was refused";
        return "";
    }

    std::size_t Count(const std::string& strPath) const
    {
        pugi::xml_document document;
        EXPECT_TRUE(document.load_file(File().c_str()));
        return document.select_nodes(strPath.c_str()).size();
    }
    std::string Value(const std::string& strPath) const
    {
        pugi::xml_document document;
        EXPECT_TRUE(document.load_file(File().c_str()));
        return document.select_node(strPath.c_str()).attribute().value();
    }
    void Replace(const std::string& strOld, const std::string& strNew)
    {
        std::string strText = TextOf(File());
        const std::size_t nAt = strText.find(strOld);
        ASSERT_NE(nAt, std::string::npos) << strOld;
        WriteText(File(), strText.replace(nAt, strOld.size(), strNew));
    }
    std::vector<std::string> Everything() const
    {
        std::vector<std::string> all;
        for (const std::string& strName : folder.Files())
            all.push_back(strName + ": " + TextOf(folder / strName));
        return all;
    }
};

} // namespace

TEST_F(ArdourEditor, FilesAreLinkedToWhereTheyAre)
{
    Take(OneTake());
    EXPECT_EQ(fs::read_symlink(Audio() / "take.wav"), folder / "take.wav");
}

TEST_F(ArdourEditor, FilesAreCopiedOnRequest)
{
    CArdourEditor(Session(), {.fCopyFiles = true, .nRate = 0}).Take(OneTake());
    EXPECT_FALSE(fs::is_symlink(Audio() / "take.wav"));
    EXPECT_EQ(TextOf(Audio() / "take.wav"), TextOf(folder / "take.wav"));
    EXPECT_THAT(folder.Files(), Not(Contains(HasSubstr(".part"))));
}

TEST_F(ArdourEditor, FilesOfOneNameStayApart)
{
    fs::create_directory(folder / "other");
    Model model = OneTake();
    model.tracks[0].regions.push_back(
        RegionOf(Sound("other/take.wav", 1000, 1, 48000, 2), 200000, 1000));
    Take(model);
    EXPECT_EQ(fs::read_symlink(Audio() / "take.wav"), folder / "take.wav");
    EXPECT_EQ(fs::read_symlink(Audio() / "take 2.wav"), folder / "other/take.wav");
}

TEST_F(ArdourEditor, WhatItHasIsNotAddedAgain)
{
    Model model = OneTake();
    Take(model);
    const std::string strText = TextOf(File());
    Take(model);
    EXPECT_EQ(TextOf(File()), strText);
    EXPECT_EQ(Count("//Region"), 1U);
}

TEST_F(ArdourEditor, WhatWasWrittenBeforeTheNotesWereIsNotAddedAgain)
{
    Model model = OneTake();
    Take(model);
    fs::remove(Session() / "tarvane-link.json");
    Take(model);
    EXPECT_EQ(Count("//Region"), 1U);
    EXPECT_EQ(Count("//Source"), 1U);
    EXPECT_EQ(Count("//Playlist"), 1U);
}

TEST_F(ArdourEditor, ARegionThatTheUserHasMovedStaysWhereHePutIt)
{
    Model model = OneTake();
    Take(model);
    Replace("@a725927160", "@a42"); // 123457 samples of 5880 ticks
    model.tracks[0].regions.push_back(RegionOf(model.tracks[0].regions[0].strFile, 500000, 10));
    Take(model);
    EXPECT_EQ(Count("//Region"), 2U);
    EXPECT_EQ(Count("//Region[@length='a5880000@a42']"), 1U);
}

TEST_F(ArdourEditor, ARegionThatTheUserHasDeletedStaysDeleted)
{
    Model model = OneTake();
    Take(model);
    std::string strText = TextOf(File());
    const std::size_t nStart = strText.find("<Region name");
    WriteText(File(), strText.erase(nStart, strText.find("/>", nStart) + 2 - nStart));
    Take(model);
    EXPECT_EQ(Count("//Region"), 0U);
}

TEST_F(ArdourEditor, WhatTheSessionHoldsStaysByteByByte)
{
    Take(OneTake());
    Replace("<Metadata",
            "<Strange  odd = 'a>b'><![CDATA[<Sources>]]></Strange ><!-- <Routes> -->\n<Metadata");
    const std::string strBefore = TextOf(File());
    Model model = OneTake("Other track");
    model.tracks[0].regions[0].nPosition = 1;
    Take(model);
    const std::string strAfter = TextOf(File());
    const std::string strCounter = "id-counter=\"";
    const std::size_t nCounter = strBefore.find(strCounter) + strCounter.size();
    EXPECT_EQ(strAfter.substr(0, nCounter), strBefore.substr(0, nCounter));
    for (const char* szPart :
         {"<Strange  odd = 'a>b'><![CDATA[<Sources>]]></Strange ><!-- <Routes> -->\n<Metadata",
          "<Route version=\"7002\" id=\"1\" name=\"Master\""})
        EXPECT_THAT(strAfter, HasSubstr(szPart));
    // Line by line: every old line is there, in its order.
    std::istringstream before(strBefore), after(strAfter);
    std::string strOld, strNew;
    while (std::getline(before, strOld))
    {
        if (strOld.find(strCounter) != std::string::npos)
            continue;
        do
            ASSERT_TRUE(std::getline(after, strNew)) << strOld;
        while (strNew != strOld);
    }
    EXPECT_EQ(Count("//Region"), 2U);
}

TEST_F(ArdourEditor, IdsAreNewOnesAndTheCounterIsBehindThem)
{
    Take(OneTake());
    Replace("id-counter=\"", "id-counter=\"0"); // a counter that reads the same
    Replace("<Metadata", "<Metadata id=\"5000\"");
    Model model = OneTake("Other");
    Take(model);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_file(File().c_str()));
    std::set<std::string> ids;
    long long nLargest = 0;
    for (const auto& id : document.select_nodes("//@id"))
    {
        EXPECT_TRUE(ids.insert(id.attribute().value()).second) << id.attribute().value();
        nLargest = std::max(nLargest, id.attribute().as_llong());
    }
    EXPECT_GT(nLargest, 5000);
    EXPECT_GT(document.child("Session").attribute("id-counter").as_llong(), nLargest);
}

TEST_F(ArdourEditor, TheFileIsKeptOnceWheneverTheUserHasSavedIt)
{
    Model model = OneTake();
    const auto takeAt = [&](std::int64_t nPosition)
    {
        model.tracks[0].regions.push_back(
            RegionOf(model.tracks[0].regions[0].strFile, nPosition, 10));
        Take(model);
    };
    takeAt(10);
    takeAt(20);
    EXPECT_THAT(folder.Files(), Not(Contains(HasSubstr("before-tarvane-link"))));
    Replace("<Metadata", "<Mine/><Metadata");
    const std::string strMine = TextOf(File());
    takeAt(30);
    takeAt(40);
    EXPECT_EQ(TextOf(Session() / "edit.ardour.before-tarvane-link"), strMine);
    EXPECT_FALSE(fs::exists(Session() / "edit.ardour.before-tarvane-link-2"));
}

TEST_F(ArdourEditor, ATrackOfTheNameGetsTheRegionsAndTheUsersNameForItStands)
{
    Take(OneTake("Vox"));
    Replace("Route version=\"7002\" id=\"100\" name=\"Vox\"",
            "Route version=\"7002\" id=\"100\" name=\"Lead\"");
    Model model{{{"Vox", {RegionOf((folder / "take.wav").string(), 5, 10)}}}};
    Take(model);
    EXPECT_EQ(Count("//Route[@audio-playlist]"), 1U);
    EXPECT_EQ(Count("//Playlist/Region"), 2U);

    fs::remove(Session() / "tarvane-link.json");
    Take({{{"Lead", {RegionOf((folder / "take.wav").string(), 50, 10)}}}});
    EXPECT_EQ(Count("//Route[@audio-playlist]"), 1U);
    EXPECT_EQ(Count("//Playlist/Region"), 3U);
}

TEST_F(ArdourEditor, ATrackThatIsTooNarrowGetsAWiderNeighbour)
{
    Take(OneTake("Vox"));
    Take({{{"Vox", {RegionOf(Sound("wide.wav", 100, 2), 5, 10)}}}});
    EXPECT_EQ(Count("//Route[@name='Vox (2 channels)']//IO[@direction='Input']/Port"), 2U);
    EXPECT_EQ(Count("//Playlist[@name='Vox (2 channels)']/Region[@channels='2']"), 1U);
    EXPECT_EQ(Count("//Playlist[@name='Vox']/Region"), 1U);
}

TEST_F(ArdourEditor, NamesThatAreTakenOrNoNamesThereAreChanged)
{
    const std::string strFile = Sound("take.wav", 100);
    Take({{{"Master", {RegionOf(strFile, 1, 10)}},
           {"a:b/c\x01", {}},
           {"<&\">", {}},
           {"Twin", {RegionOf(strFile, 1, 10)}},
           {"Twin", {RegionOf(strFile, 2, 10)}}}});
    for (const char* szName : {"Master 2", "a_b_c_", "Twin", "Twin 2"})
        EXPECT_EQ(Count("//Route[@name='" + std::string(szName) + "'][@audio-playlist]"), 1U)
            << szName;
    EXPECT_EQ(Count("//Route[@name='<&\">']"), 1U);
    EXPECT_EQ(Count("//Playlist[@name='Twin 2']/Region"), 1U);
}

TEST_F(ArdourEditor, ALaterRegionLiesAboveThoseBeforeIt)
{
    Take(OneTake());
    Take({{{"Vox", {RegionOf((folder / "take.wav").string(), 123500, 10)}}}});
    EXPECT_EQ(Value("//Region[@length='a58800@a726180000']/@layering-index"), "1");
}

TEST_F(ArdourEditor, WithoutAudioOrARateNoSessionIsMade)
{
    Take({{{"Vox", {}}}});
    EXPECT_FALSE(fs::exists(Session()));
    CArdourEditor(Session(), {.fCopyFiles = false, .nRate = 96000}).Take({{{"Vox", {}}}});
    EXPECT_EQ(Value("/Session/@sample-rate"), "96000");
    EXPECT_EQ(Count("//Route[@name='Vox']"), 1U);
}

TEST_F(ArdourEditor, EachRateHasASessionOfItsOwn)
{
    Model model = OneTake();
    Region other = RegionOf(Sound("other.wav", 1000, 1, 44100), 44100, 1000);
    other.nRate = 44100;
    model.tracks[0].regions.push_back(other);
    Take(model);
    EXPECT_EQ(Count("//Region"), 1U);
    EXPECT_EQ(Value("/Session/@sample-rate"), "48000");
    pugi::xml_document document;
    ASSERT_TRUE(document.load_file((folder / "edit-44100/edit-44100.ardour").c_str()));
    EXPECT_STREQ(document.child("Session").attribute("sample-rate").value(), "44100");
    // A second of the clock.
    EXPECT_EQ(document.select_nodes("//Playlist[@name='Vox']/Region[@length='a6400000@a282240000']")
                  .size(),
              1U);
    // A session keeps its rate, whatever comes first.
    std::swap(model.tracks[0].regions[0], model.tracks[0].regions[1]);
    Take(model);
    EXPECT_EQ(Count("//Region"), 1U);
    EXPECT_FALSE(fs::exists(folder / "edit-48000"));
}

TEST_F(ArdourEditor, WhatCannotLieThereExactlyIsRefusedAndNothingIsWritten)
{
    const std::string strFile = Sound("take.wav", 1000);
    const std::string strOther = Sound("other.wav", 1000, 1, 44100);
    const std::string strOdd = Sound("odd.wav", 1000, 1, 47999);
    const auto with = [&](auto&& change)
    {
        Region region = RegionOf(strFile, 100, 1000);
        change(region);
        return Model{{{"Vox", {RegionOf(strFile, 5000, 10), region}}}};
    };
    const std::vector<std::string> before = folder.Files();
    EXPECT_THAT(Refusal(with([](Region& region) { region.nPosition = -1; })),
                HasSubstr("begins before the timeline, at sample -1"));
    EXPECT_THAT(Refusal(with([](Region& region) { region.nPosition = std::int64_t(1) << 46; })),
                HasSubstr("too far along the timeline"));
    EXPECT_THAT(Refusal(with([&](Region& region) { region.strFile = strOther; })),
                HasSubstr("44100 samples per second, and the session 48000"));
    EXPECT_THAT(Refusal(with([](Region& region) { region.nStart = 1; })),
                HasSubstr("goes on behind the end of"));
    EXPECT_THAT(Refusal(with([](Region& region) { region.channels = {1}; })),
                HasSubstr("has no channel 1"));
    EXPECT_THAT(Refusal(with([](Region& region) { region.strFile += "x"; })),
                HasSubstr("there is no file"));
    EXPECT_THAT(Refusal(with([](Region& region) { region.strName = "\xff"; })),
                HasSubstr("not UTF-8"));
    Region odd = RegionOf(strOdd, 1, 10);
    odd.nRate = 47999;
    EXPECT_THAT(Refusal({{{"Vox", {odd}}}}),
                HasSubstr("audio of 47999 samples per second cannot be placed exactly"));
    EXPECT_EQ(folder.Files(), before);
    EXPECT_FALSE(fs::exists(Session()));
}

TEST_F(ArdourEditor, WhatIsNoneOfItsSessionsIsLeftAlone)
{
    Take(OneTake());
    const std::string strSession = TextOf(File());
    const Model more{{{"Vox", {RegionOf((folder / "take.wav").string(), 7, 10)}}}};
    const auto refused = [&](const std::string& strText)
    {
        WriteText(File(), strText);
        const auto before = Everything();
        const std::string strRefusal = Refusal(more);
        EXPECT_EQ(Everything(), before);
        return strRefusal;
    };
    EXPECT_THAT(refused("no XML"), HasSubstr("no session of Ardour"));
    EXPECT_THAT(refused("<Other/>"), HasSubstr("no element \"Session\""));
    EXPECT_THAT(refused("<Session version=\"8000\"/>"), HasSubstr("of version 8000"));
    EXPECT_THAT(refused("<Session version=\"7002\"/>"), HasSubstr("no element \"Sources\""));
    EXPECT_THAT(refused(strSession.substr(0, strSession.size() / 2)),
                HasSubstr("no session of Ardour"));

    WriteText(File(), strSession);
    WriteText(Session() / "tarvane-link.json", "{");
    EXPECT_THAT(Refusal(more), HasSubstr("tarvane-link.json is damaged"));
    WriteText(Session() / "tarvane-link.json", R"({"form": "other", "version": 1})");
    EXPECT_THAT(Refusal(more), HasSubstr("another program"));
    EXPECT_EQ(TextOf(File()), strSession);

    fs::remove(File());
    fs::create_directory(File());
    EXPECT_THAT(Refusal(more), HasSubstr("is not a file"));
    fs::remove(File());
    EXPECT_THAT(Refusal(more), HasSubstr("holds other files and no session"));
    WriteText(Session() / "a.ardour", strSession);
    WriteText(Session() / "b.ardour", strSession);
    EXPECT_THAT(Refusal(more), HasSubstr("holds 2 sessions of Ardour"));
}

TEST_F(ArdourEditor, WhileArdourHasAFileOfTheSessionOpenNothingIsAdded)
{
    Take(OneTake());
    const std::string strSession = TextOf(File());
    const Model more{{{"Vox", {RegionOf((folder / "take.wav").string(), 7, 10)}}}};
    // A program of its name that holds the take open, and one of another name that does so.
    fs::copy_file("/usr/bin/tail", folder / "Ardour7");
    fs::copy_file("/usr/bin/tail", folder / "player");
    {
        Tarvane::CChildProcess player({folder / "player", "-f", "-c1", folder / "take.wav"});
        Tarvane::CChildProcess ardour({folder / "Ardour7", "-f", "-c1", folder / "take.wav"});
        // It has printed the last byte, and so opened the file.
        for (int n = 0; n < 2000 && ardour.Output().empty(); n++)
            usleep(10'000);
        EXPECT_THAT(Refusal(more), HasSubstr("close it there"));
        EXPECT_EQ(TextOf(File()), strSession);
        ardour.End(std::chrono::seconds(10));
        Take(more);
    }
    EXPECT_EQ(Count("//Region"), 2U);
}

TEST_F(ArdourEditor, WhileAnotherProgramAddsNothingIsAdded)
{
    Take(OneTake());
    const int nFolder = open(Session().c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(nFolder, LOCK_EX), 0);
    EXPECT_THAT(Refusal({{{"Vox", {RegionOf((folder / "take.wav").string(), 7, 10)}}}}),
                HasSubstr("another program adds to"));
    close(nFolder);
}

TEST_F(ArdourEditor, WhatCannotBeWrittenLeavesNothingBehind)
{
    Take(OneTake());
    const auto before = folder.Files();
    const std::string strSession = TextOf(File());
    fs::create_directory(Session() /
                         "edit.ardour.saving"); // what is written goes through this name
    Model more{{{"Vox", {RegionOf(Sound("more.wav", 100), 7, 10)}}}};
    EXPECT_THAT(Refusal(more), HasSubstr("edit.ardour.saving"));
    EXPECT_EQ(TextOf(File()), strSession);
    EXPECT_FALSE(fs::exists(fs::symlink_status(Audio() / "more.wav")));
    fs::remove(Session() / "edit.ardour.saving");
    Take(more);
    EXPECT_EQ(Count("//Region"), 2U);
}
