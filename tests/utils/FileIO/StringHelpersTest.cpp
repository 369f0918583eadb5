#include "utils/FileIO/StringHelpers.h"

#include "tests/utils/FileIO/LibraryCalls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;

constexpr std::size_t kRoom = 256;

// A Pascal string in a buffer that ends with it, so that a byte read too many is seen.
Bytes Pascal(const std::string& strText)
{
    Bytes bytes(strText.size() + 1);
    bytes[0] = static_cast<unsigned char>(strText.size());
    std::copy(strText.begin(), strText.end(), bytes.begin() + 1);
    return bytes;
}

// The same in a buffer with the room that a target has.
Bytes Target(const std::string& strText, unsigned char chRest = '#')
{
    Bytes bytes = Pascal(strText);
    bytes.resize(kRoom, chRest);
    return bytes;
}

std::string Text(const Bytes& pascal)
{
    return std::string(pascal.begin() + 1, pascal.begin() + 1 + pascal[0]);
}

short Compare(const std::string& strFirst, const std::string& strSecond)
{
    return pstrcmp(Pascal(strFirst).data(), Pascal(strSecond).data());
}

short CompareFolded(const std::string& strFirst, const std::string& strSecond)
{
    return pstrcmpi(Pascal(strFirst).data(), Pascal(strSecond).data());
}

bool EndsWith(const std::string& strText, const std::string& strEnding)
{
    return PStringEndCompare(Pascal(strText).data(), Pascal(strEnding).data());
}

std::string Truncated(const std::string& strText, int nSize)
{
    std::vector<char> buffer(strText.c_str(), strText.c_str() + strText.size() + 1);
    StringTruncate(buffer.data(), nSize);
    return buffer.data();
}

std::string PascalTruncated(const std::string& strText, int nLimit)
{
    Bytes pascal = Pascal(strText);
    PStringTruncate(pascal.data(), nLimit);
    return Text(pascal);
}

constexpr int kUntouched = -77;

struct Found
{
    bool fFound;
    int nPosition;
    bool operator==(const Found&) const = default;
};

void PrintTo(const Found& found, std::ostream* pStream)
{
    *pStream << found.fFound << " at " << found.nPosition;
}

Found Find(const std::string& strText, const std::string& strSought)
{
    int nPosition = kUntouched;
    const bool fFound =
        PStringContains(Pascal(strText).data(), Pascal(strSought).data(), &nPosition);
    return {fFound, nPosition};
}

char* Array(const std::string& strText)
{
    char* psz = new char[strText.size() + 1];
    std::strcpy(psz, strText.c_str());
    return psz;
}

std::string Substituted(const char* pszToken, const std::string& strText,
                        const char* pszReplacement)
{
    char* psz = substituteToken(pszToken, Array(strText), pszReplacement);
    const std::string strResult = psz;
    delete[] psz;
    return strResult;
}

} // namespace

TEST(PtoCcpy, CopiesTheCharactersAndTerminates)
{
    char target[] = "########";
    PtoCcpy(target, Pascal("take").data());
    EXPECT_EQ(std::string(target, 8), std::string("take\0###", 8));
    PtoCcpy(target, Pascal("").data());
    EXPECT_EQ(target[0], '\0');
}

TEST(PtoCcpy, TakesTheLongestPascalString)
{
    std::vector<char> target(kRoom, '#');
    PtoCcpy(target.data(), Pascal(std::string(255, 'x')).data());
    EXPECT_EQ(std::string(target.data()), std::string(255, 'x'));
}

TEST(CtoPcpy, StoresTheLengthAndTheCharacters)
{
    Bytes target = Target("");
    CtoPcpy(target.data(), "take");
    EXPECT_EQ(Text(target), "take");
    EXPECT_EQ(target[5], '#');
    CtoPcpy(target.data(), "");
    EXPECT_EQ(target[0], 0);
}

TEST(CtoPcpy, StopsAt254Characters)
{
    for (const int nLength : {253, 254, 255, 300})
    {
        SCOPED_TRACE(nLength);
        Bytes target = Target("");
        CtoPcpy(target.data(), std::string(nLength, 'x').c_str());
        EXPECT_EQ(target[0], std::min(nLength, 254));
        EXPECT_EQ(target[255], '#');
    }
}

TEST(PtoCcmp, HasTheSignOfStrcmp)
{
    EXPECT_EQ(PtoCcmp(Pascal("take").data(), "take"), 0);
    EXPECT_LT(PtoCcmp(Pascal("a").data(), "b"), 0);
    EXPECT_GT(PtoCcmp(Pascal("b").data(), "a"), 0);
    EXPECT_LT(PtoCcmp(Pascal("tak").data(), "take"), 0);
    EXPECT_GT(PtoCcmp(Pascal("take").data(), ""), 0);
    EXPECT_GT(PtoCcmp(Pascal("\xff").data(), "a"), 0);
}

TEST(PtoCcmp, CutsTheComparisonTo16BitsWithTheirSign)
{
    const LibraryCallScope calls;
    const std::pair<int, short> results[] = {
        {-3, -3}, {0x12345, 0x2345}, {0x18000, -0x8000}, {0x10000, 0}, {-0x10000 + 1, 1}};
    for (const auto& [nComparison, nResult] : results)
    {
        gLibraryCalls.nComparison = nComparison;
        EXPECT_EQ(PtoCcmp(Pascal("a").data(), "b"), nResult) << nComparison;
    }
}

TEST(PtoCcmp, TakesTheLongestPascalString)
{
    const std::string strLong(255, 'x');
    EXPECT_EQ(PtoCcmp(Pascal(strLong).data(), strLong.c_str()), 0);
}

TEST(Pstrcpy, CopiesLengthPlusOneBytes)
{
    Bytes target = Target("");
    pstrcpy(target.data(), Pascal("take").data());
    EXPECT_EQ(Text(target), "take");
    EXPECT_EQ(target[5], '#');
    pstrcpy(target.data(), Pascal(std::string(255, 'x')).data());
    EXPECT_EQ(Text(target), std::string(255, 'x'));
}

TEST(Pstrcpyn, CopiesTheSmallerOfLimitAndLength)
{
    const Bytes source = Pascal("abcdef");
    Bytes target = Target("");
    pstrcpyn(target.data(), source.data(), 3);
    EXPECT_EQ(Text(target), "abc");
    EXPECT_EQ(target[4], '#');
    pstrcpyn(target.data(), source.data(), 6);
    EXPECT_EQ(Text(target), "abcdef");
    pstrcpyn(target.data(), source.data(), 70000);
    EXPECT_EQ(Text(target), "abcdef");
    EXPECT_EQ(target[7], '#');
    pstrcpyn(target.data(), source.data(), 0);
    EXPECT_EQ(Text(target), "");
}

TEST(Pstrcpyn, OfANegativeLimitStoresItsLowByteOverOldCharacters)
{
    Bytes target = Target("old");
    const Bytes before = target;
    pstrcpyn(target.data(), Pascal("new").data(), -1);
    EXPECT_EQ(target[0], 255);
    EXPECT_TRUE(std::equal(target.begin() + 1, target.end(), before.begin() + 1));

    pstrcpyn(target.data(), Pascal("new").data(), -256);
    EXPECT_EQ(target[0], 0);
}

TEST(Pstrcpyn, TakesTheCountAsSixteenBits)
{
    Bytes target = Target("old");
    pstrcpyn(target.data(), Pascal("new").data(), -65535);
    EXPECT_EQ(target[0], 1);
    EXPECT_EQ(Text(target), "n");
    EXPECT_EQ(target[2], 'l');
}

TEST(Pstrcpyn, NeverReadsBehindTheSource)
{
    Bytes target = Target("");
    pstrcpyn(target.data(), Pascal("new").data(), -65000);
    EXPECT_EQ(target[0], static_cast<unsigned char>(-65000));
    EXPECT_EQ(std::string(target.begin() + 1, target.begin() + 5), "new#");
}

TEST(Pstrcat, Appends)
{
    Bytes target = Target("take");
    pstrcat(target.data(), Pascal(".wav").data());
    EXPECT_EQ(Text(target), "take.wav");
    EXPECT_EQ(target[9], '#');
    pstrcat(target.data(), Pascal("").data());
    EXPECT_EQ(Text(target), "take.wav");
}

TEST(Pstrcat, DropsWhatGoesBeyond255)
{
    std::string strSource;
    for (int n = 0; n < 100; ++n)
        strSource += static_cast<char>('0' + n);
    Bytes target = Target(std::string(200, 'x'));
    pstrcat(target.data(), Pascal(strSource).data());
    EXPECT_EQ(target[0], 255);
    EXPECT_EQ(Text(target), std::string(200, 'x') + strSource.substr(0, 55));
}

TEST(Pstrcat, ChangesNothingInAFullTarget)
{
    Bytes target = Target(std::string(255, 'x'));
    const Bytes before = target;
    pstrcat(target.data(), Pascal("more").data());
    EXPECT_EQ(target, before);
}

TEST(Pstrcmp, IsDecidedByTheFirstDifference)
{
    EXPECT_EQ(Compare("abc", "abd"), -1);
    EXPECT_EQ(Compare("abd", "abc"), 1);
    EXPECT_EQ(Compare("b", "abc"), 1);
    EXPECT_EQ(Compare("az", "b"), -1);
    EXPECT_EQ(Compare("A", "a"), -1);
}

TEST(Pstrcmp, IsThenDecidedByTheLengths)
{
    EXPECT_EQ(Compare("ab", "abc"), -1);
    EXPECT_EQ(Compare("abc", "ab"), 1);
    EXPECT_EQ(Compare("abc", "abc"), 0);
    EXPECT_EQ(Compare("", "a"), -1);
    EXPECT_EQ(Compare("a", ""), 1);
    EXPECT_EQ(Compare("", ""), 0);
}

TEST(Pstrcmp, LooksAtEveryCharacterOfTheLongest)
{
    const std::string strCommon(254, 'x');
    EXPECT_EQ(Compare(strCommon + "a", strCommon + "b"), -1);
}

TEST(Pstrcmp, ComparesBytesUnsigned)
{
    EXPECT_EQ(Compare("\x80", "z"), 1);
    EXPECT_EQ(Compare("a", "\xff"), -1);
    EXPECT_EQ(Compare("\x80", "\xff"), -1);
}

TEST(Pstrcmpi, FoldsCase)
{
    EXPECT_EQ(CompareFolded("Take.WAV", "tAKE.wav"), 0);
    EXPECT_EQ(CompareFolded("B", "a"), 1);
    EXPECT_EQ(CompareFolded("a", "B"), -1);
    EXPECT_EQ(CompareFolded("AB", "abc"), -1);
    EXPECT_EQ(CompareFolded("abc", "AB"), 1);
    EXPECT_EQ(CompareFolded("", ""), 0);
    EXPECT_EQ(CompareFolded("", "a"), -1);
}

TEST(Pstrcmpi, FoldsToLowerCase)
{
    // "_" stands between the two cases of a letter.
    EXPECT_EQ(CompareFolded("A", "_"), 1);
}

TEST(Pstrcmpi, ComparesFoldedBytesSigned)
{
    EXPECT_EQ(CompareFolded("\x80", "a"), -1);
    EXPECT_EQ(CompareFolded("a", "\xff"), 1);
    EXPECT_EQ(CompareFolded("\x80", "\xff"), -1);
}

TEST(PStringEndCompare, IgnoresCase)
{
    EXPECT_TRUE(EndsWith("take.WAV", ".wav"));
    EXPECT_TRUE(EndsWith("take.wav", "E.WaV"));
    EXPECT_TRUE(EndsWith("WAV", "wav"));
    EXPECT_FALSE(EndsWith("take.wav", "take"));
    EXPECT_FALSE(EndsWith("take.wav", ".wax"));
    EXPECT_FALSE(EndsWith("take.wav", "xwav"));
}

TEST(PStringEndCompare, IsFalseForALongerEnding)
{
    EXPECT_FALSE(EndsWith("wav", ".wav"));
    EXPECT_FALSE(EndsWith("", "a"));
}

TEST(PStringEndCompare, IsTrueForAnEmptyEnding)
{
    EXPECT_TRUE(EndsWith("take", ""));
    EXPECT_TRUE(EndsWith("", ""));
}

TEST(StringTruncate, LeavesATextThatFitsWithoutItsTerminator)
{
    EXPECT_EQ(Truncated("abcde", 5), "abcde");
    EXPECT_EQ(Truncated("abcd", 5), "abcd");
    EXPECT_EQ(Truncated("", 0), "");
}

TEST(StringTruncate, CutsALongerOneToOneLessThanTheSize)
{
    EXPECT_EQ(Truncated("abcdef", 5), "abcd");
    EXPECT_EQ(Truncated("ab", 1), "");
}

TEST(StringTruncate, EmptiesTheTextForASizeOfZeroOrBelow)
{
    EXPECT_EQ(Truncated("abc", 0), "");
    EXPECT_EQ(Truncated("abc", -5), "");
    EXPECT_EQ(Truncated("", -1), "");
    EXPECT_EQ(Truncated("abc", std::numeric_limits<int>::min()), "");
}

TEST(PStringTruncate, LeavesExactlyTheLimit)
{
    EXPECT_EQ(PascalTruncated("abcdef", 5), "abcde");
    EXPECT_EQ(PascalTruncated("abcde", 5), "abcde");
    EXPECT_EQ(PascalTruncated("abcde", 300), "abcde");
    EXPECT_EQ(PascalTruncated("abcde", 0), "");
}

TEST(PStringTruncate, EmptiesTheStringForANegativeLimit)
{
    for (const int nLimit : {-1, -255, std::numeric_limits<int>::min()})
        EXPECT_EQ(PascalTruncated("abcde", nLimit), "") << nLimit;
    EXPECT_EQ(PascalTruncated("", -1), "");
}

TEST(PStringContains, GivesTheIndexInTheBuffer)
{
    EXPECT_EQ(Find("abcd", "bc"), (Found{true, 2}));
    EXPECT_EQ(Find("abcd", "a"), (Found{true, 1}));
    EXPECT_EQ(Find("aabab", "ab"), (Found{true, 2}));
}

TEST(PStringContains, IsCaseSensitive)
{
    EXPECT_EQ(Find("abcd", "BC"), (Found{false, 0}));
}

TEST(PStringContains, NeverTriesTheLastPossibleStart)
{
    EXPECT_EQ(Find("abc", "bc"), (Found{false, 0}));
    EXPECT_EQ(Find("abc", "abc"), (Found{false, 0}));
    EXPECT_EQ(Find("abc", "c"), (Found{false, 0}));
}

TEST(PStringContains, LeavesThePositionAloneForLongerSoughtText)
{
    EXPECT_EQ(Find("ab", "abc"), (Found{false, kUntouched}));
}

TEST(PStringContains, FindsAnEmptyTextAtTheStartOfAnyOther)
{
    EXPECT_EQ(Find("abc", ""), (Found{true, 1}));
    EXPECT_EQ(Find("", ""), (Found{false, 0}));
}

TEST(PStringContains, NeedsNoPosition)
{
    EXPECT_TRUE(PStringContains(Pascal("abcd").data(), Pascal("bc").data(), nullptr));
    EXPECT_FALSE(PStringContains(Pascal("abcd").data(), Pascal("xx").data(), nullptr));
}

TEST(SubstituteToken, ReplacesEveryOccurrence)
{
    EXPECT_EQ(Substituted("%n", "%n and %n", "name"), "name and name");
    EXPECT_EQ(Substituted("name", "name and name", "x"), "x and x");
    EXPECT_EQ(Substituted("ab", "cabbabd", ""), "cbd");
    EXPECT_EQ(Substituted("aa", "aaaaa", "b"), "bba");
}

TEST(SubstituteToken, SearchesAgainFromTheStart)
{
    EXPECT_EQ(Substituted("ab", "aab", "b"), "b");
    EXPECT_EQ(Substituted("ab", "aab", "ba"), "baa");
}

TEST(SubstituteToken, WithoutAnOccurrenceReturnsTheBufferUntouched)
{
    LibraryCallScope calls;
    char* psz = Array("text");
    const int nMade = gLibraryCalls.nArraysMade;
    EXPECT_EQ(substituteToken("token", psz, "longer replacement"), psz);
    EXPECT_EQ(gLibraryCalls.nArraysMade, nMade);
    EXPECT_STREQ(psz, "text");
    delete[] psz;
}

TEST(SubstituteToken, OfEqualLengthTouchesNoAllocation)
{
    LibraryCallScope calls;
    char* psz = Array("one two one");
    const int nMade = gLibraryCalls.nArraysMade;
    EXPECT_EQ(substituteToken("one", psz, "six"), psz);
    EXPECT_EQ(gLibraryCalls.nArraysMade, nMade);
    EXPECT_STREQ(psz, "six two six");
    delete[] psz;
}

TEST(SubstituteToken, OfEqualLengthMovesNothing)
{
    const auto movesBy = [](const char* pszReplacement)
    {
        const LibraryCallScope calls;
        delete[] substituteToken("one", Array("one two one"), pszReplacement);
        return gLibraryCalls.nMoves;
    };
    EXPECT_EQ(movesBy("six"), 0);
    EXPECT_EQ(movesBy("1"), 2);
    EXPECT_EQ(movesBy("1234"), 2);
}

TEST(SubstituteToken, ByShorterTextShrinksInPlace)
{
    LibraryCallScope calls;
    char* psz = Array("one two one");
    const int nMade = gLibraryCalls.nArraysMade;
    EXPECT_EQ(substituteToken("one", psz, "1"), psz);
    EXPECT_EQ(gLibraryCalls.nArraysMade, nMade);
    EXPECT_STREQ(psz, "1 two 1");
    delete[] psz;
}

TEST(SubstituteToken, ByLongerTextMakesANewArrayForEveryOccurrence)
{
    LibraryCallScope calls;
    char* psz = Array("a b a");
    const int nMade = gLibraryCalls.nArraysMade;
    const int nFreed = gLibraryCalls.nArraysFreed;
    psz = substituteToken("a", psz, "1234");
    EXPECT_EQ(gLibraryCalls.nArraysMade, nMade + 2);
    EXPECT_EQ(gLibraryCalls.nArraysFreed, nFreed + 2);
    EXPECT_EQ(gLibraryCalls.nLastArraySize, std::strlen("1234 b 1234") + 1);
    EXPECT_STREQ(psz, "1234 b 1234");
    delete[] psz;
}

TEST(SubstituteToken, FreesTheBufferAndGivesNullWhenMemoryRunsOut)
{
    LibraryCallScope calls;
    char* psz = Array("a b a");
    const int nFreed = gLibraryCalls.nArraysFreed;
    gLibraryCalls.fFailArrays = true;
    psz = substituteToken("a", psz, "1234");
    gLibraryCalls.fFailArrays = false;
    EXPECT_EQ(psz, nullptr);
    EXPECT_EQ(gLibraryCalls.nArraysFreed, nFreed + 1);
}

TEST(SubstituteToken, LeavesTextAloneThatItCouldNeverUseUp)
{
    EXPECT_EQ(Substituted("a", "banana", "bab"), "banana");
    EXPECT_EQ(Substituted("a", "banana", "a"), "banana");
    EXPECT_EQ(Substituted("", "banana", "x"), "banana");
    EXPECT_EQ(Substituted("", "", ""), "");
}

TEST(Lstrcpyn, BoundsTheCopyAndTerminates)
{
    char target[9];
    const auto copied = [&target](const char* pszSource, int nSize)
    {
        std::strcpy(target, "########");
        lstrcpyn(target, pszSource, nSize);
        return std::string(target, 8);
    };
    EXPECT_EQ(copied("abc", 8), std::string("abc\0####", 8));
    EXPECT_EQ(copied("abc", 4), std::string("abc\0####", 8));
    EXPECT_EQ(copied("abc", 3), std::string("ab\0#####", 8));
    EXPECT_EQ(copied("abc", 1), std::string("\0#######", 8));
    EXPECT_EQ(copied("", 8), std::string("\0#######", 8));
}

TEST(Lstrcpyn, StoresATerminatorWhateverTheSize)
{
    for (const int nSize : {0, -1, -2147483647 - 1})
    {
        SCOPED_TRACE(nSize);
        char target[] = "##";
        lstrcpyn(target, "abc", nSize);
        EXPECT_EQ(std::string(target, 2), std::string("\0#", 2));
    }
}
