#include "utils/FileIO/FileExceptions.h"

#include "tests/utils/FileIO/LibraryCalls.h"

#include <gtest/gtest.h>

#include <new>
#include <type_traits>

namespace
{

using Code = CFileIOException::FileExceptionCode;

struct Row
{
    int nCode;
    Code kCode;
    const char* pszDescription;
    int nStatus;
};

const Row kRows[] = {
    {1, CFileIOException::kOpenFailed, "/dir/take.wav: open failed: 1", 3008},
    {2, CFileIOException::kFileClosed, "/dir/take.wav:fFile closed: 1", 3015},
    {3, CFileIOException::kSetPosition, "/dir/take.wav: set position: 1", 3010},
    {4, CFileIOException::kGetPosition, "/dir/take.wav: get position: 1", 3010},
    {5, CFileIOException::kFileRead, "/dir/take.wav: file read: 1", 3005},
    {6, CFileIOException::kFileWrite, "/dir/take.wav: file write: 1", 3006},
    {7, CFileIOException::kFileClose, "/dir/take.wav: file close: 1", 3009},
    {8, CFileIOException::kFileLength, "/dir/take.wav: file length: 1", 3010},
    {9, CFileIOException::kCannotDelete, "/dir/take.wav: cannot delete: 1", 3009},
    {10, CFileIOException::kNoDescription, "/dir/take.wav: unknown error: 1", 4009},
};

CFileIOException Failure(int nCode)
{
    return CFileIOException("/dir/take.wav", static_cast<Code>(nCode), 1, "Source.cpp", 12);
}

} // namespace

TEST(FileIOException, HasASentenceAndAStatusForEachCode)
{
    for (const Row& row : kRows)
    {
        SCOPED_TRACE(row.nCode);
        EXPECT_EQ(row.kCode, row.nCode);
        const CFileIOException failure = Failure(row.nCode);
        EXPECT_EQ(failure.m_strDescription, row.pszDescription);
        EXPECT_EQ(failure.GetStatus(), row.nStatus);
    }
}

TEST(FileIOException, OfAnyOtherCodeHasTheFallBackAndItsStatus)
{
    for (const int nCode : {0, 11, -1, 2147483647, -2147483647 - 1})
    {
        SCOPED_TRACE(nCode);
        const CFileIOException failure = Failure(nCode);
        EXPECT_EQ(failure.m_strDescription, "/dir/take.wav: unknown error: 1");
        EXPECT_EQ(failure.GetStatus(), 3002);
    }
}

TEST(FileIOException, IsFilledByItsConstructor)
{
    const char* const pszSource = "Source.cpp";
    const CFileIOException failure("name", CFileIOException::kFileRead, 77, pszSource, 12);
    EXPECT_EQ(failure.m_pszSourceFile, pszSource);
    EXPECT_EQ(failure.m_nSourceLine, 12);
    EXPECT_EQ(failure.m_strFileName, "name");
    EXPECT_EQ(failure.m_nCode, CFileIOException::kFileRead);
    EXPECT_EQ(failure.m_nDetail, 77u);
    EXPECT_EQ(failure.m_strDescription, "name: file read: 77");
}

TEST(FileIOException, OfAClosedFileWithoutANameKeepsItsMisprint)
{
    const CFileIOException failure("", CFileIOException::kFileClosed, 0, "", 0);
    EXPECT_EQ(failure.m_strDescription, ":fFile closed: 0");
}

TEST(FileIOException, StatusDoesNotDependOnTheDetail)
{
    const CFileIOException failure("name", CFileIOException::kOpenFailed, 3005, "", 0);
    EXPECT_EQ(failure.GetStatus(), 3008);
}

TEST(FileIOException, PrintsTheLowHalfOfALargeDetail)
{
    const unsigned long nDetail = 0x500000007ul;
    const CFileIOException failure("name", CFileIOException::kOpenFailed, nDetail, "", 0);
    EXPECT_EQ(failure.m_strDescription, "name: open failed: 7");
    EXPECT_EQ(failure.m_nDetail, nDetail);
    const CFileIOException negative("name", CFileIOException::kOpenFailed, ~0ul, "", 0);
    EXPECT_EQ(negative.m_strDescription, "name: open failed: -1");
}

TEST(FileIOException, TakesALongFileNameWhole)
{
    const std::string strName(100000, 'x');
    const CFileIOException failure(strName, CFileIOException::kCannotDelete, 1, "", 0);
    EXPECT_EQ(failure.m_strDescription, strName + ": cannot delete: 1");
}

TEST(FileIOException, TakesAPercentSignInAFileNameAsItStands)
{
    const CFileIOException failure("%s%n", CFileIOException::kFileRead, 1, "", 0);
    EXPECT_EQ(failure.m_strDescription, "%s%n: file read: 1");
}

TEST(FileIOException, SetDescriptionReplacesNameAndSentenceOnly)
{
    CFileIOException failure = Failure(CFileIOException::kOpenFailed);
    failure.SetDescription("other", CFileIOException::kFileWrite, 9);
    EXPECT_EQ(failure.m_strFileName, "other");
    EXPECT_EQ(failure.m_strDescription, "other: file write: 9");
    EXPECT_EQ(failure.m_nCode, CFileIOException::kOpenFailed);
    EXPECT_EQ(failure.m_nDetail, 1u);
    EXPECT_EQ(failure.GetStatus(), 3008);
    EXPECT_EQ(failure.m_nSourceLine, 12);
}

TEST(FileIOException, SetDescriptionTakesItsOwnFileName)
{
    CFileIOException failure = Failure(CFileIOException::kOpenFailed);
    failure.SetDescription(failure.m_strFileName, CFileIOException::kFileRead, 2);
    EXPECT_EQ(failure.m_strDescription, "/dir/take.wav: file read: 2");
}

TEST(FileIOException, SetDescriptionMakesRoomForTheNameAnd256)
{
    CFileIOException failure = Failure(CFileIOException::kOpenFailed);
    LibraryCallScope calls;
    failure.SetDescription("12345", CFileIOException::kFileRead, 2);
    EXPECT_EQ(gLibraryCalls.nLastArraySize, 261u);
    EXPECT_EQ(gLibraryCalls.nArraysMade, 1);
    EXPECT_EQ(gLibraryCalls.nArraysFreed, 1);
}

TEST(FileIOException, WithoutMemoryForTheSentenceTheConstructorThrowsThatInstead)
{
    LibraryCallScope calls;
    gLibraryCalls.fFailArrays = true;
    EXPECT_THROW(CFileIOException(std::string(1000, 'x'), CFileIOException::kOpenFailed, 1, "", 0),
                 std::bad_alloc);
}

TEST(FileIOException, AssignmentKeepsTheFileName)
{
    CFileIOException target = Failure(CFileIOException::kOpenFailed);
    CFileIOException source("other", CFileIOException::kFileRead, 9, "Other.cpp", 34);
    target = source;
    EXPECT_EQ(target.m_strFileName, "/dir/take.wav");
    EXPECT_EQ(target.m_strDescription, "other: file read: 9");
    EXPECT_EQ(target.m_nCode, CFileIOException::kFileRead);
    EXPECT_EQ(target.m_nDetail, 9u);
    EXPECT_EQ(target.m_pszSourceFile, source.m_pszSourceFile);
    EXPECT_EQ(target.m_nSourceLine, 34);
    EXPECT_EQ(target.GetStatus(), 3005);
    EXPECT_EQ(source.m_strFileName, "other");
}

TEST(FileIOException, CopyHasTheFileNameToo)
{
    const CFileIOException source = Failure(CFileIOException::kOpenFailed);
    const CFileIOException copy(source);
    EXPECT_EQ(copy.m_strFileName, "/dir/take.wav");
    EXPECT_EQ(copy.m_strDescription, source.m_strDescription);
    EXPECT_EQ(copy.m_nCode, source.m_nCode);
    EXPECT_EQ(copy.m_nDetail, source.m_nDetail);
    EXPECT_EQ(copy.m_pszSourceFile, source.m_pszSourceFile);
    EXPECT_EQ(copy.m_nSourceLine, source.m_nSourceLine);
}

TEST(FileIOException, IsCaughtByValueAsItsRoot)
{
    try
    {
        throw Failure(CFileIOException::kOpenFailed);
    }
    catch (CCodeException failure)
    {
        EXPECT_EQ(failure.m_strDescription, "/dir/take.wav: open failed: 1");
        EXPECT_STREQ(failure.m_pszSourceFile, "Source.cpp");
        EXPECT_EQ(failure.m_nSourceLine, 12);
    }
}

TEST(FileExceptions, HaveNoVirtualOperations)
{
    EXPECT_FALSE(std::is_polymorphic_v<CCodeException>);
    EXPECT_FALSE(std::is_polymorphic_v<CFileMemoryException>);
    EXPECT_FALSE(std::is_polymorphic_v<CFileIOException>);
}

TEST(FileExceptions, AssignFromAnObjectThatIsNotConstantAndGiveNothing)
{
    EXPECT_TRUE((std::is_void_v<decltype(std::declval<CCodeException&>() =
                                             std::declval<CCodeException&>())>));
    EXPECT_TRUE((std::is_void_v<decltype(std::declval<CFileIOException&>() =
                                             std::declval<CFileIOException&>())>));
    EXPECT_TRUE((std::is_void_v<decltype(std::declval<CFileMemoryException&>() =
                                             std::declval<CFileMemoryException&>())>));
    EXPECT_FALSE((std::is_assignable_v<CCodeException&, const CCodeException&>));
    EXPECT_FALSE((std::is_assignable_v<CFileIOException&, const CFileIOException&>));
    EXPECT_FALSE((std::is_assignable_v<CFileMemoryException&, const CFileMemoryException&>));
}

template <typename Exception> class RootFields : public testing::Test
{
};

using ExceptionsWithRootFields = testing::Types<CCodeException, CFileMemoryException>;
TYPED_TEST_SUITE(RootFields, ExceptionsWithRootFields);

TYPED_TEST(RootFields, AreAssignedWithThePointerAsItIs)
{
    TypeParam source;
    source.m_pszSourceFile = "Source.cpp";
    source.m_nSourceLine = 12;
    source.m_strDescription = "what failed";
    TypeParam target;
    target = source;
    EXPECT_EQ(target.m_pszSourceFile, source.m_pszSourceFile);
    EXPECT_EQ(target.m_nSourceLine, 12);
    EXPECT_EQ(target.m_strDescription, "what failed");
}

TYPED_TEST(RootFields, AreCopied)
{
    TypeParam source;
    source.m_pszSourceFile = "Source.cpp";
    source.m_nSourceLine = 12;
    source.m_strDescription = "what failed";
    const TypeParam copy(source);
    EXPECT_EQ(copy.m_pszSourceFile, source.m_pszSourceFile);
    EXPECT_EQ(copy.m_nSourceLine, 12);
    EXPECT_EQ(copy.m_strDescription, "what failed");
}

TYPED_TEST(RootFields, AreThree)
{
    struct Three
    {
        const char* m_pszSourceFile;
        std::int32_t m_nSourceLine;
        std::string m_strDescription;
    };
    EXPECT_EQ(sizeof(TypeParam), sizeof(Three));
}
