// The fingerprints that a session keeps.
#include "apps/server/database/SessionQuery.h"

#include <sys/stat.h>
#include <utility>

namespace Tarvane::Server
{

std::optional<FileState> StateOf(const std::filesystem::path& file)
{
    struct stat status = {};
    if (stat(file.c_str(), &status) != 0)
        return std::nullopt;
    // Unlike the time of the last writing, nobody can set this one back.
    return FileState{static_cast<std::uint64_t>(status.st_dev),
                     static_cast<std::uint64_t>(status.st_ino), status.st_size, status.st_ctime};
}

std::optional<Fingerprint> CSessionDatabase::FindFingerprint(const AudioStretch& stretch)
{
    const FileState& file = stretch.file;
    CQuery query = Query("SELECT form, content FROM fingerprints WHERE device = ? AND inode = ? "
                         "AND start = ? AND stop = ? AND channels = ? AND size = ? AND changed = ?",
                         static_cast<std::int64_t>(file.nDevice),
                         static_cast<std::int64_t>(file.nInode), stretch.nStart, stretch.nEnd,
                         ChannelText(stretch.channels), file.nSize, file.nChanged);
    if (!query.Next())
        return std::nullopt;
    return Fingerprint{static_cast<std::int32_t>(query.Number(0)), query.Text(1)};
}

void CSessionDatabase::NoteFingerprint(AudioStretch stretch, Fingerprint fingerprint)
{
    m_fingerprints.emplace_back(std::move(stretch), std::move(fingerprint));
}

void CSessionDatabase::SaveFingerprints()
{
    if (m_fingerprints.empty())
        return;
    const auto fingerprints = std::exchange(m_fingerprints, {});
    SQLite::Transaction transaction(m_database, SQLite::TransactionBehavior::IMMEDIATE);
    for (const auto& [stretch, fingerprint] : fingerprints)
        Change("INSERT OR REPLACE INTO fingerprints VALUES(NULL, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
               static_cast<std::int64_t>(stretch.file.nDevice),
               static_cast<std::int64_t>(stretch.file.nInode), stretch.nStart, stretch.nEnd,
               ChannelText(stretch.channels), stretch.file.nSize, stretch.file.nChanged,
               fingerprint.nForm, fingerprint.strContent);
    // The oldest can be made again.
    Change("DELETE FROM fingerprints WHERE id <= (SELECT max(id) FROM fingerprints) - ?",
           kMostFingerprints);
    transaction.commit();
}

} // namespace Tarvane::Server
