// Where a session is kept between runs of the server.
#pragma once

#include "apps/server/session/Session.h"
#include "apps/server/session/SessionFlaw.h"

#include <filesystem>
#include <optional>
#include <string>

namespace Tarvane::Server
{

/// Of the earlier forms, which are read into memory whole, a binary session to exchange among them.
constexpr std::size_t kLargestSessionFile = std::size_t(256) << 20;

/// One session file. Any one thread. Its forms are a database (SessionDatabase.h) and, from earlier
/// versions, a binary session (SessionBlocks.h) and a text (SessionText.h); callers see sessions
/// only.
class CSessionStore
{
public:
    /// Nothing is opened yet. A symbolic link is followed, now and for good, so that saving
    /// replaces what it points to and not the link.
    explicit CSessionStore(const std::filesystem::path& file);
    ~CSessionStore();
    CSessionStore(const CSessionStore&) = delete;
    CSessionStore& operator=(const CSessionStore&) = delete;

    const std::filesystem::path& File() const { return m_file; }

    /// Keeps other servers away from the file until this object goes: a database lets several write
    /// to it. The lock is a file beside it, ".<name>.lock", which stays. Reading alone needs no
    /// lock. Throws std::runtime_error when another server holds it, and std::system_error.
    void Lock();

    /// The whole session in the file; empty when there is no file. Throws CSessionFlaw for a file
    /// that holds no sound session and CSessionTooNew, both with a text that names the file, and
    /// std::runtime_error for one that cannot be read. The file is never touched, and a server may
    /// be at work on it.
    std::optional<CSession> Load();

    /// Whether there is a file; whether a server can work on it, as it is a database, of this
    /// program's version. Throws as Load does; what IsDatabase finds is not checked throughout.
    bool Exists() const;
    bool IsDatabase() const;

    /// Keeps a flawed file for good, beside it as "<name>.flawed" or, where that is taken, as
    /// "<name>.flawed-2" and so on, its log as well, and returns where. It stands under its own
    /// name too until the next Save. Throws std::system_error.
    std::filesystem::path KeepFlawed() const;
    /// The same for one of an earlier form, as "<name>.earlier".
    std::filesystem::path KeepEarlier() const;

    /// Makes the file a database of this session. When this returns it is on disk, and until then
    /// what was there stands. Nobody may be at work on it. Throws std::runtime_error with what
    /// stands in the way, and CSessionFlaw for a session that could not be loaded again.
    void Save(const CSession& session);

private:
    template <typename Read> auto Named(Read&& read) const;

    std::filesystem::path m_file;
    int m_nLock = -1;
};

} // namespace Tarvane::Server
