#include "apps/server/database/SessionDatabase.h"

#include "apps/server/database/SessionCheck.h"
#include "apps/server/database/SessionStore.h"
#include "tests/apps/server/database/FullSession.h"
#include "tests/apps/server/session/SoundRegion.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <fstream>

namespace Tarvane::Server
{
namespace
{

using TarvaneTest::CMadeSession;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr DocumentKind kScript = DocumentKind::Script;
constexpr DocumentKind kAudioSuite = DocumentKind::AudioSuite;

std::vector<std::string> Names(CSessionDatabase& session)
{
    std::vector<std::string> names;
    for (const Track& track : session.Tracks(kScript))
        names.push_back(track.strName);
    return names;
}

class SessionDatabase : public testing::Test
{
protected:
    void Make(const CSession& content = CSession({"Vox"}, 0))
    {
        CSessionStore(m_file).Save(content);
    }

    std::size_t StoredRegions()
    {
        return CSessionDatabase::Load(m_file).GetDocument(kScript).regions.size();
    }

    // Runs on the file behind the server's back.
    void Tamper(const std::string& strStatements) const
    {
        SQLite::Database(m_file.string(), SQLite::OPEN_READWRITE).exec(strStatements);
    }

    TarvaneTest::CTemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder / "session";
};

TEST_F(SessionDatabase, IdsAreUniqueAcrossDocumentsAndKinds)
{
    CMadeSession session({"Vox"}, 0);
    const std::int64_t nOne = session.GetDocument(kScript).tracks[0].nId;
    const std::int64_t nTwo = session.GetDocument(kAudioSuite).tracks[0].nId;
    const std::int64_t nThree = session.AddRegion(SoundRegion(nOne));
    const std::int64_t nFour = session.AddTrack(kScript, "More");
    EXPECT_EQ((std::vector{nOne, nTwo, nThree, nFour}), (std::vector<std::int64_t>{1, 2, 3, 4}));
    EXPECT_EQ(session.Content().NextId(), 5);
}

TEST_F(SessionDatabase, TracksMoveAndTakeOtherNamesUnderTheirIds)
{
    CMadeSession session({"Vox", "Bass", "Drums"}, 0);
    session.MoveTrack(kScript, 3, 1);
    EXPECT_THAT(Names(session), ElementsAre("Vox", "Drums", "Bass"));
    session.MoveTrack(kScript, 1, 99);
    EXPECT_THAT(Names(session), ElementsAre("Drums", "Bass", "Vox"));
    session.RenameTrack(1, "Lead");
    EXPECT_THAT(Names(session), ElementsAre("Drums", "Bass", "Lead"));
    EXPECT_EQ(session.TrackAt(kScript, 2)->nId, 1);
    session.MoveTrack(kScript, 1, 0);
    EXPECT_THAT(Names(session), ElementsAre("Lead", "Drums", "Bass"));
    EXPECT_EQ(session.GetDocument(kAudioSuite).tracks[0].strName, "Vox");
    EXPECT_EQ(session.UpdateCount(), 4);
}

TEST_F(SessionDatabase, ATrackTakesWithItWhatStandsOnIt)
{
    CMadeSession session({"Vox", "Bass"}, 0);
    const std::int64_t nOther = session.AddRegion(SoundRegion(2));
    session.SelectRegion(kScript, session.AddRegion(SoundRegion(1)));
    session.AddMarkerArea({0, 1, 0, 100});
    Process reads{0, "GDX", "host", {{0, 1, 0, 100}}, {2}, kNullId};
    Process writes{0, "GDX", "host", {{0, 2, 0, 100}}, {1}, nOther};
    Process other{0, "GDX", "host", {{0, 2, 0, 100}}, {2}, nOther};
    session.AddProcess(kScript, reads);
    session.AddProcess(kScript, writes);
    const std::int64_t nKept = session.AddProcess(kScript, other);
    session.DeleteTrack(kScript, 1);
    const Document document = session.GetDocument(kScript);
    EXPECT_EQ(document.FindTrack(1), nullptr);
    ASSERT_EQ(document.regions.size(), 1u);
    EXPECT_EQ(document.regions[0].nId, nOther);
    EXPECT_EQ(document.nSelectedRegionId, kNullId);
    EXPECT_TRUE(document.markerAreas.empty());
    ASSERT_EQ(document.processes.size(), 1u);
    EXPECT_EQ(document.processes[0].nId, nKept);
    EXPECT_EQ(session.Content().Flaw(), std::nullopt);
}

TEST_F(SessionDatabase, EveryChangeCountsOneUpdate)
{
    CMadeSession session({"Vox"}, 0);
    const std::int64_t nRegion = session.AddRegion(SoundRegion(1));
    EXPECT_EQ(session.UpdateCount(), 1);
    session.SelectRegion(kScript, nRegion);
    EXPECT_EQ(session.UpdateCount(), 2);
    session.MoveDisplay(kAudioSuite, 12.5);
    EXPECT_EQ(session.UpdateCount(), 3);
    session.AddTrack(kScript, "Guitar");
    EXPECT_EQ(session.UpdateCount(), 4);
}

TEST_F(SessionDatabase, ADeletedRegionIsNamedNowhere)
{
    CMadeSession session({"Vox"}, 0);
    const std::int64_t nRegion = session.AddRegion(SoundRegion(1));
    const std::int64_t nOther = session.AddRegion(SoundRegion(1));
    session.SelectRegion(kScript, nRegion);
    const std::int64_t nProcess =
        session.AddProcess(kScript, {kNullId, "GDX", "PT", {}, {1}, nRegion});
    const std::int64_t nUpdates = session.UpdateCount();
    session.DeleteRegion(nRegion);
    EXPECT_EQ(session.UpdateCount(), nUpdates + 1);
    const Document document = session.GetDocument(kScript);
    EXPECT_EQ(document.FindRegion(nRegion), nullptr);
    EXPECT_NE(document.FindRegion(nOther), nullptr);
    EXPECT_EQ(document.nSelectedRegionId, kNullId);
    EXPECT_EQ(document.FindProcess(nProcess)->nRegionId, kNullId);
    EXPECT_EQ(session.Content().Flaw(), std::nullopt);
}

TEST_F(SessionDatabase, OtherRegionsStaySelectedWhenOneIsDeleted)
{
    CMadeSession session({"Vox"}, 0);
    const std::int64_t nRegion = session.AddRegion(SoundRegion(1));
    const std::int64_t nOther = session.AddRegion(SoundRegion(1));
    session.SelectRegion(kScript, nOther);
    session.DeleteRegion(nRegion);
    EXPECT_EQ(session.GetDocument(kScript).nSelectedRegionId, nOther);
}

TEST_F(SessionDatabase, NewAudioLeavesARegionWhereItIs)
{
    CMadeSession session({"Vox"}, 0);
    Region region = SoundRegion(1);
    region.channels = {1};
    const std::int64_t nRegion = session.AddRegion(region);
    session.ReplaceAudio(*session.FindRegion(kScript, nRegion), "/audio/made.wav");
    const Region replaced = session.FindRegion(kScript, nRegion).value();
    EXPECT_EQ(replaced.strPath, "/audio/made.wav");
    EXPECT_EQ(replaced.nStart, 0);
    EXPECT_EQ(replaced.nEnd, 20);
    EXPECT_EQ(replaced.TimelineStart(), 1010);
    EXPECT_TRUE(replaced.channels.empty());
    EXPECT_EQ(session.UpdateCount(), 2);
}

TEST_F(SessionDatabase, MarkerAreasComeAndGo)
{
    CMadeSession session({"Vox"}, 0);
    const std::int64_t nOne = session.AddMarkerArea({kNullId, 1, 0, 10});
    const std::int64_t nTwo = session.AddMarkerArea({kNullId, 1, 5, 15});
    session.DeleteMarkerArea(nOne);
    EXPECT_FALSE(session.HasMarkerArea(kScript, nOne));
    EXPECT_TRUE(session.HasMarkerArea(kScript, nTwo));
    EXPECT_FALSE(session.HasMarkerArea(kAudioSuite, nTwo));
    EXPECT_EQ(session.MarkerAreaAt(1, 0), nTwo);
    EXPECT_EQ(session.UpdateCount(), 3);
}

TEST_F(SessionDatabase, WhatChangesNothingCountsNothing)
{
    CMadeSession session({"Vox"}, 0);
    session.MoveDisplay(kScript, 0.0);
    session.SelectRegion(kScript, kNullId);
    EXPECT_EQ(session.UpdateCount(), 0);
}

TEST_F(SessionDatabase, ChangesStayInTheirDocument)
{
    CMadeSession session({"Vox"}, 0);
    const std::int64_t nRegion = session.AddRegion(SoundRegion(1));
    session.MoveDisplay(kScript, 7.0);
    EXPECT_TRUE(session.FindRegion(kScript, nRegion));
    EXPECT_FALSE(session.FindRegion(kAudioSuite, nRegion));
    EXPECT_FALSE(session.FindTrack(kAudioSuite, 1));
    EXPECT_EQ(session.GetDocument(kAudioSuite).dDisplayPosition, 0.0);
}

TEST_F(SessionDatabase, WhatIsMadeIsLoadedWhole)
{
    Make(TarvaneTest::FullSession());
    TarvaneTest::ExpectFullSession(CSessionDatabase::Load(m_file));
    EXPECT_THAT(m_folder.Files(), ElementsAre("session"));
}

TEST_F(SessionDatabase, ACommandIsThereForOthersWhenItIsCommitted)
{
    Make();
    CSessionDatabase database(m_file);
    database.Begin();
    database.AddRegion(SoundRegion(1));
    EXPECT_EQ(StoredRegions(), 0u);
    EXPECT_TRUE(database.HasChanged());
    database.Commit();
    EXPECT_FALSE(database.HasChanged());
    EXPECT_EQ(StoredRegions(), 1u);
    EXPECT_EQ(CSessionDatabase::Load(m_file).UpdateCount(), 1);
    EXPECT_EQ(CSessionDatabase::Load(m_file).NextId(), 4);
}

TEST_F(SessionDatabase, ACommandThatIsRolledBackWasNever)
{
    Make();
    CSessionDatabase database(m_file);
    database.Begin();
    const std::int64_t nRegion = database.AddRegion(SoundRegion(1));
    database.Rollback();
    EXPECT_EQ(database.UpdateCount(), 0);
    database.Begin();
    EXPECT_EQ(database.RegionCount(1), 0);
    EXPECT_EQ(database.AddRegion(SoundRegion(1)), nRegion) << "its id is free again";
}

TEST_F(SessionDatabase, ACommandSeesTheSessionOfItsBeginning)
{
    Make();
    CSessionDatabase one(m_file), other(m_file);
    one.Begin();
    other.Begin();
    other.AddRegion(SoundRegion(1));
    other.Commit();
    EXPECT_EQ(one.RegionCount(1), 0);
    EXPECT_THROW(one.AddRegion(SoundRegion(1)), CSessionConflict);
    one.Rollback();
    EXPECT_EQ(StoredRegions(), 1u);
    one.Begin();
    EXPECT_EQ(one.RegionCount(1), 1);
}

TEST_F(SessionDatabase, OneAtATimeIsInTheMiddleOfAChange)
{
    Make();
    CSessionDatabase one(m_file), other(m_file);
    one.Begin();
    one.AddRegion(SoundRegion(1));
    other.Begin();
    int nAsked = 0;
    other.WhenLocked([&] { return ++nAsked < 2; });
    EXPECT_THROW(other.AddRegion(SoundRegion(1)), CSessionConflict);
    EXPECT_EQ(nAsked, 2);
    other.WhenLocked(
        [&]
        {
            one.Rollback();
            return true;
        });
    EXPECT_NO_THROW(other.AddRegion(SoundRegion(1)));
}

TEST_F(SessionDatabase, PlacesOnATrackCountUpAndCloseUp)
{
    CMadeSession session({"Vox", "Guitar"}, 0);
    std::vector<std::int64_t> ids;
    for (int n = 0; n < 5; n++)
    {
        ids.push_back(session.AddRegion(SoundRegion(1)));
        session.AddRegion(SoundRegion(2));
    }
    for (const std::int64_t nPlace : {0, 1, 2, 4, 3, 0})
        EXPECT_EQ(session.RegionAt(1, nPlace), ids[static_cast<std::size_t>(nPlace)]);
    EXPECT_EQ(session.RegionAt(1, 5), kNullId);
    EXPECT_EQ(session.RegionAt(1, -1), kNullId);
    EXPECT_EQ(session.RegionAt(1, 3), ids[3]);
    session.DeleteRegion(ids[1]);
    EXPECT_EQ(session.RegionAt(1, 3), ids[4]);
    session.DeleteRegion(ids[4]);
    EXPECT_EQ(session.RegionAt(1, 3), kNullId);
    EXPECT_EQ(session.RegionAt(1, 2), ids[3]);
    session.DeleteRegion(ids[3]);
    session.AddRegion(SoundRegion(1));
    EXPECT_EQ(session.RegionAt(1, 0), ids[0]);
    EXPECT_EQ(session.RegionCount(1), 3);
}

TEST_F(SessionDatabase, RegionsAreFoundByWhereTheyBegin)
{
    CMadeSession session({"Vox", "Guitar"}, 0);
    const std::int64_t nHere = session.AddRegion(SoundRegion(1));
    session.AddRegion(SoundRegion(2));
    const auto found = [&](std::int64_t nFirst, std::int64_t nLast)
    {
        std::vector<std::int64_t> ids;
        for (const Region& region : session.RegionsThatBegin(1, nFirst, nLast))
            ids.push_back(region.nId);
        return ids;
    };
    EXPECT_THAT(found(1010, 1010), ElementsAre(nHere));
    EXPECT_THAT(found(1009, 1011), ElementsAre(nHere));
    EXPECT_THAT(found(1011, 2000), ElementsAre());
    EXPECT_THAT(found(0, 1009), ElementsAre());
}

TEST_F(SessionDatabase, ItsTablesRefuseWhatNoSessionHolds)
{
    Make(TarvaneTest::FullSession());
    CSessionDatabase database(m_file);
    database.Begin();
    Region region = SoundRegion(99);
    EXPECT_THROW(database.AddRegion(region), SQLite::Exception) << "no such track";
    region = SoundRegion(1);
    region.strPath = "relative.wav";
    EXPECT_THROW(database.AddRegion(region), SQLite::Exception);
    region = SoundRegion(1);
    region.nEnd = region.nStart;
    EXPECT_THROW(database.AddRegion(region), SQLite::Exception);
    EXPECT_THROW(database.AddMarkerArea({kNullId, 1, 5, 5}), SQLite::Exception);
    EXPECT_THROW(database.AddProcess(kScript, {kNullId, "GDX", "PT", {}, {1}, 99}),
                 SQLite::Exception);
}

TEST_F(SessionDatabase, OtherDatabasesAreToldFromSessions)
{
    EXPECT_THROW(CSessionDatabase{m_file}, SQLite::Exception) << "none is made";
    EXPECT_THAT(m_folder.Files(), ElementsAre());
    std::ofstream(m_file)
        << "this is a text, and long enough to be the head of something else .....";
    EXPECT_THROW(CSessionDatabase{m_file}, CNoDatabase);
    std::filesystem::remove(m_file);
    SQLite::Database(m_file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
        .exec("CREATE TABLE notes(text)");
    EXPECT_THROW(CSessionDatabase{m_file}, CSessionFlaw);
}

TEST_F(SessionDatabase, OneOfALaterProgramIsNoFlaw)
{
    Make();
    Tamper("PRAGMA user_version = 4");
    EXPECT_THROW(CSessionDatabase{m_file}, CSessionTooNew);
    Tamper("PRAGMA user_version = 0");
    EXPECT_THROW(CSessionDatabase{m_file}, CSessionFlaw);
    Tamper("PRAGMA user_version = 3; DROP TABLE session");
    EXPECT_THROW(CSessionDatabase{m_file}, CSessionFlaw);
}

TEST_F(SessionDatabase, FlawsOfRowsAndReferencesAreFound)
{
    const std::vector<std::pair<std::string, std::string>> flaws{
        {"UPDATE regions SET stop = 0", "CHECK constraint failed in regions"},
        {"UPDATE processes SET kind = ''", "CHECK constraint failed in processes"},
        {"UPDATE regions SET track = 99", "names one of its tracks that is missing"},
        {"UPDATE process_outputs SET track = 99", "names one of its tracks that is missing"}};
    for (const auto& [strStatement, strFlaw] : flaws)
    {
        Make(TarvaneTest::FullSession());
        EXPECT_EQ(CSessionDatabase(m_file).Flaw(), std::nullopt);
        Tamper("PRAGMA ignore_check_constraints = ON; " + strStatement);
        EXPECT_THAT(CSessionDatabase(m_file).Flaw().value_or("sound"), HasSubstr(strFlaw));
    }
}

TEST_F(SessionDatabase, NobodyAddsToAFlawedSessionBeforeTheFlawIsTold)
{
    Make(TarvaneTest::FullSession());
    Tamper("PRAGMA ignore_check_constraints = ON; UPDATE regions SET stop = 0");
    std::optional<std::string> told;
    const CSessionCheck check(m_file, [&told](const std::optional<std::string>& flaw)
                              { told = flaw.value_or("none"); });
    const auto add = [this]
    {
        SQLite::Database other(m_file.string(), SQLite::OPEN_READWRITE, 500);
        SQLite::Transaction(other, SQLite::TransactionBehavior::IMMEDIATE);
    };
    EXPECT_THROW(add(), SQLite::Exception) << "the check is done by now";
    while (!told)
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false);
    EXPECT_THAT(*told, testing::StartsWith("CHECK constraint failed"));
    EXPECT_NO_THROW(add());
}

TEST_F(SessionDatabase, FlawedPagesAreFound)
{
    CMadeSession many({"Vox"}, 0);
    for (int n = 0; n < 500; n++)
        many.AddRegion(SoundRegion(1));
    Make(many.Content());
    const auto nPages = std::filesystem::file_size(m_file) / 4096;
    ASSERT_GT(nPages, 20u);
    // The sixth from the end is one of the regions' and indices'.
    std::fstream file(m_file, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>((nPages - 6) * 4096));
    file << std::string(4096, '\x55');
    file.close();
    EXPECT_NE(CSessionDatabase(m_file).Flaw(), std::nullopt);
}

TEST_F(SessionDatabase, NobodyChangesItWhileItIsChecked)
{
    Make();
    CSessionDatabase database(m_file), other(m_file);
    EXPECT_EQ(database.Flaw(
                  [&]
                  {
                      other.Begin();
                      EXPECT_EQ(other.TrackCount(kScript), 1);
                      EXPECT_THROW(other.AddRegion(SoundRegion(1)), SQLite::Exception);
                      other.Rollback();
                  }),
              std::nullopt);
}

TEST_F(SessionDatabase, LoadingWritesNothing)
{
    Make(TarvaneTest::FullSession());
    std::filesystem::rename(m_file, m_folder / "100% a?b#c");
    CSessionDatabase::Load(m_folder / "100% a?b#c");
    EXPECT_THAT(m_folder.Files(), ElementsAre("100% a?b#c"));
}

TEST_F(SessionDatabase, ItsCopyIsWhole)
{
    Make();
    CSessionDatabase database(m_file);
    database.Begin();
    database.AddRegion(SoundRegion(1));
    database.Commit();
    std::filesystem::remove(m_file);
    database.CopyTo(m_folder / "copy");
    EXPECT_EQ(CSessionDatabase::Load(m_folder / "copy").GetDocument(kScript).regions.size(), 1u);
}

} // namespace
} // namespace Tarvane::Server
