#include "apps/server/faults/Misbehaviour.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace Tarvane::Server
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string ErrorOf(std::string_view text)
{
    try
    {
        ParseFaults(text);
        return "read";
    }
    catch (const std::invalid_argument& error)
    {
        return error.what();
    }
}

CMisbehaviour With(std::string_view text, std::optional<std::uint64_t> seed = std::nullopt)
{
    return CMisbehaviour({ParseFaults(text)}, seed);
}

TEST(Misbehaviour, EveryFaultCanBeAskedForByItsName)
{
    FaultSet faults;
    for (const FaultKind& kind : FaultKinds())
    {
        EXPECT_THAT(ParseFaults(kind.szName).faults, ElementsAre(kind.fault));
        EXPECT_STREQ(NameOf(kind.fault), kind.szName);
        EXPECT_STRNE(kind.szMeaning, "");
        EXPECT_TRUE(faults.insert(kind.fault).second) << kind.szName;
    }
    EXPECT_EQ(faults.size(), 28u);
}

TEST(Misbehaviour, WhatCannotBeReadSaysWhatCan)
{
    EXPECT_THAT(ErrorOf("dance@1"), HasSubstr("there is no fault \"dance\"; the names are "
                                              "slow-start, no-reply, late-reply, "));
    EXPECT_THAT(ErrorOf("hang,"), HasSubstr("there is no fault \"\""));
    EXPECT_THAT(ErrorOf(""), HasSubstr("there is no fault \"\""));
    for (const char* szText : {"hang@", "hang@0", "hang@-1", "hang@1x", "hang@x", "hang@ 1",
                               "hang@1-", "hang@1-2-3", "hang@99999999999999999999"})
        EXPECT_EQ(ErrorOf(szText), "write NAME@N or NAME@N-M with numbers of events, from 1")
            << szText;
    EXPECT_EQ(ErrorOf("hang@3-2"), "write NAME@N-M with M no smaller than N");
}

TEST(Misbehaviour, LastsFromItsFirstEventOn)
{
    CMisbehaviour all = With("no-result");
    EXPECT_THAT(all.At(1), ElementsAre(Fault::NoResult));
    CMisbehaviour later = With("no-result@3");
    EXPECT_THAT(later.At(2), IsEmpty());
    EXPECT_THAT(later.At(3), ElementsAre(Fault::NoResult));
    EXPECT_THAT(later.At(4000), ElementsAre(Fault::NoResult));
}

TEST(Misbehaviour, EndsBehindItsLastEvent)
{
    CMisbehaviour some = With("no-result@3-4");
    EXPECT_THAT(some.At(2), IsEmpty());
    EXPECT_THAT(some.At(4), ElementsAre(Fault::NoResult));
    EXPECT_THAT(some.At(5), IsEmpty());
}

TEST(Misbehaviour, ManyFaultsComeTogether)
{
    CMisbehaviour misbehaviour(
        {ParseFaults("late-reply,error-beside-result@2"), ParseFaults("hang@2-2")});
    EXPECT_THAT(misbehaviour.At(1), IsEmpty());
    EXPECT_THAT(misbehaviour.At(2),
                ElementsAre(Fault::LateReply, Fault::Hang, Fault::ErrorBesideResult));
    EXPECT_THAT(misbehaviour.At(3), ElementsAre(Fault::LateReply, Fault::ErrorBesideResult));
}

TEST(Misbehaviour, WhatBefallsTheSessionHappensOnce)
{
    for (const char* szName : {"track-vanishes", "tracks-move", "event-flood"})
    {
        CMisbehaviour misbehaviour = With(std::string(szName) + "@2");
        EXPECT_THAT(misbehaviour.At(1), IsEmpty());
        EXPECT_EQ(misbehaviour.At(2).size(), 1u) << szName;
        EXPECT_THAT(misbehaviour.At(3), IsEmpty()) << szName;
    }
}

TEST(Misbehaviour, ASlowStartIsOfNoEvent)
{
    CMisbehaviour misbehaviour = With("slow-start");
    EXPECT_TRUE(misbehaviour.StartsSlowly());
    EXPECT_THAT(misbehaviour.At(1), IsEmpty());
    EXPECT_FALSE(With("hang").StartsSlowly());
    EXPECT_FALSE(CMisbehaviour().StartsSlowly());
}

TEST(Misbehaviour, TheSeedAloneDecidesWhatIsDrawn)
{
    const auto drawn = [](std::uint64_t nSeed)
    {
        CMisbehaviour misbehaviour = With("no-result,empty-result,tracks-move@11", nSeed);
        std::vector<FaultSet> faults;
        for (std::int64_t nEvent = 1; nEvent <= 1010; ++nEvent)
            faults.push_back(misbehaviour.At(nEvent));
        return faults;
    };
    const std::vector<FaultSet> one = drawn(1);
    EXPECT_EQ(one, drawn(1));
    EXPECT_NE(one, drawn(2));
    std::map<Fault, int> counts;
    for (std::size_t n = 0; n < one.size(); ++n)
    {
        EXPECT_LE(one[n].size(), n < 10 ? 0u : 1u);
        for (const Fault fault : one[n])
            ++counts[fault];
    }
    // About every fourth of a thousand events, shared by three.
    for (const Fault fault : {Fault::NoResult, Fault::EmptyResult, Fault::TracksMove})
        EXPECT_NEAR(counts[fault], 83, 40) << NameOf(fault);
}

} // namespace
} // namespace Tarvane::Server
