#include "apps/support/unit/SignalFaults.h"

#include <gmock/gmock.h>

#include <stdexcept>

using namespace Tarvane;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

std::string ErrorOf(std::string_view names)
{
    try
    {
        ParseSignalFaults(names);
        return "read";
    }
    catch (const std::invalid_argument& error)
    {
        return error.what();
    }
}

} // namespace

TEST(SignalFaults, EachCanBeAskedForByItsName)
{
    SignalFaults faults;
    for (const SignalFaultKind& kind : SignalFaultKinds())
    {
        EXPECT_THAT(ParseSignalFaults(kind.szName), ElementsAre(kind.fault));
        EXPECT_STRNE(kind.szMeaning, "");
        EXPECT_TRUE(faults.insert(kind.fault).second) << kind.szName;
    }
    EXPECT_EQ(faults.size(), 38U);
}

TEST(SignalFaults, ManyCanBeAskedForTogether)
{
    EXPECT_THAT(ParseSignalFaults("storm,record-short,storm"),
                ElementsAre(SignalFault::RecordShort, SignalFault::Storm));
}

TEST(SignalFaults, WhatIsNoneSaysWhatIs)
{
    EXPECT_THAT(ErrorOf("storm,dance"),
                HasSubstr("there is no fault \"dance\"; the names are index-never-negative, "));
    EXPECT_THAT(ErrorOf(""), HasSubstr("there is no fault \"\""));
    EXPECT_THAT(ErrorOf("storm,"), HasSubstr("there is no fault \"\""));
}
