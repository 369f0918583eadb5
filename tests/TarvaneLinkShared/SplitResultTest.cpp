#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace
{
using Items = std::vector<std::string>;

Items Split(const std::string& text)
{
    Items items = {"left from before"};
    CTarvaneScript().SplitResult(text.c_str(), &items);
    return items;
}

// Function, source, line and condition are what crash reports are matched by.
constexpr char szReport[] =
    "Assertion failed: ((int)pstrItems->size() == nItems), function SplitResult, "
    "file TarvaneLinkShared/TarvaneLinkScript, line 278.";
} // namespace

#define EXPECT_STOPS(text)                                                                         \
    EXPECT_EXIT(Split(text), ::testing::KilledBySignal(SIGABRT), HasSubstr(szReport))

TEST(SplitResult, FirstLineIsTheCountAndLaterOnesAreItems)
{
    EXPECT_THAT(Split("2\n1\nVox\n"), ElementsAre("1", "Vox"));
}

TEST(SplitResult, EmptyTextGivesNoItems)
{
    EXPECT_THAT(Split(""), IsEmpty());
}

TEST(SplitResult, NoTextGivesNoItems)
{
    Items items = {"left from before"};
    CTarvaneScript().SplitResult(nullptr, &items);
    EXPECT_THAT(items, IsEmpty());
}

TEST(SplitResult, OnlyLineEndsGiveNoItems)
{
    EXPECT_THAT(Split("\n\r\n\n"), IsEmpty());
}

TEST(SplitResult, LineEndsOfEveryKindParseAlike)
{
    for (const char* szEnd : {"\n", "\r", "\r\n", "\n\n\n", "\r\r\n\r"})
    {
        const std::string end = szEnd;
        EXPECT_THAT(Split("2" + end + "1" + end + "Vox" + end), ElementsAre("1", "Vox"));
    }
}

TEST(SplitResult, LastLineNeedsNoEnd)
{
    EXPECT_THAT(Split("2\n1\nVox"), ElementsAre("1", "Vox"));
}

TEST(SplitResult, CountIsTheFirstLineThatIsNotEmpty)
{
    EXPECT_THAT(Split("\n\r\n1\nVox\n"), ElementsAre("Vox"));
}

TEST(SplitResult, BlanksAndTabsArePartOfAnItem)
{
    EXPECT_THAT(Split("2\n \n\ta b \n"), ElementsAre(" ", "\ta b "));
}

TEST(SplitResult, CountIsReadUpToItsLastDigit)
{
    EXPECT_THAT(Split(" +1.0 items\nVox\n"), ElementsAre("Vox"));
}

TEST(SplitResult, CountIsNoFloat)
{
    EXPECT_THAT(Split("1e1\nVox\n"), ElementsAre("Vox"));
    EXPECT_THAT(Split("1.9\nVox\n"), ElementsAre("Vox"));
    EXPECT_THAT(Split("0x1\n"), IsEmpty());
}

TEST(SplitResult, CountOfZeroWithoutItemsPasses)
{
    EXPECT_THAT(Split("0\n"), IsEmpty());
}

TEST(SplitResult, CountThatIsNoNumberReadsAsZero)
{
    EXPECT_THAT(Split("Vox\n"), IsEmpty());
}

TEST(SplitResult, ALineOf999CharactersIsOneItem)
{
    const std::string line(999, 'x');
    EXPECT_THAT(Split("1\n" + line + "\n"), ElementsAre(line));
    EXPECT_THAT(Split("1\n" + line), ElementsAre(line));
    EXPECT_THAT(Split("2\n" + line + "\r\ny"), ElementsAre(line, "y"));
}

TEST(SplitResult, ALineOf1000CharactersIsTwoItems)
{
    EXPECT_THAT(Split("2\n" + std::string(999, 'x') + "y\n"),
                ElementsAre(std::string(999, 'x'), "y"));
}

TEST(SplitResult, AVeryLongLineIsCutEvery999Characters)
{
    EXPECT_THAT(Split("3\n" + std::string(2 * 999 + 1, 'x') + "\n"),
                ElementsAre(std::string(999, 'x'), std::string(999, 'x'), "x"));
}

TEST(SplitResult, ACountLineIsCutLikeAnyOther)
{
    EXPECT_THAT(Split("1" + std::string(998, ' ') + "x\n"), ElementsAre("x"));
}

TEST(SplitResult, ReadsAHundredThousandLines)
{
    constexpr int kLines = 100000;
    std::string text = std::to_string(kLines) + "\n";
    for (int i = 0; i < kLines; ++i)
        text += "Track " + std::to_string(i) + "\n";

    const Items items = Split(text);
    ASSERT_EQ(items.size(), static_cast<std::size_t>(kLines));
    EXPECT_EQ(items.front(), "Track 0");
    EXPECT_EQ(items.back(), "Track 99999");
}

TEST(SplitResult, LeavesTheMessagesAlone)
{
    CTarvaneScript script;
    script.m_strLastError = "kept";
    Items items;
    script.SplitResult("1\n0\n", &items);
    EXPECT_EQ(script.m_strLastError, "kept");
}

TEST(SplitResultDeathTest, ACountAboveTheItemsStopsTheProcess)
{
    EXPECT_STOPS("3\n1\nVox\n");
}

TEST(SplitResultDeathTest, ACountBelowTheItemsStopsTheProcess)
{
    EXPECT_STOPS("1\n1\nVox\n");
}

TEST(SplitResultDeathTest, ANegativeCountStopsTheProcess)
{
    EXPECT_STOPS("-1\nVox\n");
}

TEST(SplitResultDeathTest, ACountBeyond32BitsStopsTheProcess)
{
    EXPECT_STOPS("4294967297\nVox\n");
}

TEST(SplitResultDeathTest, ACountBeyond64BitsStopsTheProcess)
{
    EXPECT_STOPS("18446744073709551617\nVox\n");
}

TEST(SplitResultDeathTest, ATrackWithAnEmptyNameStopsTheProcess)
{
    EXPECT_STOPS("4\n1\nVox\n\nBass\n");
}

TEST(SplitResultDeathTest, AnOverlongLineStopsTheProcess)
{
    EXPECT_STOPS("1\n" + std::string(1000, 'x') + "\n");
}

TEST(SplitResultDeathTest, AnItemAfterACountThatIsNoNumberStopsTheProcess)
{
    EXPECT_STOPS("Vox\nBass\n");
}

TEST(SplitResultDeathTest, ACountAloneStopsTheProcess)
{
    EXPECT_STOPS("1\n");
}
