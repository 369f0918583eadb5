#include "apps/server/Misbehaviour.h"

#include <gmock/gmock.h>

#include <set>
#include <stdexcept>

namespace Tarvane::Server
{
namespace
{

std::string ErrorOf(std::string_view text)
{
    try
    {
        ParseFault(text);
        return "read";
    }
    catch (const std::invalid_argument& error)
    {
        return error.what();
    }
}

TEST(Misbehaviour, EveryFaultCanBeAskedForByItsName)
{
    std::set<Fault> faults;
    for (const FaultKind& kind : FaultKinds())
    {
        const PlannedFault planned = ParseFault(std::string(kind.szName) + "@12");
        EXPECT_EQ(planned.fault, kind.fault);
        EXPECT_EQ(planned.nEvent, 12);
        EXPECT_STRNE(kind.szMeaning, "");
        EXPECT_TRUE(faults.insert(kind.fault).second) << kind.szName;
    }
    EXPECT_EQ(faults.count(Fault::None), 0u);
}

TEST(Misbehaviour, WhatCannotBeReadSaysWhatCan)
{
    EXPECT_EQ(ErrorOf("hang"),
              "write NAME@N; the names are exit-before-effect, exit-after-effect, hang");
    EXPECT_EQ(ErrorOf("dance@1"), "there is no fault \"dance\"; the names are exit-before-effect, "
                                  "exit-after-effect, hang");
    for (const char* szText : {"hang@", "hang@0", "hang@-1", "hang@1x", "hang@x", "hang@ 1",
                               "hang@99999999999999999999"})
        EXPECT_EQ(ErrorOf(szText), "write NAME@N with the number of an event, from 1") << szText;
}

TEST(Misbehaviour, AFaultComesAtItsEventOnly)
{
    const std::vector<PlannedFault> faults{{Fault::Hang, 3}, {Fault::ExitAfterEffect, 1}};
    EXPECT_EQ(FaultAt(faults, 1), Fault::ExitAfterEffect);
    EXPECT_EQ(FaultAt(faults, 2), Fault::None);
    EXPECT_EQ(FaultAt(faults, 3), Fault::Hang);
    EXPECT_EQ(FaultAt({}, 1), Fault::None);
}

} // namespace
} // namespace Tarvane::Server
