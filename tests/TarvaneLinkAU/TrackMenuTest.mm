#import "tests/TarvaneLinkAU/LinkViewFixture.h"
#include "tests/support/ReplacedMethod.h"

#include <limits>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
class TrackMenu : public LinkViewFixture
{
  protected:
    NSPopUpButton* Button() { return [m_pView trackButton]; }

    void Fill(std::initializer_list<const char*> names)
    {
        PlayTracks(names);
        [m_pView FillTrackMenu];
    }

    void Store(std::int32_t nTrack) { m_plugIn.SetValue(TNProperty_SelectedTrack, nTrack); }
};

TEST_F(TrackMenu, ShowsTheTracksInTheServersOrder)
{
    Attach();
    Fill({"Vox", "Bass", "Drums"});
    EXPECT_THAT(MenuTitles(), ElementsAre("Vox", "Bass", "Drums"));
}

TEST_F(TrackMenu, RefillReadsTheStoredTrackInFourBytes)
{
    Attach();
    Fill({"Vox"});
    EXPECT_THAT(m_plugIn.Lines(), ElementsAre("Get(64009, scope 0, element 0, 4 bytes)"));
}

TEST_F(TrackMenu, RefillReplacesTheOldItems)
{
    Attach();
    Fill({"Vox", "Bass", "Drums"});
    Fill({"Keys"});
    EXPECT_THAT(MenuTitles(), ElementsAre("Keys"));
}

TEST_F(TrackMenu, SelectsTheStoredTrack)
{
    Attach();
    for (std::int32_t nTrack : {0, 1, 2})
    {
        Store(nTrack);
        Fill({"Vox", "Bass", "Drums"});
        EXPECT_EQ([Button() indexOfSelectedItem], nTrack);
        EXPECT_EQ(Utf8([Button() titleOfSelectedItem]), MenuTitles()[nTrack]);
    }
}

TEST_F(TrackMenu, StoredTrackBeyondTheEndSelectsTheLastAndStays)
{
    Attach();
    for (std::int32_t nTrack : {3, 5, std::numeric_limits<std::int32_t>::max()})
    {
        Store(nTrack);
        Fill({"Vox", "Bass", "Drums"});
        EXPECT_EQ([Button() indexOfSelectedItem], 2);
    }
    EXPECT_EQ(CountOf("Set", TNProperty_SelectedTrack), 0);
}

TEST_F(TrackMenu, NegativeStoredTrackLeavesTheSelectionToThePlatform)
{
    Attach();
    for (std::int32_t nTrack : {-1, std::numeric_limits<std::int32_t>::min()})
    {
        Fill({"Vox", "Bass"});
        [Button() selectItemAtIndex:1];
        Store(nTrack);
        Fill({"Vox", "Bass", "Drums"});
        EXPECT_THAT(MenuTitles(), ElementsAre("Vox", "Bass", "Drums"));
        // What a button without help makes of the same.
        NSPopUpButton* pOther = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 100, 20)
                                                            pullsDown:NO] autorelease];
        for (NSString* pName : {@"Vox", @"Bass"})
            [m_pView AddItem:pOther Name:pName];
        [pOther selectItemAtIndex:1];
        [pOther removeAllItems];
        for (NSString* pName : {@"Vox", @"Bass", @"Drums"})
            [m_pView AddItem:pOther Name:pName];
        EXPECT_EQ([Button() indexOfSelectedItem], [pOther indexOfSelectedItem]);
    }
}

TEST_F(TrackMenu, EmptyListGivesAnEmptyMenu)
{
    Attach();
    Fill({});
    EXPECT_EQ([Button() numberOfItems], 0);
    EXPECT_EQ([Button() indexOfSelectedItem], -1);
}

TEST_F(TrackMenu, EmptyListSelectsNothingWhateverIsStored)
{
    Attach();
    static std::vector<NSInteger> selected;
    selected.clear();
    TarvaneTests::ReplacedMethod select([NSPopUpButton class], @selector(selectItemAtIndex:),
                                        [](id, SEL, NSInteger nItem)
                                        { selected.push_back(nItem); });
    for (std::int32_t nTrack : {0, 5, -1})
    {
        Store(nTrack);
        Fill({});
    }
    EXPECT_THAT(selected, IsEmpty());
    Store(5);
    Fill({"Vox", "Bass"});
    EXPECT_THAT(selected, ElementsAre(1));
}

TEST_F(TrackMenu, FailedListGivesAnEmptyMenuAndNoMessageByItself)
{
    Attach();
    m_events.FailSend(-600);
    [m_pView FillTrackMenu];
    EXPECT_EQ([Button() numberOfItems], 0);
    EXPECT_EQ(ErrorLine(), "");
    [m_pView UpdateScriptMessages];
    EXPECT_EQ(ErrorLine(), "Error - Tarvane not running.");
    EXPECT_EQ(AdviceLine(), "Locate and launch Tarvane.");
}

TEST_F(TrackMenu, NoDocumentAndNoTracksReadAlike)
{
    Attach();
    for (const char* szResult : {"1\n0\n", "1\n1\n", ""})
    {
        PlayTracks({"Vox"});
        [m_pView FillTrackMenu];
        [m_pView UpdateScriptMessages];
        ASSERT_EQ(ErrorLine(), "");
        m_events.Print(szResult);
        [m_pView menuWillOpen:[Button() menu]];
        EXPECT_EQ([Button() numberOfItems], 0);
        EXPECT_EQ(ErrorLine(), "No Tarvane session is selected");
    }
}

TEST_F(TrackMenu, TracksOfOneNameStaySeveralItems)
{
    Attach();
    Store(3);
    Fill({"Vox", "Vox", "Bass", "Vox"});
    EXPECT_THAT(MenuTitles(), ElementsAre("Vox", "Vox", "Bass", "Vox"));
    EXPECT_EQ([Button() indexOfSelectedItem], 3);
}

TEST_F(TrackMenu, ItemsHaveNoActionAndNoKey)
{
    Attach();
    Fill({"Vox", "-"});
    for (NSInteger n = 0; n < 2; ++n)
    {
        EXPECT_TRUE([[Button() itemAtIndex:n] action] == nullptr);
        EXPECT_EQ(Utf8([[Button() itemAtIndex:n] keyEquivalent]), "");
        EXPECT_FALSE([[Button() itemAtIndex:n] isSeparatorItem]);
    }
}

TEST_F(TrackMenu, TwoHundredTracksInTheWorldsScripts)
{
    const char* kNames[] = {"Vox",    "Größe", "Гитара", "ギター", "吉他",     "기타",
                            "قيثارة", "גיטרה", "กีตาร์",   "गिटार",  "🎸🥁", "e\u0301te"};
    std::vector<std::string> names;
    for (int n = 0; n < 200; ++n)
        names.push_back(std::string(kNames[n % 12]) + " " + std::to_string(n));
    Attach();
    Store(199);
    m_events.Print(TrackList(names));
    [m_pView FillTrackMenu];
    EXPECT_EQ(MenuTitles(), names);
    EXPECT_EQ([Button() indexOfSelectedItem], 199);
}

TEST_F(TrackMenu, NamesThatAreNotUtf8KeepTheirPlaces)
{
    // A name of more than 999 bytes makes two lines, and the cut may go through a character. The
    // count allows for it here, as a server's might.
    const std::string strLong = std::string(998, 'x') + "é";
    Attach();
    Store(3);
    m_events.Print("5\n1\nVox\n" + strLong + "\nBass\n");
    [m_pView FillTrackMenu];
    ASSERT_EQ([Button() numberOfItems], 4);
    EXPECT_EQ(MenuTitles()[1], std::string(998, 'x') + "Ã");
    EXPECT_EQ(MenuTitles()[2], "©");
    EXPECT_EQ(MenuTitles()[3], "Bass");
    EXPECT_EQ([Button() indexOfSelectedItem], 3);
}

#pragma mark Choosing

TEST_F(TrackMenu, ChoiceIsWrittenToThePlugInOnly)
{
    Attach();
    Fill({"Vox", "Bass", "Drums"});
    m_plugIn.ForgetRecords();
    const std::size_t nCommands = m_events.Commands().size();
    [Button() selectItemAtIndex:2];
    [m_pView OnTrack:nil];
    ASSERT_THAT(m_plugIn.Lines(), ElementsAre("Set(64009, scope 0, element 0, 4 bytes)"));
    EXPECT_THAT(m_plugIn.Records()[0].m_bytes, ElementsAre(2, 0, 0, 0));
    EXPECT_EQ(m_events.Commands().size(), nCommands);
}

TEST_F(TrackMenu, ChoiceInAnEmptyMenuIsMinusOne)
{
    Attach();
    Fill({});
    m_plugIn.ForgetRecords();
    [m_pView OnTrack:Button()];
    EXPECT_THAT(m_plugIn.Records()[0].m_bytes, ElementsAre(0xFF, 0xFF, 0xFF, 0xFF));
}

TEST_F(TrackMenu, RefillSendsNoAction)
{
    Attach();
    Store(1);
    Fill({"Vox", "Bass"});
    [m_pView menuWillOpen:[Button() menu]];
    EXPECT_EQ(CountOf("Set", TNProperty_SelectedTrack), 0);
}

#pragma mark Opening

TEST_F(TrackMenu, OpeningRefillsAndThenShowsTheMessages)
{
    Attach();
    std::string strShownDuringCommand = "?";
    [[m_pView errorLine] setStringValue:@"old"];
    m_events.m_whileSending = [&] { strShownDuringCommand = ErrorLine(); };
    PlayTracks({"Keys", "Horns"});
    [m_pView menuWillOpen:[Button() menu]];
    EXPECT_EQ(strShownDuringCommand, "old");
    EXPECT_THAT(MenuTitles(), ElementsAre("Keys", "Horns"));
    EXPECT_EQ(ErrorLine(), "");
    EXPECT_EQ(CountOf("Get", TNProperty_ArmCapture), 0);
}

TEST_F(TrackMenu, AnotherMenuHasNoEffect)
{
    Attach();
    [[m_pView errorLine] setStringValue:@"old"];
    const std::size_t nCommands = m_events.Commands().size();
    [m_pView menuWillOpen:[[[NSMenu alloc] initWithTitle:@""] autorelease]];
    [m_pView menuWillOpen:nil];
    EXPECT_EQ(m_events.Commands().size(), nCommands);
    EXPECT_THAT(m_plugIn.Lines(), IsEmpty());
    EXPECT_EQ(ErrorLine(), "old");
    EXPECT_THAT(MenuTitles(), ElementsAre("Vox", "Bass"));
}

TEST_F(TrackMenu, FailedReadOfTheStoredTrackSelectsTheFirst)
{
    Attach();
    m_plugIn.ClearValue(TNProperty_SelectedTrack);
    Fill({"Vox", "Bass"});
    EXPECT_EQ([Button() indexOfSelectedItem], 0);
}
} // namespace
