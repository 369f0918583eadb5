#include "apps/server/faults/SessionMishaps.h"

#include "tests/apps/server/database/MadeSession.h"

#include <gmock/gmock.h>

namespace Tarvane::Server
{
namespace
{

using TarvaneTest::CMadeSession;
using testing::ElementsAre;

std::vector<std::string> Names(CMadeSession& session, DocumentKind kind)
{
    std::vector<std::string> names;
    for (const Track& track : session.Tracks(kind))
        names.push_back(track.strName);
    return names;
}

TEST(SessionMishaps, TheLastTrackVanishesFromBothDocuments)
{
    CMadeSession session({"Vox", "Bass", "Drums"}, 0);
    Befall(session, {Fault::TrackVanishes});
    for (const DocumentKind kind : kDocumentKinds)
        EXPECT_THAT(Names(session, kind), ElementsAre("Vox", "Bass"));
    EXPECT_EQ(session.Content().Flaw(), std::nullopt);
}

TEST(SessionMishaps, WithoutTracksNoneVanishes)
{
    CMadeSession session({}, 0);
    Befall(session, {Fault::TrackVanishes});
    EXPECT_EQ(session.UpdateCount(), 0);
}

TEST(SessionMishaps, TracksStandInReverseUnderOtherNamesAndKeepTheirIds)
{
    CMadeSession session({"Vox", "Bass", "Drums"}, 0);
    const Track vox = session.GetDocument(DocumentKind::Script).tracks[0];
    Befall(session, {Fault::TracksMove});
    EXPECT_THAT(Names(session, DocumentKind::Script),
                ElementsAre("Drums (renamed)", "Bass (renamed)", "Vox (renamed)"));
    EXPECT_EQ(session.GetDocument(DocumentKind::Script).tracks[2].nId, vox.nId);
    EXPECT_EQ(session.Content().Flaw(), std::nullopt);
}

TEST(SessionMishaps, ANameThatWouldBeTooLongStays)
{
    CMadeSession session({std::string(kLongestName, 'x')}, 0);
    Befall(session, {Fault::TracksMove});
    EXPECT_THAT(Names(session, DocumentKind::Script), ElementsAre(std::string(kLongestName, 'x')));
}

TEST(SessionMishaps, OtherFaultsChangeNothing)
{
    CMadeSession session({"Vox"}, 0);
    Befall(session, {Fault::HugeReply, Fault::DocumentVanishes, Fault::FrozenCounter});
    EXPECT_EQ(session.UpdateCount(), 0);
}

} // namespace
} // namespace Tarvane::Server
