#include "utils/FileIO/PathHelpers.h"

#include <gtest/gtest.h>

namespace
{

std::string Extension(const std::string& strName)
{
    return GetExtension(&strName);
}

std::string Name(const std::string& strPath)
{
    return GetExtractName(&strPath);
}

std::string Directory(const std::string& strPath)
{
    return ExtractPath(&strPath);
}

} // namespace

TEST(AddPath, JoinsWithABackslash)
{
    EXPECT_EQ(AddPath("base", "tail"), "base\\tail");
    EXPECT_EQ(AddPath("/a/b", "c/d"), "/a/b\\c/d");
}

TEST(AddPath, ASlashIsNoSeparator)
{
    EXPECT_EQ(AddPath("base/", "/tail"), "base/\\/tail");
}

TEST(AddPath, KeepsOneBackslashWhereBothHaveOne)
{
    EXPECT_EQ(AddPath("base\\", "tail"), "base\\tail");
    EXPECT_EQ(AddPath("base", "\\tail"), "base\\tail");
    EXPECT_EQ(AddPath("base\\", "\\tail"), "base\\tail");
}

TEST(AddPath, DropsOneLeadingBackslashOnly)
{
    EXPECT_EQ(AddPath("base", "\\\\tail"), "base\\\\tail");
    EXPECT_EQ(AddPath("", "\\\\tail"), "\\tail");
    EXPECT_EQ(AddPath("base\\\\", "tail"), "base\\\\tail");
}

TEST(AddPath, OfAnEmptyBaseIsTheTail)
{
    EXPECT_EQ(AddPath("", "tail"), "tail");
    EXPECT_EQ(AddPath("", "\\tail"), "tail");
    EXPECT_EQ(AddPath("", ""), "");
}

TEST(AddPath, OfAnEmptyTailEndsInABackslash)
{
    EXPECT_EQ(AddPath("base", ""), "base\\");
    EXPECT_EQ(AddPath("base\\", ""), "base\\");
}

TEST(AddExtension, AddsAndNeverReplaces)
{
    EXPECT_EQ(AddExtension("a.b", "c"), "a.b.c");
    EXPECT_EQ(AddExtension("take", "wav"), "take.wav");
}

TEST(AddExtension, KeepsOnePointWhereBothHaveOne)
{
    EXPECT_EQ(AddExtension("take.", ".wav"), "take.wav");
    EXPECT_EQ(AddExtension("take.", "wav"), "take.wav");
    EXPECT_EQ(AddExtension("take", ".wav"), "take.wav");
    EXPECT_EQ(AddExtension("take", "..wav"), "take..wav");
}

TEST(AddExtension, OfAnEmptyExtensionLeavesATrailingPoint)
{
    EXPECT_EQ(AddExtension("take", ""), "take.");
}

TEST(AddExtension, OfAnEmptyNameIsTheExtension)
{
    EXPECT_EQ(AddExtension("", ".wav"), "wav");
}

TEST(GetExtension, IsTheTextAfterTheLastPoint)
{
    EXPECT_EQ(Extension("take.wav"), "wav");
    EXPECT_EQ(Extension("a.b.c"), "c");
    EXPECT_EQ(Extension(".hidden"), "hidden");
    EXPECT_EQ(Extension("ton.größe"), "größe");
}

TEST(GetExtension, IsEmptyWithoutAPointAndBehindALastOne)
{
    EXPECT_EQ(Extension("take"), "");
    EXPECT_EQ(Extension("take."), "");
    EXPECT_EQ(Extension(""), "");
}

TEST(GetExtension, DoesNotCareForSlashes)
{
    EXPECT_EQ(Extension("a.b/c"), "b/c");
}

TEST(GetExtractName, LiesBetweenLastSlashAndLastPoint)
{
    EXPECT_EQ(Name("/dir/name.wav"), "name");
    EXPECT_EQ(Name("name.wav"), "name");
    EXPECT_EQ(Name("name"), "name");
    EXPECT_EQ(Name("/dir/a.b.wav"), "a.b");
    EXPECT_EQ(Name("/dir/größe.wav"), "größe");
    EXPECT_EQ(Name(""), "");
}

TEST(GetExtractName, SparesALeadingPointAtTheStartOfTheTextOnly)
{
    EXPECT_EQ(Name(".hidden"), ".hidden");
    EXPECT_EQ(Name("/dir/.hidden"), "");
}

TEST(GetExtractName, IgnoresAPointInTheDirectory)
{
    EXPECT_EQ(Name("dir.d/name"), "name");
    EXPECT_EQ(Name("./name"), "name");
    EXPECT_EQ(Name("dir.d/"), "");
}

TEST(GetExtractName, IsEmptyBehindALastSlash)
{
    EXPECT_EQ(Name("/dir/"), "");
    EXPECT_EQ(Name("/"), "");
}

TEST(GetExtractName, TakesABackslashAsACharacter)
{
    EXPECT_EQ(Name("a\\b.wav"), "a\\b");
}

TEST(ExtractPath, IsTheTextBeforeTheLastSlash)
{
    EXPECT_EQ(Directory("/dir/name.wav"), "/dir");
    EXPECT_EQ(Directory("a/b/c"), "a/b");
    EXPECT_EQ(Directory("/dir/"), "/dir");
    EXPECT_EQ(Directory("a/b"), "a");
}

TEST(ExtractPath, LosesTheRoot)
{
    EXPECT_EQ(Directory("/name"), "");
    EXPECT_EQ(Directory("/"), "");
}

TEST(ExtractPath, IsEmptyWithoutASlash)
{
    EXPECT_EQ(Directory("name"), "");
    EXPECT_EQ(Directory("a\\b"), "");
    EXPECT_EQ(Directory(""), "");
}
