// Where a session is kept between runs of the server.
#pragma once

#include "apps/server/Session.h"
#include "apps/server/SessionText.h"

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

    // The session in the file; empty when there is no file. Throws CSessionFlaw, whose text names
    // the file, for a file that holds no sound session, and std::system_error for one that cannot
    // be read. The file is never touched.
    std::optional<CSession> Load();

    // When this returns the session is on disk and survives the end of the process at any instant;
    // until then the file holds what it held. Throws std::system_error with what stands in the way;
    // the file then holds what it held.
    void Save(const CSession& session);

private:
    void PutBack();

    std::filesystem::path m_file;
    std::string m_strContent; // of the file, as last loaded or saved; empty when there is none
    int m_nLock = -1;
};

} // namespace Tarvane::Server
