// Which fault of a plug-in breaks which rules: the host's signal side with each fault that it can
// be asked for, examined in this process, since none of them ends one.
#include "apps/conform/plugin/PlugInExamination.h"
#include "apps/support/unit/SignalFaults.h"
#include "tests/apps/conform/ConformFixture.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <map>
#include <set>
#include <string>

using namespace Tarvane;
using namespace Tarvane::Conform;
using namespace TarvaneTest;

namespace
{

using Ids = std::set<std::string>;

constexpr double kTimeout = 1.0; // seconds
constexpr double kMoment = 0.02;
constexpr std::size_t kTurns = 4;

class PlugInFaults : public testing::Test
{
protected:
    PlugInFaults() { setenv("TMPDIR", m_folder.Path().c_str(), 1); }
    ~PlugInFaults() override
    {
        unsetenv("TMPDIR");
        unsetenv("TARVANE_MISBEHAVE");
    }

    static Findings Examine(const std::string& strFaults)
    {
        static const CPlugInLibrary library(SIGNAL_SIDE_LIBRARY);
        setenv("TARVANE_MISBEHAVE", strFaults.c_str(), 1);
        return ExamineInOrder(PlugInRules(),
                              [](const PlugInRule& rule) {
                                  return ExamineRule(rule, PlugInBench{library, kTimeout, kMoment});
                              });
    }

    static Ids With(Outcome outcome, const Findings& findings)
    {
        Ids ids;
        for (const Finding& finding : findings)
            if (finding.outcome == outcome)
                ids.insert(finding.rule.szId);
        return ids;
    }

    CTemporaryFolder m_folder;
};

const std::map<SignalFault, Ids> kBroken{
    {SignalFault::IndexNeverNegative, {"P3", "P19", "P21", "P33"}},
    {SignalFault::ElementsUnannounced, {"P12"}},
    // What is left out is nothing in our buffer: no rate, and no region.
    {SignalFault::RecordShort, {"P14", "P16", "P18", "P35"}},
    {SignalFault::PathsUnterminated, {"P15"}},
    {SignalFault::NanPosition, {"P16"}},
    {SignalFault::InfinitePosition, {"P16"}},
    {SignalFault::NanRegion, {"P16"}},
    {SignalFault::InfiniteRegion, {"P16"}},
    // The next capture gets the name that has become free.
    {SignalFault::FileDiscarded, {"P17", "P34"}},
    {SignalFault::AckIgnored, {"P19", "P21"}},
    {SignalFault::ArmUnreported, {"P8", "P20", "P36"}},
    {SignalFault::ArmIgnored, {"P5"}},
    {SignalFault::TrackForgotten, {"P4"}},
    {SignalFault::SixteenThreads, {"P27", "P28", "P29"}},
    {SignalFault::Storm, {"P27", "P28", "P29"}},
    // That it goes before the view is the host's doing; what is left of it is the sixteen threads.
    {SignalFault::DisposedWhileNotifying, {"P27", "P28", "P29"}},
    {SignalFault::ReadsRefused, {"P2", "P3", "P4", "P5"}},
    {SignalFault::Overrun, {"P6", "P31"}},
    {SignalFault::UnknownAccepted, {"P32"}},
    {SignalFault::InfoMissing, {"P30"}},
    {SignalFault::NanLength, {"P25"}},
    {SignalFault::PositionRaised, {"P26"}},
    {SignalFault::ElementLate, {"P13"}},
    {SignalFault::ElementReplaced, {"P21"}},
    {SignalFault::LastFirst, {"P23"}},
    {SignalFault::FileUnfinished, {"P18"}},
    {SignalFault::AckPadding, {"P22"}},
    {SignalFault::AckUnmatched, {"P24"}},
    {SignalFault::ListenersKept, {"P9"}},
    {SignalFault::ListenersConfused, {"P10"}},
    {SignalFault::NotifiesAfterDisposal, {"P11"}},
    {SignalFault::StateShared, {"P7"}},
    {SignalFault::AnnouncedTwice, {"P33"}},
    {SignalFault::PathUncarried, {"P34"}},
    {SignalFault::RateWrong, {"P35"}},
    {SignalFault::DisarmUnreported, {"P36"}},
    {SignalFault::LengthShort, {"P37"}},
    {SignalFault::ViewHidden, {"P38"}},
};

// What the page for makers says of each rule.
const std::map<std::string, const char*> kSentences{
    {"P1", "tells the view through properties of its audio unit"},
    {"P2", "one byte: 1 armed, 0 not"},
    {"P3", "negative for none"},
    {"P4", "the plug-in only keeps it"},
    {"P5", "the armed state asked for"},
    {"P6", "A read never gets more bytes than it has room for"},
    {"P7", "Instances have nothing in common"},
    {"P8", "64004 is raised after every change of the armed state, whatever its cause"},
    {"P9", "When the removal of a listener returns, that listener is not called again"},
    {"P10", "A listener is known by its procedure and its user data together"},
    {"P11", "none is when disposal returns"},
    {"P12", "64000 is raised"},
    {"P13", "What is not in place by then is not delivered"},
    {"P14", "every field that it reads has to be written"},
    {"P15", "full path in UTF-8 that ends inside its field"},
    {"P16", "all in samples and finite"},
    {"P17", "The file stays as it is"},
    {"P18", "The file is written to its end"},
    {"P19", "64007 goes on to the next element"},
    {"P20", "64004 is raised: only then does the view show why"},
    {"P21", "elements that are finished meanwhile wait behind it"},
    {"P22", "The last byte is padding, whose value means nothing"},
    {"P23", "in the order of their captures"},
    {"P24", "an acknowledge speaks of its own element alone"},
    {"P25", "seconds captured so far"},
    {"P26", "not to be raised"},
    {"P27", "when those of one capture come from one thread"},
    {"P28", "no more than a thousand times a second"},
    {"P29", "Nothing is raised while nothing happens"},
    {"P30", "The sizes of its properties, and which are written, can be asked for"},
    {"P31", "less room than a value takes is refused"},
    {"P32", "properties that a plug-in has not"},
    {"P33", "once for each element"},
    {"P34", "at most 1023 bytes without double quotes"},
    {"P35", "the file's sample rate"},
    {"P36", "the end of a capture too"},
    {"P37", "what is not written is whatever stood there"},
    {"P38", "by which hosts find the view"},
};

} // namespace

// They wait more than they work, so several run at a time.
class PlugInFaultsInTurn : public PlugInFaults, public testing::WithParamInterface<std::size_t>
{
};

TEST_P(PlugInFaultsInTurn, EachBreaksItsRules)
{
    const std::vector<SignalFaultKind>& kinds = SignalFaultKinds();
    for (std::size_t n = GetParam(); n < kinds.size(); n += kTurns)
        EXPECT_EQ(With(Outcome::Broken, Examine(kinds[n].szName)), kBroken.at(kinds[n].fault))
            << kinds[n].szName;
}
INSTANTIATE_TEST_SUITE_P(Turn, PlugInFaultsInTurn, testing::Range<std::size_t>(0, kTurns));

TEST_F(PlugInFaults, EveryRuleIsBrokenBySomeFault)
{
    Ids broken{"P1"}; // by libraries that do not open
    for (const auto& [fault, ids] : kBroken)
        broken.insert(ids.begin(), ids.end());
    Ids all;
    for (const PlugInRule& rule : PlugInRules())
        all.insert(rule.szId);
    EXPECT_EQ(broken, all);
}

TEST_F(PlugInFaults, EveryRuleHasItsSentenceOnThePageForMakers)
{
    const std::string strPage = FileText(PAGE_FOR_MAKERS);
    for (const PlugInRule& rule : PlugInRules())
        EXPECT_THAT(strPage, testing::HasSubstr(kSentences.at(rule.szId))) << rule.szId;
}

TEST_F(PlugInFaults, RulesAboutCapturesWaitForOneThatIsAnnounced)
{
    const Findings findings = Examine("elements-unannounced");
    for (const Finding& finding : findings)
    {
        if (finding.outcome == Outcome::NotExamined)
        {
            EXPECT_EQ(finding.strSeen, "no capture is announced") << finding.rule.szId;
        }
    }
    EXPECT_THAT(With(Outcome::NotExamined, findings), testing::IsSupersetOf({"P13", "P24", "P25"}));
}
