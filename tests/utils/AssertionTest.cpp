#include "utils/Assertion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::KilledBySignal;

namespace
{
constexpr int kLineOfTheCheck = __LINE__ + 3;
void CheckPointer(const void* p)
{
    TARVANE_ASSERT(p != NULL);
}
} // namespace

TEST(AssertionDeathTest, ReportsTheFourTextsAndAborts)
{
    EXPECT_EXIT(AssertionFailed("Save", "ParameterBlock", 1239, "a % b"), KilledBySignal(SIGABRT),
                HasSubstr("Assertion failed: (a % b), function Save, file ParameterBlock, line "
                          "1239.\n"));
}

TEST(AssertionDeathTest, AFalseConditionIsReportedAsItIsWritten)
{
    EXPECT_EXIT(
        CheckPointer(nullptr), KilledBySignal(SIGABRT),
        AllOf(HasSubstr("Assertion failed: (p != NULL), function CheckPointer, file "),
              HasSubstr("AssertionTest.cpp, line " + std::to_string(kLineOfTheCheck) + ".\n")));
}

TEST(Assertion, ATrueConditionIsEvaluatedOnceAndPasses)
{
    int nEvaluated = 0;
    TARVANE_ASSERT(++nEvaluated == 1);
    EXPECT_EQ(nEvaluated, 1);
}

TEST(AssertionDeathTest, AConditionMayHoldCommas)
{
    EXPECT_DEATH(TARVANE_ASSERT(std::string(2, 'x') == std::string{'x', 'y'}),
                 HasSubstr("(std::string(2, 'x') == std::string{'x', 'y'}), function"));
}
