// Where a session is kept between runs of the server.
#pragma once

#include "apps/server/Session.h"
#include "apps/server/SessionFlaw.h"

#include <cstdint>
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
    // and CSessionFlaw for a session that could not be loaded again, one of more than 256 MiB among
    // them; the file then holds what it held. When another program has put a file in its place,
    // that file stays, the session as last saved goes to "<name>.kept-<process>", and nothing is
    // saved any more: std::runtime_error, now and from then on.
    void Save(const CSession& session);

    // What tells a file from another under the same name; all 0 for none.
    struct FileStamp
    {
        std::uintmax_t nDevice = 0;
        std::uintmax_t nInode = 0;
        std::intmax_t nBytes = 0;

        bool operator==(const FileStamp&) const = default;
    };

private:
    void PutBack();
    void RequireOwnFile();

    std::filesystem::path m_file;
    std::string m_strContent; // of the file, as last loaded or saved; empty when there is none
    FileStamp m_stamp;        // of the file then
    std::string m_strRefusal; // why nothing is saved any more; empty while it is
    bool m_fEarlierForm = false;
    int m_nLock = -1;
};

} // namespace Tarvane::Server
