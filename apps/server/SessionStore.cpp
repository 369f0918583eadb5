#include "apps/server/SessionStore.h"

#include "apps/server/SessionBlocks.h"
#include "apps/server/SessionText.h"
#include "apps/support/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Tarvane::Server
{

namespace
{

// Far above any session of use; a file that is no session at all is not read into memory.
constexpr std::size_t kLargestFile = std::size_t(256) << 20;

CSessionStore::FileStamp StampOf(const std::filesystem::path& file)
{
    struct stat status = {};
    if (stat(file.c_str(), &status) != 0)
        return {};
    return {static_cast<std::uintmax_t>(status.st_dev), status.st_ino, status.st_size};
}

} // namespace

CSessionStore::CSessionStore(const std::filesystem::path& file)
    : m_file(std::filesystem::weakly_canonical(std::filesystem::absolute(file)))
{
}

CSessionStore::~CSessionStore()
{
    if (m_nLock >= 0)
        close(m_nLock);
}

void CSessionStore::Lock()
{
    const std::filesystem::path lock =
        m_file.parent_path() / ("." + m_file.filename().string() + ".lock");
    m_nLock = open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
    if (m_nLock < 0)
        throw std::system_error(errno, std::generic_category(), "cannot open " + lock.string());
    if (flock(m_nLock, LOCK_EX | LOCK_NB) != 0)
        throw std::runtime_error("the session " + m_file.string() +
                                 " is in use by another server; end that one first");
}

std::optional<CSession> CSessionStore::Load()
{
    // A dangling link was resolved to its target, so a missing file is a new session in any case.
    if (!std::filesystem::exists(m_file))
        return std::nullopt;
    m_strContent = ReadFile(m_file, kLargestFile);
    m_stamp = StampOf(m_file);
    m_fEarlierForm = IsSessionText(m_strContent);
    const std::string strWhich = "the session file " + m_file.string();
    try
    {
        return m_fEarlierForm ? DecodeSessionText(m_strContent) : DecodeSession(m_strContent);
    }
    catch (const CSessionFlaw& flaw)
    {
        throw CSessionFlaw(strWhich + " is flawed: " + flaw.what());
    }
    catch (const CSessionTooNew& version)
    {
        throw CSessionTooNew(strWhich + " is of a later program: " + version.what());
    }
}

std::filesystem::path CSessionStore::KeepFlawed() const
{
    return KeepUnderSecondName(m_file, ".flawed");
}

void CSessionStore::Save(const CSession& session)
{
    if (const auto flaw = session.Flaw())
        throw CSessionFlaw("it could not be loaded again: " + *flaw);
    std::string strContent = EncodeSession(session);
    if (strContent.size() > kLargestFile)
        throw CSessionFlaw("it would be larger than " + std::to_string(kLargestFile >> 20) +
                           " MiB, and could not be loaded again");
    RequireOwnFile();
    try
    {
        ReplaceFile(m_file, strContent);
    }
    catch (const std::system_error&)
    {
        PutBack();
        m_stamp = StampOf(m_file);
        throw;
    }
    m_strContent = std::move(strContent);
    m_stamp = StampOf(m_file);
    m_fEarlierForm = false;
}

// Somebody else's session under the name must not be lost; nor must what is only here.
void CSessionStore::RequireOwnFile()
{
    const FileStamp now = StampOf(m_file);
    if (m_strRefusal.empty() && now.nInode != 0 && m_stamp.nInode != 0 && !(now == m_stamp))
    {
        const std::filesystem::path kept = m_file.string() + ".kept-" + std::to_string(getpid());
        ReplaceFile(kept, m_strContent);
        m_strRefusal = "the session file " + m_file.string() +
                       " was changed by another program and is left as it is; the session as this "
                       "server last saved it is in " +
                       kept.string() + ". End the server and decide between the two";
    }
    if (!m_strRefusal.empty())
        throw std::runtime_error(m_strRefusal);
}

// The file has been replaced already when it is its folder that could not be synced. The session
// in it must not come back at the next start: its change has been refused by then.
void CSessionStore::PutBack()
{
    try
    {
        if (!m_strContent.empty() && ReadFile(m_file, kLargestFile) != m_strContent)
            ReplaceFile(m_file, m_strContent);
    }
    catch (const std::system_error&)
    {
        // The caller is told of the first failure, which has the same cause.
    }
}

} // namespace Tarvane::Server
