#include "apps/host/Stalls.h"

#include <gmock/gmock.h>

#include <chrono>

using namespace Tarvane;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;

namespace
{

// Lets the clock go on, by however little.
void Dwell()
{
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() == start)
    {
    }
}

} // namespace

TEST(Stalls, EachCauseHasItsCountItsTotalAndItsLongest)
{
    CStalls stalls;
    stalls.Add(StallCause::Delivery, 30ms);
    stalls.Add(StallCause::Delivery, 70ms);
    stalls.Add(StallCause::Delivery, 20ms);
    stalls.Add(StallCause::Menu, 5ms);
    const nlohmann::json expected = {
        {"delivery", {{"count", 3}, {"total", 120.0}, {"longest", 70.0}}},
        {"menu", {{"count", 1}, {"total", 5.0}, {"longest", 5.0}}}};
    EXPECT_EQ(stalls.Describe()["causes"], expected);
}

TEST(Stalls, TheWholeIsTheSumOfTheCausesAndTheLongestOfThem)
{
    CStalls stalls;
    stalls.Add(StallCause::Opening, 30ms);
    stalls.Add(StallCause::Closing, 50ms);
    EXPECT_EQ(stalls.Describe()["total"], 80.0);
    EXPECT_EQ(stalls.Describe()["longest"], 50.0);
}

TEST(Stalls, EveryCauseHasAWordOfItsOwn)
{
    CStalls stalls;
    for (std::size_t n = 0; n < kStallCauses; ++n)
    {
        stalls.Add(static_cast<StallCause>(n), 1ms);
    }
    std::vector<std::string> words;
    const nlohmann::json told = stalls.Describe();
    for (const auto& cause : told["causes"].items())
    {
        words.push_back(cause.key());
    }
    EXPECT_THAT(words, testing::ElementsAre("arming", "closing", "delivery", "drawing", "menu",
                                            "opening", "progress", "toggle", "track choice"));
}

TEST(Stalls, AStayIsAddedWhenItEnds)
{
    CStalls stalls;
    {
        const CStalls::CStay stay(stalls, StallCause::Menu);
        Dwell();
        EXPECT_TRUE(stalls.Describe()["causes"].empty());
    }
    EXPECT_EQ(stalls.Describe()["causes"]["menu"]["count"], 1);
    EXPECT_GT(stalls.Describe()["causes"]["menu"]["total"], 0.0);
}

TEST(Stalls, AStayWithinAnotherCountsAsTheOuters)
{
    CStalls stalls;
    {
        const CStalls::CStay outer(stalls, StallCause::Opening);
        const CStalls::CStay inner(stalls, StallCause::Arming);
    }
    {
        const CStalls::CStay next(stalls, StallCause::Toggle);
    }
    EXPECT_EQ(stalls.Describe()["causes"]["opening"]["count"], 1);
    EXPECT_EQ(stalls.Describe()["causes"]["toggle"]["count"], 1);
    EXPECT_FALSE(stalls.Describe()["causes"].contains("arming"));
}

TEST(Stalls, TheStoryTellsTheWholeAndTheCausesThatThereWere)
{
    CStalls stalls;
    stalls.Add(StallCause::Delivery, 1500ms);
    stalls.Add(StallCause::Delivery, 500ms);
    EXPECT_EQ(stalls.Tell(),
              "The view kept the main thread 2000.0 ms in all, 1500.0 ms at the longest\n"
              "  delivery          2 times     2000.0 ms in all     1500.0 ms at the longest\n");
}
