#include "apps/server/command/ServedSession.h"

#include "apps/support/file/AtomicFile.h"

#include <sys/stat.h>
#include <utility>

namespace Tarvane::Server
{

FileIdentity IdentityOf(const std::filesystem::path& file)
{
    struct stat status = {};
    if (stat(file.c_str(), &status) != 0)
        return {};
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

CServedSession::CServedSession(std::filesystem::path file, FileIdentity identity,
                               std::int64_t nServer)
    : m_file(std::move(file)), m_identity(identity), m_nServer(nServer)
{
    // What is there by now was never looked at, and the log beside it is not its own.
    if (!IsOurs())
    {
        m_strRefusal = "the session file " + m_file.string() +
                       " was changed by another program and is left as it is; end the server";
        return;
    }
    Open();
}

// A full disk, for instance, stands in the way for a while only.
void CServedSession::Open()
try
{
    m_pDatabase = std::make_unique<CSessionDatabase>(m_file);
    m_strRefusal.clear();
}
catch (const std::exception& error)
{
    m_strRefusal = "the session file " + m_file.string() + " cannot be opened: " + error.what();
}

void CServedSession::Look()
{
    if (m_pDatabase == nullptr && IsOurs())
        Open();
    if (m_pDatabase == nullptr || IsOurs())
        return;
    try
    {
        // What stood in the way before may not any more.
        if (IdentityOf(m_file).IsNone())
            PutBack();
        else if (m_strRefusal.empty())
            KeepBoth();
    }
    catch (const std::exception& error)
    {
        m_strRefusal = "the session file " + m_file.string() +
                       " has gone, and cannot be made anew: " + error.what();
    }
}

void CServedSession::PutBack()
{
    const std::filesystem::path neighbour = NeighbourOf(m_file);
    std::filesystem::remove(neighbour);
    m_pDatabase->CopyTo(neighbour);
    CSessionDatabase::UseLog(neighbour);
    CSessionDatabase::RemoveLog(m_file);
    MoveNeighbourIntoPlace(m_file);
    // Not before: until then what is open is all that there is.
    m_pDatabase.reset();
    m_identity = IdentityOf(m_file);
    Open();
}

void CServedSession::KeepBoth()
{
    const std::filesystem::path kept = m_file.string() + ".kept-" + std::to_string(m_nServer);
    if (!std::filesystem::exists(kept))
        m_pDatabase->CopyTo(kept);
    m_strRefusal = "the session file " + m_file.string() +
                   " was changed by another program and is left as it is; the session as this "
                   "server last saved it is in " +
                   kept.string() + ". End the server and decide between the two";
}

} // namespace Tarvane::Server
