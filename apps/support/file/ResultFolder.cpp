#include "apps/support/file/ResultFolder.h"

#include "apps/support/program/CommandLine.h"

#include <TarvanePlatform/FileSync.h>

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

constexpr const char* kListName = ".tarvane-results";
constexpr const char* kListHead = "Tarvane results";

[[noreturn]] void ThrowErrno(const char* szWhat, const fs::path& path)
{
    throw fs::filesystem_error(szWhat, path, std::error_code(errno, std::generic_category()));
}

bool WriteAll(int nFile, std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t nWritten = ::write(nFile, bytes.data(), bytes.size());
        if (nWritten < 0 && errno != EINTR)
        {
            return false;
        }
        bytes.remove_prefix(nWritten > 0 ? static_cast<size_t>(nWritten) : 0);
    }
    return TarvaneSyncFile(nFile) == 0;
}

// A list that somebody has edited must not lead out of the folder.
bool StaysInside(const fs::path& name)
{
    if (name.empty() || name.is_absolute())
    {
        return false;
    }
    for (const fs::path& part : name)
    {
        if (part == "..")
        {
            return false;
        }
    }
    return true;
}

} // namespace

void WriteFileAtomically(const fs::path& path, std::string_view bytes)
{
    std::string strTemporary = path.string() + ".XXXXXX";
    const int nFile = ::mkstemp(strTemporary.data());
    if (nFile < 0)
    {
        ThrowErrno("cannot write", path);
    }
    ::fchmod(nFile, 0644);
    const bool fWritten = WriteAll(nFile, bytes);
    ::close(nFile);
    if (!fWritten || ::rename(strTemporary.c_str(), path.c_str()) != 0)
    {
        const int nError = errno;
        ::unlink(strTemporary.c_str());
        errno = nError;
        ThrowErrno("cannot write", path);
    }
}

CResultFolder::CResultFolder(const fs::path& path)
{
    std::error_code error;
    fs::create_directories(path, error);
    m_path = fs::canonical(path, error);
    if (error || !fs::is_directory(m_path) || ::access(m_path.c_str(), W_OK | X_OK) != 0)
    {
        throw CUsageError("cannot write into the folder " + path.string() +
                          " - name one that you may write.");
    }
    ReadList();
}

void CResultFolder::ReadList()
{
    std::ifstream list(m_path / kListName);
    if (!list)
    {
        return;
    }
    std::string strLine;
    if (!std::getline(list, strLine) || strLine != kListHead)
    {
        throw CUsageError("the file " + (m_path / kListName).string() +
                          " is not a list of results - move it away, or name another folder.");
    }
    while (std::getline(list, strLine))
    {
        if (StaysInside(strLine))
        {
            m_names.insert(strLine);
        }
    }
}

void CResultFolder::WriteList() const
{
    std::string strList = std::string(kListHead) + "\n";
    for (const std::string& strName : m_names)
    {
        strList += strName + "\n";
    }
    WriteFileAtomically(m_path / kListName, strList);
}

void CResultFolder::RemoveEarlier()
{
    std::error_code ignored;
    for (const std::string& strName : m_names)
    {
        fs::remove(m_path / strName, ignored);
    }
    for (const std::string& strName : m_names)
    {
        for (fs::path folder = fs::path(strName).parent_path(); !folder.empty();
             folder = folder.parent_path())
        {
            // Fails, as it should, while something of others is in it.
            fs::remove(m_path / folder, ignored);
        }
    }
    m_names.clear();
    WriteList();
}

fs::path CResultFolder::Claim(const std::string& strName)
{
    if (!StaysInside(strName))
    {
        throw CUsageError("the result name " + strName + " leads out of " + m_path.string() + ".");
    }
    const fs::path path = m_path / strName;
    std::error_code error;
    if (fs::exists(fs::symlink_status(path, error)))
    {
        if (m_names.count(strName) == 0)
        {
            throw CUsageError("the file " + path.string() +
                              " is not one of our results - move it away, or name another folder.");
        }
        fs::remove(path, error);
    }
    fs::create_directories(path.parent_path());
    if (m_names.insert(strName).second)
    {
        // Listed before it is written, so that a run that is cut short can still be cleared up.
        WriteList();
    }
    return path;
}

void CResultFolder::Adopt(const fs::path& path)
{
    const fs::path name = path.lexically_relative(m_path);
    if (StaysInside(name) && m_names.insert(name.string()).second)
    {
        WriteList();
    }
}

void CResultFolder::WriteText(const std::string& strName, std::string_view strText)
{
    WriteFileAtomically(Claim(strName), strText);
}

} // namespace Tarvane
