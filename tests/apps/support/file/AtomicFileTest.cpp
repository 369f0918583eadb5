#include "apps/support/file/AtomicFile.h"

#include "tests/apps/support/FailingCalls.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sys/stat.h>
#include <system_error>

namespace Tarvane
{
namespace
{

using TarvaneTest::CFailingCall;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::size_t kAny = 1 << 20;

class AtomicFile : public testing::Test
{
protected:
    std::string ErrorOfReplacing(const std::string& bytes)
    {
        try
        {
            ReplaceFile(m_file, bytes);
            return "";
        }
        catch (const std::system_error& error)
        {
            return error.what();
        }
    }

    TarvaneTest::CTemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder / "kept";
};

TEST_F(AtomicFile, CreatesAndReplaces)
{
    ReplaceFile(m_file, "one");
    EXPECT_EQ(ReadFile(m_file, kAny), "one");
    const std::string strLong(300'000, 'x');
    ReplaceFile(m_file, strLong);
    EXPECT_EQ(ReadFile(m_file, kAny), strLong);
    ReplaceFile(m_file, "");
    EXPECT_EQ(ReadFile(m_file, kAny), "");
    EXPECT_THAT(m_folder.Files(), ElementsAre("kept"));
}

TEST_F(AtomicFile, AReaderKeepsTheOldContentWhole)
{
    ReplaceFile(m_file, "old content");
    std::ifstream reader(m_file);
    ReplaceFile(m_file, "new");
    std::string strLine;
    std::getline(reader, strLine);
    EXPECT_EQ(strLine, "old content");
}

TEST_F(AtomicFile, PermissionsStay)
{
    ReplaceFile(m_file, "one");
    std::filesystem::permissions(m_file, std::filesystem::perms(0640));
    ReplaceFile(m_file, "two");
    EXPECT_EQ(std::filesystem::status(m_file).permissions(), std::filesystem::perms(0640));
}

TEST_F(AtomicFile, ANeighbourLeftBehindIsWrittenOver)
{
    std::ofstream(m_folder / "kept.saving") << "half of something much longer";
    ReplaceFile(m_file, "one");
    EXPECT_EQ(ReadFile(m_file, kAny), "one");
    EXPECT_THAT(m_folder.Files(), ElementsAre("kept"));
}

TEST_F(AtomicFile, ANeighbourThatIsALinkIsNotFollowed)
{
    std::ofstream(m_folder / "other") << "not ours";
    std::filesystem::create_symlink(m_folder / "other", m_folder / "kept.saving");
    EXPECT_THAT(ErrorOfReplacing("one"), HasSubstr("cannot open"));
    EXPECT_EQ(ReadFile(m_folder / "other", kAny), "not ours");
}

TEST_F(AtomicFile, WhatIsNoPlainFileIsNotReplaced)
{
    std::ofstream(m_folder / "other") << "not ours";
    std::filesystem::create_symlink(m_folder / "other", m_folder / "link");
    std::filesystem::create_symlink(m_folder / "nowhere", m_folder / "dangling");
    std::filesystem::create_directory(m_folder / "folder");
    ASSERT_EQ(mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    const std::vector<std::string> before = m_folder.Files();
    for (const char* szName : {"link", "dangling", "folder", "pipe"})
    {
        try
        {
            ReplaceFile(m_folder / szName, "new");
            ADD_FAILURE() << szName;
        }
        catch (const std::system_error& error)
        {
            EXPECT_THAT(error.what(), HasSubstr("no plain file"));
        }
    }
    EXPECT_EQ(m_folder.Files(), before);
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder / "link"));
    EXPECT_TRUE(std::filesystem::is_fifo(m_folder / "pipe"));
    EXPECT_EQ(ReadFile(m_folder / "other", kAny), "not ours");
}

TEST_F(AtomicFile, FailuresBeforeTheExchangeLeaveTheOldContentAndNoNeighbour)
{
    ReplaceFile(m_file, "old");
    const struct
    {
        const char* szCall;
        int nError;
        const char* szText;
    } failures[] = {{"write", ENOSPC, "cannot write"},
                    {"fsync", EIO, "cannot sync"},
                    {"rename", EROFS, "cannot replace"}};
    for (const auto& failure : failures)
    {
        const CFailingCall failing(failure.szCall, 1, failure.nError);
        const std::string strError = ErrorOfReplacing("new");
        EXPECT_TRUE(failing.HasFailed());
        EXPECT_THAT(strError, HasSubstr(failure.szText));
        EXPECT_THAT(strError, HasSubstr(std::generic_category().message(failure.nError)));
        EXPECT_EQ(ReadFile(m_file, kAny), "old");
        EXPECT_THAT(m_folder.Files(), ElementsAre("kept"));
    }
}

TEST_F(AtomicFile, TheFileAndItsFolderAreSynced)
{
    for (int nCall : {1, 2})
    {
        const CFailingCall failing("fsync", nCall, EIO);
        EXPECT_THAT(ErrorOfReplacing("new"), HasSubstr("cannot sync"));
        EXPECT_TRUE(failing.HasFailed());
    }
    const CFailingCall failing("fsync", 3, EIO);
    EXPECT_EQ(ErrorOfReplacing("new"), "");
    EXPECT_FALSE(failing.HasFailed());
}

TEST_F(AtomicFile, AnInterruptedWriteGoesOn)
{
    const CFailingCall failing("write", 1, EINTR);
    ReplaceFile(m_file, "one");
    EXPECT_TRUE(failing.HasFailed());
    EXPECT_EQ(ReadFile(m_file, kAny), "one");
}

TEST_F(AtomicFile, AMissingFolderIsAnError)
{
    EXPECT_THROW(ReplaceFile(m_folder / "none" / "kept", "x"), std::system_error);
}

TEST_F(AtomicFile, ASecondNameKeepsTheContentWhateverBecomesOfTheFile)
{
    ReplaceFile(m_file, "first");
    EXPECT_EQ(KeepUnderSecondName(m_file, ".old"), m_folder / "kept.old");
    ReplaceFile(m_file, "second");
    EXPECT_EQ(ReadFile(m_folder / "kept.old", kAny), "first");
    EXPECT_EQ(ReadFile(m_file, kAny), "second");
}

TEST_F(AtomicFile, ASecondNameIsNeverOneThatIsTaken)
{
    for (const char* szContent : {"first", "second", "third"})
    {
        ReplaceFile(m_file, szContent);
        KeepUnderSecondName(m_file, ".old");
    }
    EXPECT_EQ(ReadFile(m_folder / "kept.old", kAny), "first");
    EXPECT_EQ(ReadFile(m_folder / "kept.old-2", kAny), "second");
    EXPECT_EQ(ReadFile(m_folder / "kept.old-3", kAny), "third");
}

TEST_F(AtomicFile, TheSecondNameOfAnInterruptedCallIsTakenAgain)
{
    ReplaceFile(m_file, "first");
    KeepUnderSecondName(m_file, ".old");
    EXPECT_EQ(KeepUnderSecondName(m_file, ".old"), m_folder / "kept.old");
    EXPECT_THAT(m_folder.Files(), ElementsAre("kept", "kept.old"));
}

TEST_F(AtomicFile, TheSecondNameIsSynced)
{
    ReplaceFile(m_file, "first");
    const CFailingCall failing("fsync", 1, EIO);
    EXPECT_THROW(KeepUnderSecondName(m_file, ".old"), std::system_error);
}

TEST_F(AtomicFile, AMissingFileGetsNoSecondName)
{
    EXPECT_THROW(KeepUnderSecondName(m_file, ".old"), std::system_error);
    EXPECT_THAT(m_folder.Files(), ElementsAre());
}

TEST_F(AtomicFile, ReadingRefusesWhatIsTooLargeOrNoFile)
{
    ReplaceFile(m_file, "1234");
    EXPECT_EQ(ReadFile(m_file, 4), "1234");
    EXPECT_THROW(ReadFile(m_file, 3), std::system_error);
    EXPECT_THROW(ReadFile(m_folder.Path(), kAny), std::system_error);
    EXPECT_THROW(ReadFile(m_folder / "none", kAny), std::system_error);
    ASSERT_EQ(mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    EXPECT_THROW(ReadFile(m_folder / "pipe", kAny), std::system_error);
}

} // namespace
} // namespace Tarvane
