#include "apps/support/program/CommandLine.h"
#include "apps/support/window/TemporaryFolder.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Tarvane;
using testing::AllOf;
using testing::HasSubstr;

namespace TarvaneTest
{
namespace
{

// A shared folder, one of the user's own for a session, and the user's home.
class GNUstepFolder : public testing::Test
{
protected:
    GNUstepFolder()
    {
        for (const char* szVariable : {"TEMP", "TMP", "XDG_RUNTIME_DIR", "HOME"})
        {
            const char* const szValue = std::getenv(szVariable);
            m_before[szVariable] = szValue == nullptr ? std::nullopt : std::optional(szValue);
        }
        Set("TEMP", Made("shared"));
        Set("XDG_RUNTIME_DIR", Made("runtime"));
        Set("HOME", Made("home"));
    }
    ~GNUstepFolder() override
    {
        for (const auto& [strVariable, value] : m_before)
            Set(strVariable, value);
    }

    static void Set(const std::string& strVariable, const std::optional<std::string>& value)
    {
        if (value)
            setenv(strVariable.c_str(), value->c_str(), 1);
        else
            unsetenv(strVariable.c_str());
    }

    std::string Made(const std::string& strName) const
    {
        std::filesystem::create_directory(m_folder / strName);
        return m_folder / strName;
    }

    std::string Shared() const { return m_folder / "shared"; }

    static std::filesystem::path SecureIn(const std::string& strFolder)
    {
        return std::filesystem::path(strFolder) / ("GNUstepSecure" + std::to_string(geteuid()));
    }

    // Made as GNUstep does, and changed so long ago.
    std::filesystem::path Lock(std::chrono::seconds age) const
    {
        const std::filesystem::path lock = SecureIn(Shared()) / "NSMessagePort" / "names" / "lock";
        std::filesystem::create_directories(lock);
        chmod(SecureIn(Shared()).c_str(), 0700);
        const timespec changed{std::time(nullptr) - age.count(), 0};
        const timespec times[]{changed, changed};
        EXPECT_EQ(utimensat(AT_FDCWD, lock.c_str(), times, 0), 0);
        return lock;
    }

    static std::string Chosen()
    {
        RequireTemporaryFolder();
        return std::getenv("TEMP");
    }

    CTemporaryFolder m_folder;
    std::map<std::string, std::optional<std::string>> m_before;
};

} // namespace

TEST_F(GNUstepFolder, IsTheSharedOneWithANameThatNobodyElseCanReachInto)
{
    EXPECT_EQ(Chosen(), Shared());
    struct stat status = {};
    ASSERT_EQ(lstat(SecureIn(Shared()).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | 0700U);
    EXPECT_TRUE(std::filesystem::is_empty(SecureIn(Shared())));
    EXPECT_EQ(Chosen(), Shared()) << "a second time";
}

TEST_F(GNUstepFolder, TheOtherVariableNamesItWithoutTheFirst)
{
    Set("TEMP", std::nullopt);
    Set("TMP", Made("other"));
    EXPECT_EQ(Chosen(), m_folder / "other");
}

TEST_F(GNUstepFolder, AFolderOfTheUsersStandsInWhereTheNameIsALink)
{
    std::filesystem::create_directory_symlink(Made("elsewhere"), SecureIn(Shared()));
    chmod((m_folder / "elsewhere").c_str(), 0700);
    EXPECT_EQ(std::filesystem::path(Chosen()), std::filesystem::path(m_folder / "runtime") / "");
}

TEST_F(GNUstepFolder, AFolderOfTheUsersStandsInWhereOthersCanReachIntoTheName)
{
    std::filesystem::create_directory(SecureIn(Shared()));
    chmod(SecureIn(Shared()).c_str(), 0750);
    EXPECT_EQ(std::filesystem::path(Chosen()), std::filesystem::path(m_folder / "runtime") / "");
}

// Only the superuser can give a folder away.
TEST_F(GNUstepFolder, AFolderOfTheUsersStandsInWhereTheNameIsAnothers)
{
    std::filesystem::create_directory(SecureIn(Shared()));
    chmod(SecureIn(Shared()).c_str(), 0700);
    if (chown(SecureIn(Shared()).c_str(), geteuid() + 1, gid_t(-1)) == 0)
        EXPECT_EQ(std::filesystem::path(Chosen()),
                  std::filesystem::path(m_folder / "runtime") / "");
    else
        EXPECT_EQ(Chosen(), Shared());
}

TEST_F(GNUstepFolder, TheHomeIsTheLastToStandIn)
{
    Set("TEMP", "/proc");
    Set("XDG_RUNTIME_DIR", std::nullopt);
    EXPECT_EQ(Chosen(), m_folder / "home/.cache/tarvane-link");
    EXPECT_TRUE(std::filesystem::is_directory(SecureIn(m_folder / "home/.cache/tarvane-link")));
}

TEST_F(GNUstepFolder, AFullDiskIsToldWithWhatToDo)
{
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{0, before.rlim_max};
    const auto handlerBefore = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    std::string strWords;
    try
    {
        RequireTemporaryFolder();
    }
    catch (const CUsageError& error)
    {
        strWords = error.what();
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handlerBefore);
    EXPECT_THAT(strWords,
                AllOf(HasSubstr(Shared() + " is full"), HasSubstr(SecureIn(Shared()).string()),
                      HasSubstr("Set TEMP to a folder of your own.")));
}

TEST_F(GNUstepFolder, ALockThatIsOldOrDatedAheadIsBroken)
{
    for (const std::chrono::seconds age : {std::chrono::hours(1), std::chrono::hours(-1)})
    {
        const std::filesystem::path lock = Lock(age);
        EXPECT_EQ(Chosen(), Shared());
        EXPECT_FALSE(std::filesystem::exists(lock)) << age.count();
    }
}

TEST_F(GNUstepFolder, ALockOfAnotherProgramIsWaitedFor)
{
    const std::filesystem::path lock = Lock(std::chrono::seconds(0));
    std::thread other(
        [&]
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            std::error_code ignored;
            std::filesystem::rename(lock, Shared() + "/given back", ignored);
        });
    EXPECT_EQ(Chosen(), Shared());
    other.join();
    EXPECT_TRUE(std::filesystem::exists(Shared() + "/given back")) << "it was broken";
}

TEST_F(GNUstepFolder, ALockThatDoesNotGoAwayIsToldInTime)
{
    const std::filesystem::path lock = Lock(std::chrono::seconds(0));
    const auto start = std::chrono::steady_clock::now();
    std::string strWords;
    try
    {
        RequireTemporaryFolder();
    }
    catch (const std::runtime_error& error)
    {
        strWords = error.what();
    }
    EXPECT_THAT(strWords, HasSubstr(lock.string() + ". Remove it."));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(12));
    EXPECT_TRUE(std::filesystem::exists(lock));
}

} // namespace TarvaneTest
