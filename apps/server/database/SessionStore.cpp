#include "apps/server/database/SessionStore.h"

#include "apps/server/database/SessionDatabase.h"
#include "apps/server/session/SessionBlocks.h"
#include "apps/server/session/SessionText.h"
#include "apps/support/file/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace Tarvane::Server
{

namespace
{

std::filesystem::path LogOf(const std::filesystem::path& file)
{
    return file.string() + "-wal";
}

void RemoveDatabase(const std::filesystem::path& file)
{
    for (const char* szOf : {"", "-wal", "-shm", "-journal"})
        std::filesystem::remove(file.string() + szOf);
}

CSession LoadEarlier(const std::filesystem::path& file)
{
    const std::string strContent = ReadFile(file, kLargestSessionFile);
    return IsSessionText(strContent) ? DecodeSessionText(strContent) : DecodeSession(strContent);
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

// What read says of the file, with its name.
template <typename Read> auto CSessionStore::Named(Read&& read) const
{
    const std::string strWhich = "the session file " + m_file.string();
    try
    {
        return read();
    }
    catch (const CSessionFlaw& flaw)
    {
        throw CSessionFlaw(strWhich + " is flawed: " + flaw.what());
    }
    catch (const CSessionTooNew& version)
    {
        throw CSessionTooNew(strWhich + " is of a later program: " + version.what());
    }
    catch (const SQLite::Exception& error)
    {
        throw std::runtime_error(strWhich + " cannot be used: " + error.what());
    }
}

std::optional<CSession> CSessionStore::Load()
{
    if (!Exists())
        return std::nullopt;
    return Named(
        [this]
        {
            try
            {
                return CSessionDatabase::Load(m_file);
            }
            catch (const CNoDatabase&)
            {
                return LoadEarlier(m_file);
            }
        });
}

bool CSessionStore::Exists() const
{
    // A dangling link was resolved to its target, so a missing file is a new session in any case.
    return std::filesystem::exists(m_file);
}

bool CSessionStore::IsDatabase() const
{
    return Named(
        [this]
        {
            try
            {
                CSessionDatabase database(m_file);
                return true;
            }
            catch (const CNoDatabase&)
            {
                return false;
            }
        });
}

std::filesystem::path CSessionStore::KeepFlawed() const
{
    const std::filesystem::path kept = KeepUnderSecondName(m_file, ".flawed");
    // What its log holds belongs to it.
    std::error_code ignored;
    std::filesystem::create_hard_link(LogOf(m_file), LogOf(kept), ignored);
    return kept;
}

std::filesystem::path CSessionStore::KeepEarlier() const
{
    return KeepUnderSecondName(m_file, ".earlier");
}

void CSessionStore::Save(const CSession& session)
{
    if (const auto flaw = session.Flaw())
        throw CSessionFlaw("it could not be loaded again: " + *flaw);
    const std::filesystem::path neighbour = NeighbourOf(m_file);
    RemoveDatabase(neighbour);
    try
    {
        CSessionDatabase::Make(neighbour, session);
    }
    catch (const SQLite::Exception& error)
    {
        RemoveDatabase(neighbour);
        throw std::runtime_error("cannot write " + neighbour.string() + ": " + error.what());
    }
    CSessionDatabase::RemoveLog(m_file);
    MoveNeighbourIntoPlace(m_file);
}

} // namespace Tarvane::Server
