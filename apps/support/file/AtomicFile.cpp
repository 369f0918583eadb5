#include "apps/support/file/AtomicFile.h"

#include <TarvanePlatform/FileSync.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Tarvane
{

namespace
{

[[noreturn]] void Fail(const char* szWhat, const std::filesystem::path& path, int nError = errno)
{
    throw std::system_error(nError, std::generic_category(), szWhat + path.string());
}

class CDescriptor
{
public:
    CDescriptor(const std::filesystem::path& path, int nFlags, mode_t nMode = 0)
        : m_nFile(open(path.c_str(), nFlags | O_CLOEXEC, nMode))
    {
        if (m_nFile < 0)
            Fail("cannot open ", path);
    }
    ~CDescriptor() { close(m_nFile); }
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    int Get() const { return m_nFile; }

private:
    int m_nFile;
};

void WriteAll(int nFile, std::string_view bytes, const std::filesystem::path& path)
{
    while (!bytes.empty())
    {
        const ssize_t nWritten = write(nFile, bytes.data(), bytes.size());
        if (nWritten < 0 && errno != EINTR)
            Fail("cannot write ", path);
        if (nWritten > 0)
            bytes.remove_prefix(static_cast<std::size_t>(nWritten));
    }
}

void SyncFolder(const std::filesystem::path& folder)
{
    const CDescriptor descriptor(folder, O_RDONLY | O_DIRECTORY);
    if (TarvaneSyncFile(descriptor.Get()) != 0)
        Fail("cannot sync ", folder);
}

// Gives the written file its permissions, and sees it to the disk.
void Settle(const CDescriptor& descriptor, mode_t nMode, const std::filesystem::path& path)
{
    if (fchmod(descriptor.Get(), nMode) != 0)
        Fail("cannot set the permissions of ", path);
    if (TarvaneSyncFile(descriptor.Get()) != 0)
        Fail("cannot sync ", path);
}

// Permissions for the new content; a file that its owner protects against writing is not replaced,
// and neither is a link, a folder, a pipe or a device.
mode_t ModeFor(const std::filesystem::path& file)
{
    struct stat status;
    if (lstat(file.c_str(), &status) != 0)
    {
        if (errno != ENOENT)
            Fail("cannot look at ", file);
        return 0644;
    }
    if (!S_ISREG(status.st_mode))
        Fail("not replaced, for it is no plain file: ", file, EINVAL);
    if (access(file.c_str(), W_OK) != 0)
        Fail("cannot write ", file);
    return status.st_mode & 0777;
}

std::filesystem::path FolderOf(const std::filesystem::path& file)
{
    return file.parent_path().empty() ? "." : file.parent_path();
}

} // namespace

std::filesystem::path NeighbourOf(const std::filesystem::path& file)
{
    return file.string() + ".saving";
}

void MoveNeighbourIntoPlace(const std::filesystem::path& file)
{
    const std::filesystem::path neighbour = NeighbourOf(file);
    try
    {
        Settle(CDescriptor(neighbour, O_WRONLY | O_NOFOLLOW), ModeFor(file), neighbour);
        if (rename(neighbour.c_str(), file.c_str()) != 0)
            Fail("cannot replace ", file);
    }
    catch (const std::system_error&)
    {
        unlink(neighbour.c_str());
        throw;
    }
    SyncFolder(FolderOf(file));
}

void ReplaceFile(const std::filesystem::path& file, std::string_view bytes)
{
    const std::filesystem::path neighbour = NeighbourOf(file);
    try
    {
        const mode_t nMode = ModeFor(file);
        const CDescriptor descriptor(neighbour, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, nMode);
        WriteAll(descriptor.Get(), bytes, neighbour);
    }
    catch (const std::system_error&)
    {
        unlink(neighbour.c_str());
        throw;
    }
    MoveNeighbourIntoPlace(file);
}

std::filesystem::path KeepUnderSecondName(const std::filesystem::path& file,
                                          const std::string& strSuffix)
{
    for (int n = 1;; n++)
    {
        std::filesystem::path second = file;
        second += n == 1 ? strSuffix : strSuffix + "-" + std::to_string(n);
        if (link(file.c_str(), second.c_str()) == 0)
        {
            SyncFolder(FolderOf(file));
            return second;
        }
        if (errno != EEXIST)
            Fail("cannot give a second name to ", file);
        std::error_code ignored;
        if (std::filesystem::equivalent(file, second, ignored))
            return second;
    }
}

std::string ReadFile(const std::filesystem::path& file, std::size_t nLargest)
{
    const CDescriptor descriptor(file, O_RDONLY | O_NONBLOCK);
    struct stat status;
    if (fstat(descriptor.Get(), &status) != 0)
        Fail("cannot look at ", file);
    if (!S_ISREG(status.st_mode))
        Fail("this is not a file: ", file, EINVAL);
    if (static_cast<std::size_t>(status.st_size) > nLargest)
        Fail("cannot read ", file, EFBIG);

    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t nDone = 0;
    while (nDone < bytes.size())
    {
        const ssize_t nRead = read(descriptor.Get(), bytes.data() + nDone, bytes.size() - nDone);
        if (nRead < 0 && errno != EINTR)
            Fail("cannot read ", file);
        if (nRead == 0)
            break;
        if (nRead > 0)
            nDone += static_cast<std::size_t>(nRead);
    }
    bytes.resize(nDone);
    return bytes;
}

} // namespace Tarvane
