#include "apps/support/window/TemporaryFolder.h"

#include "apps/support/program/CommandLine.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace Tarvane
{
namespace
{

using std::filesystem::path;

// The variables that GNUstep reads, and what it takes without them.
path SharedFolder()
{
    for (const char* szVariable : {"TEMP", "TMP"})
    {
        const char* const szFolder = std::getenv(szVariable);
        if (szFolder != nullptr)
            return szFolder;
    }
    return "/tmp";
}

// Empty when the variable names no folder.
path OwnFolder(const char* szVariable, const char* szBelow)
{
    const char* const szFolder = std::getenv(szVariable);
    return szFolder != nullptr && szFolder[0] == '/' ? path(szFolder) / szBelow : path();
}

bool HasRoom(const path& folder)
{
    const path probe = folder / (".room-" + std::to_string(getpid()));
    const int nFile = open(probe.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (nFile < 0)
        return false;
    const bool fRoom = write(nFile, "room", 4) == 4;
    close(nFile);
    unlink(probe.c_str());
    return fRoom;
}

// As GNUstep calls it, which takes none that others could reach into.
path SecureFolder(const path& folder)
{
    return folder / ("GNUstepSecure" + std::to_string(geteuid()));
}

bool IsUsable(const path& folder)
{
    if (folder.empty())
        return false;
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const path secure = SecureFolder(folder);
    if (mkdir(secure.c_str(), 0700) != 0 && errno != EEXIST)
        return false;
    struct stat status
    {
    };
    return lstat(secure.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid() && (status.st_mode & 0777) == 0700 && HasRoom(secure);
}

// GNUstep holds this lock for moments. It breaks one that is old, but waits in vain for one that
// was left behind just now, or before the clock was set back.
void WaitForLock(const path& lock)
{
    constexpr double kOld = 15.0; // seconds, before and after now
    constexpr std::chrono::seconds kPatience{5};
    const auto start = std::chrono::steady_clock::now();
    struct stat status
    {
    };
    while (lstat(lock.c_str(), &status) == 0)
    {
        if (std::abs(std::difftime(std::time(nullptr), status.st_mtime)) > kOld)
        {
            rmdir(lock.c_str());
            return;
        }
        if (std::chrono::steady_clock::now() - start > kPatience)
            throw std::runtime_error("a lock of another program does not go away, or of one that "
                                     "was ended while it started: " +
                                     lock.string() + ". Remove it.");
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

} // namespace

void RequireTemporaryFolder()
{
    for (const path& folder : {SharedFolder(), OwnFolder("XDG_RUNTIME_DIR", ""),
                               OwnFolder("HOME", ".cache/tarvane-link")})
    {
        if (!IsUsable(folder))
            continue;
        setenv("TEMP", folder.c_str(), 1);
        WaitForLock(SecureFolder(folder) / "NSMessagePort" / "names" / "lock");
        return;
    }
    throw CUsageError("no folder for temporary files can be used: " + SharedFolder().string() +
                      " is full, or the name " + SecureFolder(SharedFolder()).string() +
                      " belongs to another user. Set TEMP to a folder of your own.");
}

} // namespace Tarvane
