// Which answer an event gets, and what is told of it.

#include "apps/replay/ServerMatch.h"

#include "apps/replay/RecordingReader.h"
#include "tests/apps/replay/RecordingText.h"
#include "utils/UnicodeText.h"

#include <gmock/gmock.h>

#include <sstream>

using namespace Tarvane;
using namespace Tarvane::Replay;
using namespace TarvaneTest;
using testing::HasSubstr;

namespace
{

class ServerMatchTest : public testing::Test
{
protected:
    // The number of the event whose answer this gets; 0 for none.
    long long Take(const std::string& strScript, AEEventID nId = 'LCmd')
    {
        const std::u16string units = Utf16FromUtf8(strScript);
        const Exchange* const pExchange = m_match.Take(
            'TKNE', nId,
            {{keyDirectObject,
              {typeUnicodeText,
               {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)}}}});
        return pExchange == nullptr ? 0 : pExchange->nNumber;
    }

    std::string Story()
    {
        const std::string strStory = m_story.str();
        m_story.str("");
        return strStory;
    }

    static std::vector<Exchange> Exchanges()
    {
        std::istringstream stream(
            HeaderLine() + ExchangeLines(1, "list()", "1") + ExchangeLines(2, "offset()", "2") +
            ExchangeLines(3, "list()", "3") + ExchangeLines(4, "add(\"/a\",1)", "4"));
        return ReadRecording(stream, "x").exchanges;
    }

    std::ostringstream m_story;
    CServerMatch m_match{Exchanges(), m_story};
};

} // namespace

TEST_F(ServerMatchTest, EventsAsRecordedAreAnsweredInOrder)
{
    EXPECT_EQ(Take("list()"), 1);
    EXPECT_EQ(Take("offset()"), 2);
    EXPECT_EQ(Take("list()"), 3);
    EXPECT_FALSE(m_match.HasAll());
    EXPECT_EQ(Take("add(\"/a\",1)"), 4);
    EXPECT_TRUE(m_match.HasAll());
    EXPECT_TRUE(m_match.End());
    EXPECT_EQ(Story(), "All 4 events came as recorded.\n");
}

TEST_F(ServerMatchTest, OtherWordsForTheSameCallsAreToldAndAnswered)
{
    Take("list()");
    Take("offset()");
    Take("list()");
    EXPECT_EQ(Take("add(\"/b\",1)"), 4);
    EXPECT_EQ(Story(), "event 4, at 0.004000 s: another one came\n"
                       "  '----', line 1, character 7\n"
                       "    expected: add(\"/a\",1)\n"
                       "    got:      add(\"/b\",1)\n"
                       "                    ^\n");
    EXPECT_FALSE(m_match.End());
    EXPECT_EQ(Story(), "Differences: 1, in 4 events.\n");
}

TEST_F(ServerMatchTest, EventThatComesOnceMoreGetsTheAnswerItGotBefore)
{
    Take("list()");
    EXPECT_EQ(Take("list()"), 1);
    EXPECT_EQ(Story(), "event 1, at 0.001000 s: it came once more (list)\n");
    EXPECT_EQ(Take("offset()"), 2);
    EXPECT_EQ(Take("list()"), 3);
    // The last answer is the one that stands.
    EXPECT_EQ(Take("list()"), 3);
    EXPECT_EQ(Take("add(\"/a\",1)"), 4);
    EXPECT_FALSE(m_match.End());
}

TEST_F(ServerMatchTest, WhatIsLeftOutIsToldAsMissing)
{
    Take("list()");
    EXPECT_EQ(Take("add(\"/a\",1)"), 4);
    EXPECT_EQ(Story(), "event 2, at 0.002000 s: it did not come (offset)\n"
                       "event 3, at 0.003000 s: it did not come (list)\n");
    EXPECT_FALSE(m_match.End());
}

TEST_F(ServerMatchTest, WhatHasNotComeAtTheEndIsMissing)
{
    Take("list()");
    Take("offset()");
    Take("list()");
    EXPECT_FALSE(m_match.End());
    EXPECT_THAT(Story(), HasSubstr("event 4, at 0.004000 s: it did not come (add)\n"));
}

TEST_F(ServerMatchTest, EventThatFitsNowhereGetsNoAnswerAndChangesNothing)
{
    EXPECT_EQ(Take("quit()"), 0);
    EXPECT_THAT(Story(), testing::AllOf(HasSubstr("does not have (quit)\n"),
                                        HasSubstr("expected was event 1"), HasSubstr("^\n")));
    EXPECT_EQ(Take("list()", 'Othr'), 0);
    EXPECT_EQ(Take("list()"), 1);
}

TEST_F(ServerMatchTest, EventBehindTheLastIsToldAsTooMuch)
{
    for (const char* szScript : {"list()", "offset()", "list()", "add(\"/a\",1)"})
        Take(szScript);
    EXPECT_EQ(Take("quit()"), 0);
    EXPECT_THAT(Story(), HasSubstr("nothing more was expected"));
    EXPECT_EQ(Take("offset()"), 2);
    EXPECT_FALSE(m_match.End());
}
