#include "utils/ByteString.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>

namespace
{
const std::string strInside(14, 'i');
const std::string strLong(15, 'l');
} // namespace

TEST(ByteString, TakesSixteenBytes)
{
    EXPECT_EQ(sizeof(CByteString), 16u);
}

TEST(ByteString, HoldsTextsOfEveryLength)
{
    for (std::size_t nLength = 0; nLength < 70; ++nLength)
    {
        std::string text(nLength, '\0');
        for (std::size_t i = 0; i < nLength; ++i)
            text[i] = static_cast<char>(i * 37);
        const CByteString string(text);
        EXPECT_EQ(string.size(), nLength);
        EXPECT_EQ(string.empty(), nLength == 0);
        EXPECT_EQ(string.str(), text);
        EXPECT_EQ(string.c_str()[nLength], '\0');
    }
}

TEST(ByteString, NullIsEmpty)
{
    EXPECT_TRUE(CByteString(static_cast<const char*>(nullptr)).empty());
}

TEST(ByteString, CopiesOfALongTextShareIt)
{
    const CByteString first(strLong);
    const CByteString second(first);
    EXPECT_EQ(first.c_str(), second.c_str());
    EXPECT_TRUE(first.HasSameBytes(second));
    EXPECT_EQ(first.Hash(), second.Hash());
}

TEST(ByteString, CopyOutlivesItsSource)
{
    for (const std::string& text : {strInside, strLong})
    {
        CByteString copy;
        {
            const CByteString source(text);
            copy = source;
        }
        EXPECT_EQ(copy.str(), text);
    }
}

TEST(ByteString, MovedFromIsEmpty)
{
    for (const std::string& text : {strInside, strLong})
    {
        CByteString source(text);
        const CByteString target(std::move(source));
        EXPECT_EQ(target.str(), text);
        EXPECT_TRUE(source.empty()); // NOLINT: this is the rule under test
    }
}

TEST(ByteString, AssignedToItselfItStays)
{
    for (const std::string& text : {strInside, strLong})
    {
        CByteString string(text);
        const CByteString& same = string;
        string = same;
        EXPECT_EQ(string.str(), text);
    }
}

TEST(ByteString, ComparesByEveryByte)
{
    EXPECT_TRUE(CByteString(strLong) == CByteString(strLong));
    EXPECT_FALSE(CByteString(strLong).HasSameBytes(CByteString(strLong)));
    EXPECT_TRUE(CByteString(strInside).HasSameBytes(CByteString(strInside)));
    EXPECT_FALSE(CByteString(strLong) == CByteString(strLong + "x"));
    EXPECT_FALSE(CByteString("a") == CByteString(std::string("a\0", 2)));
    EXPECT_FALSE(CByteString("a") == CByteString("b"));
    EXPECT_TRUE(CByteString("abc") == "abc");
    EXPECT_TRUE(CByteString(strLong) == strLong);
    EXPECT_FALSE(CByteString(strLong) == strInside);
}

TEST(ByteString, ZeroBytesBelongToTheText)
{
    const std::string text("a\0b", 3);
    EXPECT_EQ(CByteString(text).str(), text);
    EXPECT_FALSE(CByteString(text) == "a");
}

TEST(ByteString, EqualTextsHashTheSame)
{
    for (std::size_t nLength = 0; nLength < 40; ++nLength)
    {
        const std::string text(nLength, 'x');
        EXPECT_EQ(CByteString(text).Hash(), CByteString(text).Hash()) << nLength;
    }
    EXPECT_NE(CByteString("a").Hash(), CByteString("b").Hash());
}

TEST(ByteString, LentTextIsSharedWithNobody)
{
    CByteString source(strLong);
    const CByteString before(source);
    char& c = source[0];
    const CByteString copy(source);
    c = 'X';
    EXPECT_EQ(source, "X" + strLong.substr(1));
    EXPECT_EQ(copy, strLong);
    EXPECT_EQ(before, strLong);
    CByteString assigned;
    assigned = source;
    c = 'Y';
    EXPECT_EQ(source[0], 'Y');
    EXPECT_EQ(assigned[0], 'X');
}

TEST(ByteString, ReadingAConstantOneKeepsItsTextShared)
{
    const CByteString first(strLong);
    const CByteString second(first);
    EXPECT_EQ(first[0], 'l');
    EXPECT_EQ(*first.begin(), 'l');
    EXPECT_EQ(first.c_str(), second.c_str());
}

TEST(ByteString, ShrunkToAShortTextItComparesAsOne)
{
    for (const std::string& text : {strInside, strLong, std::string(40, 'x')})
    {
        CByteString string(text);
        string.resize(3);
        EXPECT_TRUE(string.HasSameBytes(CByteString(text.substr(0, 3))));
        string.clear();
        EXPECT_TRUE(string.HasSameBytes(CByteString()));
    }
}

TEST(ByteString, NamesThatDifferAnywhereHashFarApart)
{
    // Of each kind of name, in places of a table of which at most half is taken.
    constexpr std::size_t nNames = 512;
    const std::string patterns[] = {"Value #", "# Value", "#", "Parameter # of the mixer"};
    for (const std::string& strPattern : patterns)
    {
        std::set<std::size_t> places;
        for (std::size_t n = 0; n < nNames; ++n)
        {
            std::string strName = strPattern;
            strName.replace(strName.find('#'), 1, std::to_string(1000 + n));
            places.insert(CByteString(strName).Hash() % (nNames * 2));
        }
        EXPECT_GT(places.size(), nNames * 2 / 3) << strPattern;
    }
}
