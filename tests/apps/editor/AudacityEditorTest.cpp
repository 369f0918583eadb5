#include "apps/editor/AudacityEditor.h"
#include "tests/apps/editor/EditorFixture.h"
#include "tests/apps/editor/FakeAudacity.h"

#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <unistd.h>

using namespace Tarvane::Editor;
using namespace TarvaneTest;
using namespace testing;
namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace
{

class AudacityEditor : public EditorFixture
{
protected:
    AudacityEditor() { fs::create_directory(Pipes()); }

    fs::path Pipes() const { return folder / "pipes"; }
    fs::path Project() const { return folder / "edit.aup3"; }

    CAudacityEditor Editor(milliseconds patience = seconds(40)) const
    {
        return {Project(), {.pipes = Pipes(), .patience = patience, .untilThere = seconds(60)}};
    }

    Region Take(std::int64_t nPosition, const std::string& strName = "take")
    {
        return RegionOf(Sound(strName + ".wav", 1000), nPosition, 1000);
    }
    static Model On(const std::string& strTrack, const std::vector<Region>& regions)
    {
        return {{{"Empty", {}}, {strTrack, regions}}};
    }

    // The text of what the editor throws.
    static std::string Refusal(CEditor& editor, const Model& model)
    {
        try
        {
            editor.Take(model);
        }
        catch (const CEditorError& error)
        {
            return error.what();
        }
        ADD_FAILURE() << "nothing was refused";
        return "";
    }
    // Again and again, as one does who is told to.
    static void TakeAtLast(CEditor& editor, const Model& model)
    {
        const auto end = std::chrono::steady_clock::now() + seconds(60);
        for (;;)
        {
            try
            {
                editor.Take(model);
                return;
            }
            catch (const CEditorError&)
            {
                if (std::chrono::steady_clock::now() > end)
                    throw;
            }
        }
    }
    // What the project holds on disk.
    std::string Saved() const { return TextOf(Project()); }
};

constexpr const char* szPlain = "Vox|take|2.572021|48000|1000|1";

} // namespace

TEST_F(AudacityEditor, ATakeComesOntoATrackOfItsNameAtItsPlaceAndIsSaved)
{
    CFakeAudacity audacity(Pipes());
    Editor().Take(On("Vox", {Take(123457)}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
    EXPECT_THAT(Saved(), HasSubstr("\"start\": 2.572020833333333"));
    EXPECT_THAT(audacity.Done(), HasSubstr("Start=2.572020833333333\n"));
    EXPECT_THAT(audacity.Done(),
                HasSubstr("does Import2: Filename=\"" + (folder / "take.wav").string() + "\"\n"));
}

TEST_F(AudacityEditor, EachTakeHasATrackOfItsOwnBelowAllThatIsThere)
{
    CFakeAudacity audacity(Pipes());
    CAudacityEditor editor = Editor();
    editor.Take({{{"Vox", {Take(0), Take(48000, "second")}}, {"Guitar", {Take(5, "third")}}}});
    editor.Take(On("Vox", {Take(96000, "fourth")}));
    EXPECT_THAT(audacity.Tracks(),
                ElementsAre("Vox|take|0.000000|48000|1000|1", "Vox|second|1.000000|48000|1000|1",
                            "Guitar|third|0.000104|48000|1000|1",
                            "Vox|fourth|2.000000|48000|1000|1"));
}

TEST_F(AudacityEditor, AMutedRegionIsMutedThereAndNoOther)
{
    CFakeAudacity audacity(Pipes());
    Region muted = Take(48000);
    muted.fMuted = true;
    Editor().Take(On("Vox", {muted, Take(96000, "loud")}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre("Vox|take|1.000000|48000|1000|1|muted",
                                               "Vox|loud|2.000000|48000|1000|1"));
}

TEST_F(AudacityEditor, SeveralChannelsAndRatesAreTaken)
{
    CFakeAudacity audacity(Pipes());
    Region stereo = RegionOf(Sound("stereo.wav", 500, 2, 44100), 44100, 500);
    stereo.nRate = 44100;
    const Region four = RegionOf(Sound("four.wav", 100, 4), 96000, 100);
    Editor().Take(On("Vox", {stereo, four}));
    EXPECT_THAT(audacity.Tracks(),
                ElementsAre("Vox|stereo|1.000000|44100|500|2", "Vox|four|2.000000|48000|100|1",
                            "Vox|four|2.000000|48000|100|1", "Vox|four|2.000000|48000|100|1",
                            "Vox|four|2.000000|48000|100|1"));
}

TEST_F(AudacityEditor, PartOfAFileIsImportedWithoutTheRestAndUnderItsName)
{
    CFakeAudacity audacity(Pipes());
    Region part = RegionOf(Sound("long.wav", 1000, 2), 48000, 300);
    part.nStart = 200;
    part.channels = {1};
    Editor().Take(On("Vox", {part}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre("Vox|long|1.000000|48000|300|1"));
}

TEST_F(AudacityEditor, NamesAreCarriedWhateverIsInThem)
{
    CFakeAudacity audacity(Pipes());
    const std::string strName = "\xc3\x96l \"x\" \\ <&> 'y'\\";
    Editor().Take(On(strName, {Take(0, "a \"b\" \\c")}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(strName + "|a \"b\" \\c|0.000000|48000|1000|1"));
}

TEST_F(AudacityEditor, NamesThatNoCommandCanHoldAreChanged)
{
    CFakeAudacity audacity(Pipes());
    Editor().Take({{{"one\ntwo\x01", {Take(0, "new\nline")}},
                    {std::string(999, '"'), {Take(0, std::string(200, 'n'))}}}});
    EXPECT_THAT(audacity.Tracks(), ElementsAre("one_two_|new_line|0.000000|48000|1000|1",
                                               std::string(400, '"') + "|" + std::string(200, 'n') +
                                                   "|0.000000|48000|1000|1"));
}

TEST_F(AudacityEditor, APathThatIsTooLongForACommandIsImportedAllTheSame)
{
    CFakeAudacity audacity(Pipes());
    // Each quote is two bytes there.
    std::string strDeep;
    for (int n = 0; n < 3; n++)
        strDeep += std::string(180, '"') + "/";
    fs::create_directories(folder / strDeep);
    Editor().Take(On("Vox", {Take(123457, strDeep + "take")}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
}

TEST_F(AudacityEditor, AProjectThatIsThereIsOpenedWhereAudacityShowsAnEmptyOne)
{
    {
        CFakeAudacity audacity(Pipes());
        Editor().Take(On("Vox", {Take(123457)}));
    }
    CFakeAudacity audacity(Pipes());
    Editor().Take(On("Vox", {Take(0, "later")}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain, "Vox|later|0.000000|48000|1000|1"));
}

TEST_F(AudacityEditor, AProjectThatIsOpenThereAlreadyIsUsed)
{
    WriteText(Project(), "");
    CFakeAudacity audacity(Pipes(), Project());
    Editor().Take(On("Vox", {Take(123457)}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
    EXPECT_THAT(audacity.Done(), Not(HasSubstr("OpenProject2")));
}

TEST_F(AudacityEditor, AnotherProjectIsNotTouched)
{
    WriteText(folder / "mine.aup3", "");
    {
        CFakeAudacity audacity(Pipes(), folder / "mine.aup3");
        CAudacityEditor editor = Editor();
        EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})),
                    HasSubstr("has another project open; close it there, or save it as " +
                              Project().string()));
        EXPECT_THAT(audacity.Tracks(), IsEmpty());
    }
    // One without a name that its user has begun.
    CFakeAudacity audacity(Pipes());
    audacity.Prepare("other Message");
    CAudacityEditor editor = Editor();
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("has another project open"));
    EXPECT_THAT(audacity.Tracks(), ElementsAre("Mine"));
    EXPECT_FALSE(fs::exists(Project()));
}

TEST_F(AudacityEditor, ASecondProjectIsAReasonToRefuse)
{
    WriteText(Project(), "");
    WriteText(folder / "mine.aup3", "");
    CFakeAudacity audacity(Pipes(), Project());
    // What holds the pipe as well counts as Audacity; this one has another project open.
    Tarvane::CChildProcess holder(
        {"sh", "-c", "exec 8<>\"$1\" 9<\"$2\"; echo held; cat", "sh",
         (Pipes() / ("audacity_script_pipe.to." + std::to_string(getuid()))).string(),
         folder / "mine.aup3"});
    ASSERT_TRUE(holder.WaitForLine("held", seconds(60)));
    CAudacityEditor editor = Editor();
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("several projects open"));
    EXPECT_THAT(audacity.Tracks(), IsEmpty());
}

TEST_F(AudacityEditor, AProjectWithoutAFolderOrThatIsNoFileIsRefused)
{
    CFakeAudacity audacity(Pipes());
    CAudacityEditor nowhere(folder / "none/edit.aup3", {.pipes = Pipes()});
    EXPECT_THAT(Refusal(nowhere, On("Vox", {Take(0)})), HasSubstr("there is no folder "));
    fs::create_directory(Project());
    CAudacityEditor editor = Editor();
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("is not a file"));
    EXPECT_THAT(audacity.Done(), Not(HasSubstr("Project2")));
    for (const char* szWrong : {"edit", "edit.wav", ".aup3", "\xff.aup3"})
        EXPECT_THROW(CAudacityEditor{szWrong}, Tarvane::CUsageError) << szWrong;
}

TEST_F(AudacityEditor, WithoutAnAudacityATakeIsRefused)
{
    CAudacityEditor editor(Project(), {.pipes = Pipes(), .untilThere = milliseconds(200)});
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("Audacity does not listen"));
    // What an ended one has left behind.
    {
        CFakeAudacity audacity(Pipes());
        audacity.Process().Kill();
        audacity.Process().WaitForEnd(seconds(60));
    }
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("Audacity does not listen"));
    // The next one is found.
    CFakeAudacity audacity(Pipes());
    TakeAtLast(editor, On("Vox", {Take(123457)}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
}

TEST_F(AudacityEditor, WhatIsNoPipeIsNotWrittenTo)
{
    for (const char* szWay : {"to", "from"})
        WriteText(Pipes() / ("audacity_script_pipe." + std::string(szWay) + "." +
                             std::to_string(getuid())),
                  "mine");
    CAudacityEditor editor = Editor();
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("is not the pipe of an Audacity"));
    EXPECT_EQ(TextOf(Pipes() / ("audacity_script_pipe.to." + std::to_string(getuid()))), "mine");
}

// What goes wrong at any of the commands of a take.
class AudacityEditorAtEach : public AudacityEditor, public WithParamInterface<const char*>
{
};

TEST_P(AudacityEditorAtEach, AFailureIsToldAndNothingOfTheTakeStays)
{
    WriteText(Project(), "");
    CFakeAudacity audacity(Pipes(), Project());
    CAudacityEditor editor = Editor();
    editor.Take(On("Vox", {Take(123457)}));
    Region muted = Take(0, "second");
    muted.fMuted = true;
    const Model model = On("Vox", {Take(48000, "first"), muted});
    const std::string strBefore = Saved();
    audacity.Prepare("fail " + std::string(GetParam()));
    EXPECT_EQ(Refusal(editor, model),
              "Audacity did not do \"" + std::string(GetParam()) + "\": It cannot be done. ");
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
    EXPECT_EQ(Saved(), strBefore);
    editor.Take(model);
    EXPECT_THAT(audacity.Tracks(), SizeIs(3));
}

TEST_P(AudacityEditorAtEach, AnEndIsToldAndTheNextAudacityGetsTheTakeOnce)
{
    for (const std::string strFault : {"die ", "done ", "cut "})
    {
        WriteText(Project(), "");
        CAudacityEditor editor = Editor();
        Region muted = Take(123457);
        muted.fMuted = true;
        const Model model = On("Vox", {muted});
        {
            CFakeAudacity audacity(Pipes(), Project());
            audacity.Prepare(strFault + GetParam());
            EXPECT_EQ(Refusal(editor, model),
                      "Audacity ended, or closed its script pipe, before it was done.");
        }
        CFakeAudacity audacity(Pipes(), Project());
        editor.Take(model);
        EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain + std::string("|muted"))) << strFault;
    }
}

TEST_P(AudacityEditorAtEach, ADialogueIsToldAndWhatIsDoneAfterItIsTakenBack)
{
    WriteText(Project(), "");
    CFakeAudacity audacity(Pipes(), Project());
    CAudacityEditor editor = Editor(seconds(1));
    Region muted = Take(123457);
    muted.fMuted = true;
    const Model model = On("Vox", {muted});
    audacity.Prepare("hang " + std::string(GetParam()));
    const auto end = std::chrono::steady_clock::now() + seconds(60);
    // Where all is slow, it may not come so far at once.
    while (audacity.Done().find("asks") == std::string::npos &&
           std::chrono::steady_clock::now() < end)
        EXPECT_THAT(Refusal(editor, model), HasSubstr("Audacity does not answer; perhaps it asks"));
    audacity.Go();
    TakeAtLast(editor, model);
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain + std::string("|muted")));
}

INSTANTIATE_TEST_SUITE_P(Commands, AudacityEditorAtEach,
                         Values("GetInfo", "Import2", "SelectTracks", "SetTrackStatus",
                                "SetTrackAudio", "SetClip", "SaveProject2"),
                         [](const auto& info) { return std::string(info.param); });

TEST_F(AudacityEditor, AStoppedAudacityIsWaitedForNoLongerThanIsLaidDown)
{
    WriteText(Project(), "");
    CFakeAudacity audacity(Pipes(), Project());
    CAudacityEditor editor = Editor(seconds(1));
    audacity.Process().Stop();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("Audacity does not "));
    EXPECT_LT(std::chrono::steady_clock::now() - start, seconds(30));
    audacity.Process().Continue();
    TakeAtLast(editor, On("Vox", {Take(123457)}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
}

TEST_F(AudacityEditor, AsLongAsItAsksATakeIsRefusedAndWhatWasBegunIsKnown)
{
    WriteText(Project(), "");
    CFakeAudacity audacity(Pipes(), Project());
    CAudacityEditor editor = Editor(seconds(1));
    audacity.Prepare("hang Import2");
    for (int nTry = 0; nTry < 3; nTry++)
        EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("Audacity does not answer"));
    audacity.Go();
    TakeAtLast(editor, On("Vox", {Take(123457)}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
}

TEST_F(AudacityEditor, AnAnswerThatIsStillOwedToAnotherIsWaitedFor)
{
    WriteText(Project(), "");
    CFakeAudacity audacity(Pipes(), Project());
    audacity.Prepare("hang SelectTracks");
    {
        const Deadline start = std::chrono::steady_clock::now();
        CAudacityPipe pipe(Pipes(), start + seconds(60), start + seconds(60));
        pipe.Until(std::chrono::steady_clock::now());
        EXPECT_THROW(pipe.Ask("SelectTracks: Track=0 TrackCount=1 Mode=Set"), CEditorError);
    }
    auto taking = std::async(std::launch::async,
                             [&] { Editor(seconds(60)).Take(On("Vox", {Take(123457)})); });
    taking.wait_for(
        milliseconds(500)); // it has asked by then, or else has nothing to be told apart
    audacity.Go();
    EXPECT_NO_THROW(taking.get());
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
}

TEST_F(AudacityEditor, AnswersInTheWrongOrderAreNotTakenForOnesOwn)
{
    WriteText(Project(), "");
    CFakeAudacity audacity(Pipes(), Project());
    CAudacityEditor editor = Editor(seconds(5));
    audacity.Prepare("late Import2");
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("does not answer"));
    // The answer that is owed comes behind that to the next greeting.
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})),
                HasSubstr("Audacity answers what it was not asked"));
    TakeAtLast(editor, On("Vox", {Take(123457)}));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
}

TEST_F(AudacityEditor, AnImportThatMakesNoTrackIsRefusedAndNoOtherTrackTouched)
{
    WriteText(Project(), "");
    CFakeAudacity audacity(Pipes(), Project());
    CAudacityEditor editor = Editor();
    editor.Take(On("Vox", {Take(123457)}));
    audacity.Prepare("narrow Import2");
    EXPECT_THAT(Refusal(editor, On("Guitar", {Take(0)})), HasSubstr("made 1 tracks of 1"));
    EXPECT_THAT(audacity.Tracks(), ElementsAre(szPlain));
}

TEST_F(AudacityEditor, WhatItsUserAddsMeanwhileStays)
{
    WriteText(Project(), "");
    CFakeAudacity audacity(Pipes(), Project());
    CAudacityEditor editor = Editor();
    audacity.Prepare("other Import2");
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0)})), HasSubstr("made 2 tracks of 0"));
    EXPECT_THAT(audacity.Tracks(), Contains("Mine"));
    editor.Take(On("Vox", {Take(123457)}));
    EXPECT_THAT(audacity.Tracks(), AllOf(Contains("Mine"), Contains(szPlain)));
}

TEST_F(AudacityEditor, WhatCannotBePlacedIsRefusedBeforeAudacityIsAsked)
{
    CFakeAudacity audacity(Pipes());
    CAudacityEditor editor = Editor();
    Region far = Take(0);
    far.nPosition = std::int64_t(1000000) * 48000;
    EXPECT_THAT(Refusal(editor, On("Vox", {far})), HasSubstr("too far along the timeline"));
    Region longer = Take(0);
    longer.nLength = 1001;
    EXPECT_THAT(Refusal(editor, On("Vox", {longer})), HasSubstr("goes on behind the end"));
    Region other = Take(0);
    other.nRate = 44100;
    EXPECT_THAT(Refusal(editor, On("Vox", {other})), HasSubstr("48000 samples per second"));
    Region right = Take(0);
    right.channels = {1};
    EXPECT_THAT(Refusal(editor, On("Vox", {right})), HasSubstr("has no channel 1"));
    Region gone = Take(0);
    gone.strFile = folder / "gone.wav";
    EXPECT_THAT(Refusal(editor, On("Vox", {Take(0), gone})), HasSubstr("gone.wav"));
    EXPECT_THAT(audacity.Done(), Not(HasSubstr("does")));
}

TEST_F(AudacityEditor, WithoutARegionAudacityIsNotAsked)
{
    Editor().Take(On("Vox", {}));
    EXPECT_FALSE(fs::exists(Project()));
}
