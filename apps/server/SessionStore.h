// Where a session is kept between runs of the server.
#pragma once

#include "apps/server/Session.h"
#include "apps/server/SessionFlaw.h"

#include <filesystem>
#include <optional>
#include <string>

namespace Tarvane::Server
{

// One session file. Any one thread. The form of the file is this class's own affair: callers see
// sessions only.
class CSessionStore
{
public:
    // Nothing is opened yet. A symbolic link is followed, now and for good, so that saving replaces
    // what it points to and not the link.
    explicit CSessionStore(const std::filesystem::path& file);
    ~CSessionStore();
    CSessionStore(const CSessionStore&) = delete;
    CSessionStore& operator=(const CSessionStore&) = delete;

    const std::filesystem::path& File() const { return m_file; }

    // Keeps other servers away from the file until this object goes. The lock is a file beside it,
    // ".<name>.lock", which stays. Reading alone needs no lock. Throws std::runtime_error when
    // another server holds it, and std::system_error.
    void Lock();

    // The session in the file; empty when there is no file. Throws CSessionFlaw for a file that
    // holds no sound session and CSessionTooNew, both with a text that names the file, and
    // std::system_error for one that cannot be read. The file is never touched.
    std::optional<CSession> Load();

    // Whether what was loaded last is of the earlier form; the next Save writes today's.
    bool HasEarlierForm() const { return m_fEarlierForm; }

    // Keeps a flawed file for good, beside it as "<name>.flawed" or, where that is taken, as
    // "<name>.flawed-2" and so on, and returns where. It stands under its own name too until the
    // next Save. Throws std::system_error.
    std::filesystem::path KeepFlawed() const;

    // When this returns the session is on disk and survives the end of the process at any instant;
    // until then the file holds what it held. Throws std::system_error with what stands in the way,
    // and CSessionFlaw for a session that could not be loaded again; the file then holds what it
    // held.
    void Save(const CSession& session);

private:
    void PutBack();

    std::filesystem::path m_file;
    std::string m_strContent; // of the file, as last loaded or saved; empty when there is none
    bool m_fEarlierForm = false;
    int m_nLock = -1;
};

} // namespace Tarvane::Server
