#include "apps/server/SessionStore.h"

#include "apps/server/SessionBlocks.h"
#include "apps/server/SessionText.h"
#include "apps/support/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace Tarvane::Server
{

namespace
{

// Far above any session of use; a file that is no session at all is not read into memory.
constexpr std::size_t kLargestFile = std::size_t(256) << 20;

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
    try
    {
        ReplaceFile(m_file, strContent);
    }
    catch (const std::system_error&)
    {
        PutBack();
        throw;
    }
    m_strContent = std::move(strContent);
    m_fEarlierForm = false;
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
