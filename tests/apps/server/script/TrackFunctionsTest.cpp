#include "tests/apps/server/CommandFixture.h"

namespace Tarvane::Server
{
namespace
{

class TrackFunctions : public TarvaneTest::CommandFixture
{
};

TEST_F(TrackFunctions, TheListScriptListsTheNames)
{
    EXPECT_EQ(Result("if(SelectScriptDocument()) then\n\tnTracks = GetTrackCount()\n"
                     "\tprint(nTracks+1)\n\tprint(1)\n\tfor nTrack = 0,nTracks-1 do\n"
                     "\t\tidTrack = GetTrackID(nTrack)\n\t\tprint(GetTrackName(idTrack))\n\tend\n"
                     "else\n\tprint(1)\n\tprint(0)\nend\n"),
              "3\n1\nVox\nGuitar\n");
}

TEST_F(TrackFunctions, PlacesCountFromZero)
{
    EXPECT_EQ(SelectedResult("print(GetTrackName(GetTrackID(0)), GetTrackName(GetTrackID(1)))"),
              "Vox\tGuitar\n");
    EXPECT_EQ(SelectedError("GetTrackID(2)"),
              "GetTrackID: there is no track 2; the document has 2, counted from 0");
    EXPECT_EQ(SelectedError("GetTrackID(-1)"),
              "GetTrackID: there is no track -1; the document has 2, counted from 0");
}

TEST_F(TrackFunctions, NamesAreFoundByIdInTheSelectedDocument)
{
    EXPECT_EQ(SelectedError("GetTrackName(99)"),
              "GetTrackName: the document has no track with the id 99");
    // The id of a track of the other document.
    EXPECT_EQ(Error("SelectAudioSuiteDocument() local id = GetTrackID(0) SelectScriptDocument() "
                    "GetTrackName(id)"),
              "GetTrackName: the document has no track with the id 3");
}

} // namespace
} // namespace Tarvane::Server
