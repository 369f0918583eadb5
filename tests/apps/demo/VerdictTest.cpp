#include "apps/demo/Verdict.h"

#include <gmock/gmock.h>

using namespace Tarvane;
using namespace Tarvane::Server;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

constexpr double kOffset = 2.0;

// Two captures and the first one again, and the session that they should leave.
class Verdict : public testing::Test
{
protected:
    Verdict()
    {
        captures = {Capture("one", "Dialogue", 100, 4800, 0, false),
                    Capture("two", "ADR", 4900, 9600, 1, false),
                    Capture("one", "Dialogue", 100, 4800, 2, true)};
        dialogue = session.GetDocument(DocumentKind::Script).tracks[0].nId;
        adr = session.GetDocument(DocumentKind::Script).tracks[1].nId;
    }

    static DemoCapture Capture(const std::string& strName, const std::string& strTrack,
                               double dPosition, int nFrames, int nElement, bool fDuplicate)
    {
        DemoCapture capture{strName + ".wav", strTrack, dPosition, fDuplicate, {}};
        capture.hostAnswer = {{"dub", "/out/" + strName + "-001.wav"},
                              {"frames", double(nFrames)},
                              {"sampleRate", 48000.0},
                              {"outcome", fDuplicate ? "duplicate" : "delivered"},
                              {"ack",
                               {{"nElement", nElement},
                                {"fHandled", 1},
                                {"fNotDelivered", fDuplicate ? 1 : 0},
                                {"fFinal", 1}}}};
        return capture;
    }

    void Add(const std::string& strName, std::int64_t nTrackId, std::int64_t nPosition,
             std::int64_t nEnd, DocumentKind kind = DocumentKind::Script)
    {
        Region region;
        region.nTrackId = nTrackId;
        region.strPath = "/out/" + strName + "-001.wav";
        region.nEnd = nEnd;
        region.nPosition = nPosition;
        region.nSampleRate = 48000;
        std::array documents{session.GetDocument(DocumentKind::Script),
                             session.GetDocument(DocumentKind::AudioSuite)};
        documents[static_cast<std::size_t>(kind)].regions.push_back(region);
        session = CSession::Restore(std::move(documents), kOffset, 0, session.NextId());
    }
    void AddBoth()
    {
        Add("one", dialogue, 96100, 4800);
        Add("two", adr, 100900, 9600);
    }

    std::vector<std::string> Faults() const { return FindFaults(captures, session, kOffset); }

    CSession session{{"Dialogue", "ADR"}, kOffset};
    std::vector<DemoCapture> captures;
    std::int64_t dialogue = 0, adr = 0;
};

} // namespace

TEST_F(Verdict, AllAsItShouldBeIsNoFault)
{
    AddBoth();
    EXPECT_THAT(Faults(), IsEmpty());
}

TEST_F(Verdict, AMissingRegionIsAFault)
{
    Add("one", dialogue, 96100, 4800);
    EXPECT_THAT(Faults(), ElementsAre("the session lacks samples 0 to 9600 of /out/two-001.wav at "
                                      "100900 on ADR"));
}

TEST_F(Verdict, ARegionTooManyIsAFault)
{
    AddBoth();
    Add("one", dialogue, 96100, 4800);
    EXPECT_THAT(Faults(), ElementsAre(HasSubstr("the session has, unasked, samples 0 to 4800")));
}

TEST_F(Verdict, AnotherPlaceEndTrackOrFileIsAFault)
{
    Add("two", adr, 100900, 9600);
    const CSession half = session;
    Add("one", dialogue, 96101, 4800);
    EXPECT_EQ(Faults().size(), 2U) << "place";
    session = half;
    Add("one", dialogue, 96100, 4799);
    EXPECT_EQ(Faults().size(), 2U) << "end";
    session = half;
    Add("one", adr, 96100, 4800);
    EXPECT_EQ(Faults().size(), 2U) << "track";
    session = half;
    Add("other", dialogue, 96100, 4800);
    EXPECT_EQ(Faults().size(), 2U) << "file";
}

TEST_F(Verdict, ARegionInTheOtherDocumentIsAFault)
{
    AddBoth();
    Add("one", session.GetDocument(DocumentKind::AudioSuite).tracks[0].nId, 96100, 4800,
        DocumentKind::AudioSuite);
    EXPECT_EQ(Faults().size(), 1U);
}

TEST_F(Verdict, AnotherOffsetIsAFault)
{
    AddBoth();
    EXPECT_FALSE(FindFaults(captures, session, 1.0).empty());
}

TEST_F(Verdict, AWrongOutcomeIsAFault)
{
    AddBoth();
    captures[2].hostAnswer["outcome"] = "not delivered";
    EXPECT_THAT(Faults(), ElementsAre("one.wav should be duplicate and is not delivered"));
}

TEST_F(Verdict, EveryFieldOfTheAcknowledgeCounts)
{
    AddBoth();
    for (const char* szField : {"nElement", "fHandled", "fNotDelivered", "fFinal"})
    {
        const nlohmann::json right = captures[1].hostAnswer["ack"];
        captures[1].hostAnswer["ack"][szField] = 7;
        EXPECT_EQ(Faults().size(), 1U) << szField;
        captures[1].hostAnswer["ack"] = right;
    }
    captures[1].hostAnswer["ack"] = nullptr;
    EXPECT_EQ(Faults().size(), 1U);
}
