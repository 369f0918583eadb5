#include "utils/FileIO/CFStringToCString.h"

#include "tests/utils/FileIO/CFText.h"
#include "tests/utils/FileIO/LeakByDesign.h"
#include "tests/utils/FileIO/LibraryCalls.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(CFStringToCString, GivesUtf8InAnArrayOfTheCallers)
{
    for (const char* pszText : {"", "take.wav", "größe 日本 \xf0\x9d\x84\x9e"})
    {
        LibraryCallScope calls;
        char* pszCopy = CFStringToCString(CFText(pszText));
        EXPECT_STREQ(pszCopy, pszText);
        EXPECT_EQ(gLibraryCalls.nArraysMade, 1);
        delete[] pszCopy;
        EXPECT_EQ(gLibraryCalls.nArraysFreed, 1);
    }
}

TEST(CFStringToCString, SizesTheArrayForTheLongestForm)
{
    std::string strText;
    for (int n = 0; n < 100; ++n)
        strText += "日";
    const CFText text(strText.c_str());
    LibraryCallScope calls;
    char* pszCopy = CFStringToCString(text);
    EXPECT_EQ(std::strlen(pszCopy), 300u);
    EXPECT_EQ(gLibraryCalls.nLastArraySize,
              static_cast<std::size_t>(CFStringGetMaximumSizeForEncoding(100, 134217984) + 1));
    delete[] pszCopy;
}

TEST(CFStringToCString, OfTextThatDoesNotConvertIsNullAndTheArrayIsGivenUp)
{
    LibraryCallScope calls;
    const LeakByDesign leak;
    EXPECT_EQ(CFStringToCString(CFText::WithoutUtf8()), nullptr);
    EXPECT_EQ(gLibraryCalls.nArraysMade, 1);
    EXPECT_EQ(gLibraryCalls.nArraysFreed, 0);
}

TEST(CFStringToCString, OfNullIsNullAndAllocatesNothing)
{
    LibraryCallScope calls;
    EXPECT_EQ(CFStringToCString(nullptr), nullptr);
    EXPECT_EQ(gLibraryCalls.nArraysMade, 0);
}

TEST(TextOfCFString, CopiesAndFreesTheArray)
{
    LibraryCallScope calls;
    EXPECT_EQ(TextOfCFString(CFText("größe")), "größe");
    EXPECT_EQ(gLibraryCalls.nArraysMade, 1);
    EXPECT_EQ(gLibraryCalls.nArraysFreed, 1);
}

TEST(TextOfCFString, IsEmptyWhereThereIsNoUtf8Form)
{
    const LeakByDesign leak;
    EXPECT_EQ(TextOfCFString(CFText::WithoutUtf8()), "");
    EXPECT_EQ(TextOfCFString(nullptr), "");
}
