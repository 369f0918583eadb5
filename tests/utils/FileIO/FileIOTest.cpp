#include "utils/FileIO/FileIO.h"

#include "tests/support/VirtualTable.h"
#include "tests/utils/FileIO/ScratchFolder.h"
#include "utils/FileIO/FileExceptions.h"
#include "utils/FileIO/FileName.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <type_traits>
#include <vector>

namespace
{

const unsigned char* Bytes(const char* psz)
{
    return reinterpret_cast<const unsigned char*>(psz);
}

std::string ReadText(CFileIO& file, unsigned long nCount)
{
    std::vector<unsigned char> buffer(nCount);
    const unsigned long nRead = file.Read(nCount, buffer.data());
    return std::string(buffer.begin(), buffer.begin() + nRead);
}

std::optional<CFileIOException> FailureOf(const std::function<void()>& operation)
{
    try
    {
        operation();
    }
    catch (const CFileIOException& failure)
    {
        return failure;
    }
    return std::nullopt;
}

// Of the whole process.
std::ptrdiff_t OpenDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// Opens files of a folder that is gone afterwards.
class FileIO : public testing::Test
{
protected:
    void Open(const std::string& strName, bool fWrite, bool fCreate)
    {
        const CFileName file(m_folder.Path(strName).c_str());
        m_file.Open(&file, fWrite, fCreate);
    }

    std::optional<CFileIOException> FailureOfOpen(const std::string& strName, bool fWrite,
                                                  bool fCreate)
    {
        return FailureOf([&] { Open(strName, fWrite, fCreate); });
    }

    // A pipe in the file system: opens for reading and writing, and has no position.
    void OpenPipe()
    {
        ASSERT_EQ(mkfifo(m_folder.Path("pipe").c_str(), 0600), 0);
        Open("pipe", true, false);
    }

    ScratchFolder m_folder;
    CFileIO m_file;
};

void ExpectThrownHere(const std::optional<CFileIOException>& failure)
{
    const std::string strSource = failure->m_pszSourceFile;
    EXPECT_EQ(strSource.substr(strSource.rfind('/') + 1), "FileIO.cpp");
    EXPECT_GT(failure->m_nSourceLine, 0);
}

void ExpectFailure(const std::optional<CFileIOException>& failure,
                   CFileIOException::FileExceptionCode nCode, unsigned long nDetail,
                   const std::string& strName)
{
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->m_nCode, nCode);
    EXPECT_EQ(failure->m_nDetail, nDetail);
    EXPECT_EQ(failure->m_strFileName, strName);
    ExpectThrownHere(failure);
}

void ExpectClosed(CFileIO& file, const std::string& strName)
{
    const auto nClosed = CFileIOException::kFileClosed;
    ExpectFailure(FailureOf([&] { file.SetPosition(0); }), nClosed, 0, strName);
    ExpectFailure(FailureOf([&] { file.GetPosition(); }), nClosed, 0, strName);
    ExpectFailure(FailureOf([&] { file.GetLength(); }), nClosed, 0, strName);
}

} // namespace

TEST_F(FileIO, IsClosedAtFirst)
{
    EXPECT_FALSE(m_file.IsOpen());
    ExpectClosed(m_file, "");
}

TEST_F(FileIO, ToWriteAndCreateMakesOrEmptiesTheFileForBoth)
{
    m_folder.MakeFile("old", "content");
    for (const char* pszName : {"new", "old"})
    {
        SCOPED_TRACE(pszName);
        Open(pszName, true, true);
        EXPECT_TRUE(m_file.IsOpen());
        EXPECT_EQ(m_file.GetLength(), 0u);
        EXPECT_EQ(m_file.Write(3, Bytes("abc")), 3u);
        m_file.SetPosition(1);
        EXPECT_EQ(ReadText(m_file, 10), "bc");
    }
}

TEST_F(FileIO, ToWriteAloneKeepsTheContentForBoth)
{
    m_folder.MakeFile("old", "content");
    Open("old", true, false);
    EXPECT_EQ(m_file.GetPosition(), 0u);
    EXPECT_EQ(ReadText(m_file, 3), "con");
    m_file.SetPosition(0);
    EXPECT_EQ(m_file.Write(3, Bytes("CON")), 3u);
    m_file.Close();
    EXPECT_EQ(m_folder.Content("old"), "CONtent");
}

TEST_F(FileIO, ToWriteAloneNeedsTheFile)
{
    ExpectFailure(FailureOfOpen("new", true, false), CFileIOException::kOpenFailed, 1,
                  m_folder.Path("new"));
    EXPECT_FALSE(std::filesystem::exists(m_folder.Path("new")));
}

TEST_F(FileIO, ToReadTakesAnExistingFileWhateverTheCreateFlag)
{
    m_folder.MakeFile("old", "content");
    for (const bool fCreate : {false, true})
    {
        SCOPED_TRACE(fCreate);
        Open("old", false, fCreate);
        EXPECT_EQ(ReadText(m_file, 10), "content");
        EXPECT_EQ(m_file.Write(1, Bytes("x")), 0u);
        m_file.Close();
        EXPECT_EQ(m_folder.Content("old"), "content");
        ExpectFailure(FailureOfOpen("new", false, fCreate), CFileIOException::kOpenFailed, 1,
                      m_folder.Path("new"));
        EXPECT_FALSE(std::filesystem::exists(m_folder.Path("new")));
    }
}

TEST_F(FileIO, TakesUtf8Names)
{
    Open("größe 日本", true, true);
    m_file.Write(1, Bytes("x"));
    m_file.Close();
    EXPECT_EQ(m_folder.Content("größe 日本"), "x");
}

TEST_F(FileIO, AFailedOpenSaysSoInASentence)
{
    const auto failure = FailureOfOpen("new", false, false);
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->m_strDescription, m_folder.Path("new") + ": open failed: 1");
    EXPECT_EQ(failure->GetStatus(), 3008);
}

TEST_F(FileIO, AFailedOpenLeavesItClosedWithThePath)
{
    FailureOfOpen("new", false, false);
    EXPECT_FALSE(m_file.IsOpen());
    ExpectClosed(m_file, m_folder.Path("new"));
}

TEST_F(FileIO, OpenClosesTheFirstFileEvenIfTheSecondFails)
{
    Open("first", true, true);
    m_file.Write(5, Bytes("first"));
    EXPECT_EQ(m_folder.Content("first"), "");
    FailureOfOpen("missing", false, false);
    EXPECT_FALSE(m_file.IsOpen());
    EXPECT_EQ(m_folder.Content("first"), "first");
}

TEST_F(FileIO, OpensAgainAfterCloseAndAfterAFailedOpen)
{
    Open("first", true, true);
    m_file.Close();
    Open("second", true, true);
    FailureOfOpen("missing", false, false);
    Open("first", true, false);
    EXPECT_TRUE(m_file.IsOpen());
    EXPECT_TRUE(std::filesystem::exists(m_folder.Path("second")));
}

TEST_F(FileIO, CloseEndsInClosedWithoutAName)
{
    Open("file", true, true);
    m_file.Close();
    EXPECT_FALSE(m_file.IsOpen());
    ExpectClosed(m_file, "");
    EXPECT_EQ(FailureOf([&] { m_file.GetLength(); })->m_strDescription, ":fFile closed: 0");
}

TEST_F(FileIO, CloseForgetsTheNameOfAFailedOpen)
{
    FailureOfOpen("missing", false, false);
    m_file.Close();
    ExpectClosed(m_file, "");
}

TEST_F(FileIO, CloseMayBeCalledTwiceAndOnAClosedObject)
{
    EXPECT_NO_THROW(m_file.Close());
    Open("file", true, true);
    EXPECT_NO_THROW(m_file.Close());
    EXPECT_NO_THROW(m_file.Close());
    EXPECT_FALSE(m_file.IsOpen());
}

TEST_F(FileIO, AFailingCloseGoesUnnoticed)
{
    const CFileName full("/dev/full");
    m_file.Open(&full, true, false);
    EXPECT_EQ(m_file.Write(1, Bytes("x")), 1u);
    EXPECT_NO_THROW(m_file.Close());
    EXPECT_FALSE(m_file.IsOpen());
}

TEST_F(FileIO, SetPositionCountsFromTheStartAndGivesZero)
{
    m_folder.MakeFile("file", "0123456789");
    Open("file", false, false);
    EXPECT_EQ(m_file.SetPosition(4), 0);
    EXPECT_EQ(m_file.SetPosition(6), 0);
    EXPECT_EQ(m_file.GetPosition(), 6u);
    EXPECT_EQ(ReadText(m_file, 2), "67");
    EXPECT_EQ(m_file.GetPosition(), 8u);
}

TEST_F(FileIO, SetPositionGoesBeyondTheEnd)
{
    m_folder.MakeFile("file", "0123456789");
    Open("file", false, false);
    EXPECT_EQ(m_file.SetPosition(1000), 0);
    EXPECT_EQ(m_file.GetPosition(), 1000u);
    EXPECT_EQ(m_file.GetLength(), 10u);
    EXPECT_EQ(ReadText(m_file, 1), "");
}

TEST_F(FileIO, AFailedSetPositionLeavesTheFileOpen)
{
    Open("file", true, true);
    m_file.Write(3, Bytes("abc"));
    const unsigned long nBeyondAllFiles = ~0ul;
    ExpectFailure(FailureOf([&] { m_file.SetPosition(nBeyondAllFiles); }),
                  CFileIOException::kSetPosition, 1, m_folder.Path("file"));
    EXPECT_TRUE(m_file.IsOpen());
    EXPECT_EQ(m_file.GetPosition(), 3u);
}

TEST_F(FileIO, WithoutPositionsThrowsForEachOfThem)
{
    OpenPipe();
    ExpectFailure(FailureOf([&] { m_file.SetPosition(0); }), CFileIOException::kSetPosition, 1,
                  m_folder.Path("pipe"));
    ExpectFailure(FailureOf([&] { m_file.GetPosition(); }), CFileIOException::kGetPosition, 1,
                  m_folder.Path("pipe"));
    EXPECT_TRUE(m_file.IsOpen());
}

TEST_F(FileIO, WithoutPositionsGetLengthDoesNotThrow)
{
    OpenPipe();
    EXPECT_EQ(m_file.GetLength(), ~0ul);
}

TEST_F(FileIO, EachFailureHasALineOfItsOwn)
{
    const int nFirst = FailureOf([&] { m_file.SetPosition(0); })->m_nSourceLine;
    const int nSecond = FailureOf([&] { m_file.GetPosition(); })->m_nSourceLine;
    const int nThird = FailureOf([&] { m_file.GetLength(); })->m_nSourceLine;
    EXPECT_LT(nFirst, nSecond);
    EXPECT_LT(nSecond, nThird);
}

TEST_F(FileIO, GetLengthLeavesThePosition)
{
    m_folder.MakeFile("file", "0123456789");
    Open("file", true, false);
    m_file.SetPosition(4);
    EXPECT_EQ(m_file.GetLength(), 10u);
    EXPECT_EQ(m_file.GetPosition(), 4u);
    EXPECT_EQ(ReadText(m_file, 1), "4");
}

TEST_F(FileIO, GetLengthCountsWhatIsStillInTheBuffer)
{
    Open("file", true, true);
    m_file.Write(3, Bytes("abc"));
    EXPECT_EQ(m_file.GetLength(), 3u);
}

TEST_F(FileIO, ReadPastTheEndGivesTheSmallerCount)
{
    m_folder.MakeFile("file", "0123456789");
    Open("file", false, false);
    unsigned char buffer[8];
    EXPECT_EQ(m_file.Read(8, buffer), 8u);
    EXPECT_EQ(m_file.Read(8, buffer), 2u);
    EXPECT_EQ(m_file.Read(8, buffer), 0u);
    EXPECT_EQ(m_file.Read(0, buffer), 0u);
}

TEST_F(FileIO, ReadAndWriteTakeEveryByte)
{
    unsigned char all[256];
    for (int n = 0; n < 256; ++n)
        all[n] = static_cast<unsigned char>(n);
    Open("file", true, true);
    EXPECT_EQ(m_file.Write(256, all), 256u);
    m_file.SetPosition(0);
    unsigned char copy[256] = {};
    EXPECT_EQ(m_file.Read(256, copy), 256u);
    EXPECT_EQ(std::memcmp(all, copy, 256), 0);
}

TEST_F(FileIO, WriteTellsOfAFullDiskByItsCount)
{
    const CFileName full("/dev/full");
    m_file.Open(&full, true, false);
    const std::vector<unsigned char> large(1 << 20);
    EXPECT_LT(m_file.Write(large.size(), large.data()), large.size());
}

TEST_F(FileIO, WriteStringWritesNoTerminator)
{
    Open("file", true, true);
    EXPECT_EQ(m_file.WriteString("take", false), 4u);
    EXPECT_EQ(m_file.WriteString("größe", false), 7u);
    m_file.Close();
    EXPECT_EQ(m_folder.Content("file"), "takegröße");
}

TEST_F(FileIO, WriteStringEndsALineWithCarriageReturnAndLineFeed)
{
    Open("file", true, true);
    EXPECT_EQ(m_file.WriteString("take", true), 6u);
    m_file.Close();
    EXPECT_EQ(m_folder.Content("file"), "take\r\n");
}

TEST_F(FileIO, WriteStringOfAnEmptyTextWritesTheLineEndAlone)
{
    Open("file", true, true);
    EXPECT_EQ(m_file.WriteString("", false), 0u);
    EXPECT_EQ(m_file.GetLength(), 0u);
    EXPECT_EQ(m_file.WriteString("", true), 2u);
    m_file.Close();
    EXPECT_EQ(m_folder.Content("file"), "\r\n");
}

TEST_F(FileIO, PreAllocateGivesZeroAndDoesNotGrowTheFile)
{
    Open("file", true, true);
    m_file.Write(3, Bytes("abc"));
    for (const long nSize : {0l, 1l << 20, -1l})
        EXPECT_EQ(m_file.PreAllocate(nSize), 0);
    m_file.Close();
    EXPECT_EQ(m_file.PreAllocate(1), 0);
    EXPECT_EQ(m_folder.Content("file"), "abc");
}

TEST_F(FileIO, SetFileCreatorTypeGivesZeroAndDoesNothing)
{
    const CFileName file(m_folder.Path("file").c_str());
    EXPECT_EQ(m_file.SetFileCreatorType(&file, 1, 2), 0);
    EXPECT_EQ(m_file.SetFileCreatorType(nullptr, 0, 0), 0);
    EXPECT_FALSE(std::filesystem::exists(m_folder.Path("file")));
}

TEST_F(FileIO, ReadsAndWritesNothingWhileClosed)
{
    unsigned char buffer[4];
    EXPECT_EQ(m_file.Read(4, buffer), 0u);
    EXPECT_EQ(m_file.Write(4, Bytes("take")), 0u);
    EXPECT_EQ(m_file.WriteString("take", true), 0u);
}

TEST_F(FileIO, CloseAndASecondOpenGiveTheDescriptorBack)
{
    const std::ptrdiff_t nBefore = OpenDescriptors();
    Open("first", true, true);
    EXPECT_EQ(OpenDescriptors(), nBefore + 1);
    Open("second", true, true);
    EXPECT_EQ(OpenDescriptors(), nBefore + 1);
    m_file.Close();
    EXPECT_EQ(OpenDescriptors(), nBefore);
}

TEST_F(FileIO, DestructionClosesTheFile)
{
    const std::ptrdiff_t nBefore = OpenDescriptors();
    auto pFile = std::make_unique<CFileIO>();
    const CFileName file(m_folder.Path("file").c_str());
    pFile->Open(&file, true, true);
    pFile->Write(3, Bytes("abc"));
    pFile.reset();
    EXPECT_EQ(m_folder.Content("file"), "abc");
    EXPECT_EQ(OpenDescriptors(), nBefore);
}

namespace
{

// Records which operations arrive through their virtual slots.
class RecordingFile : public CFileIO
{
public:
    explicit RecordingFile(std::string* pstrCalls) : m_pstrCalls(pstrCalls) {}

    void Close() override
    {
        *m_pstrCalls += "Close ";
        CFileIO::Close();
    }
    bool IsOpen() const override
    {
        *m_pstrCalls += "IsOpen ";
        return m_fPretendsToBeOpen && CFileIO::IsOpen();
    }
    unsigned long Write(unsigned long nCount, const unsigned char* pSource) override
    {
        *m_pstrCalls += "Write(" + std::string(pSource, pSource + nCount) + ") ";
        return 100;
    }

    bool m_fPretendsToBeOpen = true;

private:
    std::string* m_pstrCalls;
};

class FileIOSlots : public testing::Test
{
protected:
    FileIOSlots() : m_name(m_folder.Path("file").c_str()), m_pFile(new RecordingFile(&m_strCalls))
    {
    }

    ScratchFolder m_folder;
    CFileName m_name;
    std::string m_strCalls;
    std::unique_ptr<RecordingFile> m_pFile;
};

} // namespace

TEST_F(FileIOSlots, OpenCallsClose)
{
    m_pFile->Open(&m_name, true, true);
    EXPECT_EQ(m_strCalls, "Close ");
}

TEST_F(FileIOSlots, PositioningAsksIsOpen)
{
    m_pFile->Open(&m_name, true, true);
    m_strCalls.clear();
    m_pFile->SetPosition(0);
    EXPECT_EQ(m_strCalls, "IsOpen ");
    m_pFile->GetPosition();
    EXPECT_EQ(m_strCalls, "IsOpen IsOpen ");
    m_pFile->GetLength();
    EXPECT_EQ(m_strCalls, "IsOpen IsOpen IsOpen ");
    m_pFile->m_fPretendsToBeOpen = false;
    ExpectClosed(*m_pFile, m_folder.Path("file"));
}

TEST_F(FileIOSlots, WriteStringCallsWriteOnceOrTwiceAndAddsTheCounts)
{
    EXPECT_EQ(m_pFile->WriteString("take", false), 100u);
    EXPECT_EQ(m_strCalls, "Write(take) ");
    EXPECT_EQ(m_pFile->WriteString("take", true), 200u);
    EXPECT_EQ(m_strCalls, "Write(take) Write(take) Write(\r\n) ");
}

TEST(FileIOTable, HasTheOperationsInOrder)
{
    using TarvaneTests::Slot;
    EXPECT_TRUE(std::has_virtual_destructor_v<CFileIO>);
    EXPECT_EQ(Slot(&CFileIO::Open), 2);
    EXPECT_EQ(Slot(&CFileIO::Close), 3);
    EXPECT_EQ(Slot(&CFileIO::IsOpen), 4);
    EXPECT_EQ(Slot(&CFileIO::SetPosition), 5);
    EXPECT_EQ(Slot(&CFileIO::GetPosition), 6);
    EXPECT_EQ(Slot(&CFileIO::GetLength), 7);
    EXPECT_EQ(Slot(&CFileIO::Read), 8);
    EXPECT_EQ(Slot(&CFileIO::Write), 9);
    EXPECT_EQ(Slot(&CFileIO::WriteString), 10);
    EXPECT_EQ(Slot(&CFileIO::PreAllocate), 11);
}
