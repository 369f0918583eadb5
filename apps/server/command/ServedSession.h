// The session file as a process at work on it sees it, which other programs may move, replace or
// delete meanwhile.
#pragma once

#include "apps/server/database/SessionDatabase.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace Tarvane::Server
{

/// What tells a file from another under the same name; 0 for none.
struct FileIdentity
{
    std::uint64_t nDevice = 0;
    std::uint64_t nInode = 0;

    bool IsNone() const { return nInode == 0; }
    bool operator==(const FileIdentity&) const = default;
};
FileIdentity IdentityOf(const std::filesystem::path& file);

/// Any one thread.
class CServedSession
{
public:
    /// Opens the file, if it is the one that the identity says. nServer names copies.
    CServedSession(std::filesystem::path file, FileIdentity identity, std::int64_t nServer);

    /// To be called before each command. A file that is gone is made anew from what is open. One
    /// that another program has put in its place stays, and a copy of what is open goes beside it,
    /// to
    /// "<name>.kept-<server>".
    void Look();
    /// Whether the file under the name is still the open one.
    bool IsOurs() const { return IdentityOf(m_file) == m_identity; }

    /// Null when the session could not be opened; Refusal says why.
    CSessionDatabase* Database() { return m_pDatabase.get(); }
    /// Why nothing can be changed; empty while it can.
    const std::string& Refusal() const { return m_strRefusal; }
    /// Of the file that belongs to the session now.
    FileIdentity Identity() const { return m_identity; }

private:
    void Open();
    void PutBack();
    void KeepBoth();

    std::filesystem::path m_file;
    FileIdentity m_identity;
    std::int64_t m_nServer;
    std::unique_ptr<CSessionDatabase> m_pDatabase;
    std::string m_strRefusal;
};

} // namespace Tarvane::Server
