#include "apps/server/SessionMishaps.h"

#include <gmock/gmock.h>

namespace Tarvane::Server
{
namespace
{

using testing::ElementsAre;

std::vector<std::string> Names(const CSession& session, DocumentKind kind)
{
    std::vector<std::string> names;
    for (const Track& track : session.GetDocument(kind).tracks)
        names.push_back(track.strName);
    return names;
}

TEST(SessionMishaps, TheLastTrackVanishesFromBothDocuments)
{
    CSession session({"Vox", "Bass", "Drums"}, 0);
    Befall(session, {Fault::TrackVanishes});
    for (const DocumentKind kind : kDocumentKinds)
        EXPECT_THAT(Names(session, kind), ElementsAre("Vox", "Bass"));
    EXPECT_EQ(session.Flaw(), std::nullopt);
}

TEST(SessionMishaps, WithoutTracksNoneVanishes)
{
    CSession session({}, 0);
    Befall(session, {Fault::TrackVanishes});
    EXPECT_EQ(session.UpdateCount(), 0);
}

TEST(SessionMishaps, TracksStandInReverseUnderOtherNamesAndKeepTheirIds)
{
    CSession session({"Vox", "Bass", "Drums"}, 0);
    const Track vox = session.GetDocument(DocumentKind::Script).tracks[0];
    Befall(session, {Fault::TracksMove});
    EXPECT_THAT(Names(session, DocumentKind::Script),
                ElementsAre("Drums (renamed)", "Bass (renamed)", "Vox (renamed)"));
    EXPECT_EQ(session.GetDocument(DocumentKind::Script).tracks[2].nId, vox.nId);
    EXPECT_EQ(session.Flaw(), std::nullopt);
}

TEST(SessionMishaps, ANameThatWouldBeTooLongStays)
{
    CSession session({std::string(kLongestName, 'x')}, 0);
    Befall(session, {Fault::TracksMove});
    EXPECT_THAT(Names(session, DocumentKind::Script), ElementsAre(std::string(kLongestName, 'x')));
}

TEST(SessionMishaps, OtherFaultsChangeNothing)
{
    CSession session({"Vox"}, 0);
    Befall(session, {Fault::HugeReply, Fault::DocumentVanishes, Fault::FrozenCounter});
    EXPECT_EQ(session.UpdateCount(), 0);
}

} // namespace
} // namespace Tarvane::Server
