#include "apps/session/EntryPath.h"

#include "apps/session/EntryText.h"
#include "apps/support/program/CommandLine.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Tarvane::Session;

TEST(EntryPath, ReadsBackWhatItWrites)
{
    const std::vector<std::vector<PathStep>> paths = {
        {},
        {{"A", 0}},
        {{"A", 0}, {"B", 2}, {"C", 0}},
        {{"a/b", 1}, {"c[d]", 0}, {"e\\f", 3}},
        {{"line\nbreak", 0}, {"\xFF\xC3", 1}, {"\xC3\xA4", 0}},
        {{"", 0}},
        {{"", 2}, {"x", 0}},
    };
    for (const auto& steps : paths)
    {
        const std::string text = FormatPath(steps);
        const auto read = ParsePath(text);
        ASSERT_EQ(read.size(), steps.size()) << text;
        for (std::size_t i = 0; i < steps.size(); ++i)
        {
            EXPECT_EQ(read[i].strName, steps[i].strName) << text;
            EXPECT_EQ(read[i].nIndex, steps[i].nIndex) << text;
        }
    }
    EXPECT_EQ(FormatPath({{"A", 0}, {"B", 2}, {"C", 0}}), "A/B[2]/C");
    EXPECT_EQ(FormatPath({}), "/");
}

TEST(EntryPath, RefusesWhatIsNone)
{
    for (const char* pText :
         {"A[", "A[]", "A[x]", "A[1", "A[1]B", "A\\", "A\\x1", "A\\xg0", "A[99999999999999999999]"})
        EXPECT_THROW(ParsePath(pText), Tarvane::CUsageError) << pText;
}

TEST(EntryPath, FindsByNameAndIndex)
{
    CParameterBlock inner, root;
    inner.AddParameter("V", 5);
    root.AddParameter("B", 1);
    root.AddParameter("B", &inner);
    root.m_vParameters.push_back(nullptr);
    EXPECT_EQ(FindEntry(root, ParsePath("/")), &root);
    EXPECT_EQ(FindEntry(root, ParsePath("B")), root.m_vParameters[0]);
    EXPECT_EQ(FindEntry(root, ParsePath("/B[1]")), root.m_vParameters[1]);
    const auto* pValue = FindEntry(root, ParsePath("B[1]/V"));
    ASSERT_NE(pValue, nullptr);
    EXPECT_EQ(ValueText(*pValue), "5");
    EXPECT_EQ(FindEntry(root, ParsePath("B[2]")), nullptr);
    EXPECT_EQ(FindEntry(root, ParsePath("B/V")), nullptr) << "an int holds nothing";
    EXPECT_EQ(FindEntry(root, ParsePath("B[1]/V/W")), nullptr);
}

TEST(EntryText, NumbersReadBackTheSame)
{
    EXPECT_EQ(NumberText(0.1), "0.1");
    EXPECT_EQ(NumberText(0.1F), "0.1");
    EXPECT_EQ(NumberText(-0.0), "-0");
    EXPECT_EQ(NumberText(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(NumberText(-std::numeric_limits<float>::infinity()), "-inf");
    EXPECT_EQ(NumberText(std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(NumberText(-std::numeric_limits<double>::quiet_NaN()), "nan:fff8000000000000");
}

TEST(EntryText, TextIsEscapedWhereItWouldNotPrint)
{
    EXPECT_EQ(PrintableText("a\"b\\c", "\""), "a\\\"b\\\\c");
    EXPECT_EQ(PrintableText(std::string_view("\0\n\x7F", 3), ""), "\\x00\\x0a\\x7f");
    EXPECT_EQ(PrintableText("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xB5", ""),
              "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xB5");
    for (const char* pWrong :
         {"\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF0\x80\x80\x80",
          "\xFF", "\x80", "\xC3", "\xE2\x82", "\xF5\x80\x80\x80"})
    {
        EXPECT_FALSE(IsUtf8(pWrong));
        EXPECT_EQ(PrintableText(pWrong, "").substr(0, 2), "\\x");
    }
}
