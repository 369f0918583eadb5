// The session of a server, in its database: what commands ask of it and change.
//
// The database is an SQLite file with a write-ahead log. A command is one transaction; when Commit
// returns, what it changed is on disk. Ids are those of Session.h, unique in the session; what is
// listed stands in the order in which it was added. Nothing of it is held in memory.
//
// Every operation throws SQLite::Exception when the file cannot be read or written (Reason puts it
// into words), and those that change CSessionConflict besides.
#pragma once

#include "apps/server/database/Fingerprint.h"
#include "apps/server/session/Session.h"
#include "apps/server/session/SessionFlaw.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Tarvane::Server
{

/// Another command has changed the session since this one began, or is about to. Nothing of this
/// one is kept; it may be run again.
class CSessionConflict : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The file is no database at all; it may be of an earlier form.
class CNoDatabase : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// One connection. Any one thread. A connection must not cross a fork, nor may one be open in a
/// process that forks another which opens the same file.
class CSessionDatabase
{
public:
    /// Opens the database in the file. Throws CNoDatabase, CSessionFlaw for one that holds no
    /// session and CSessionTooNew. Only what every command needs is looked at; Flaw looks at all.
    explicit CSessionDatabase(const std::filesystem::path& file);
    /// A new one in memory with this content.
    explicit CSessionDatabase(const CSession& content);
    CSessionDatabase(const CSessionDatabase&) = delete;
    CSessionDatabase& operator=(const CSessionDatabase&) = delete;

    /// Makes a new database of this content in the file, which is not there yet, nor are its
    /// "-wal" and "-shm". On return it is closed, whole, and not yet on disk.
    static void Make(const std::filesystem::path& file, const CSession& content);
    /// Gives a copy (CopyTo) the write-ahead log that every session has.
    static void UseLog(const std::filesystem::path& file);
    /// Takes away what a session that was under this name has left beside it, before another gets
    /// the name: it would be taken for that one's.
    static void RemoveLog(const std::filesystem::path& file);
    /// All that is in the file, which is not touched. Throws as the constructor does, and
    /// CSessionFlaw for what is not sound.
    static CSession Load(const std::filesystem::path& file);

    /// What is wrong with the pages, rows and references of the file; takes time that grows with
    /// it. While it looks nobody can change the session; locked is called when that is so, and
    /// found, with the flaw, while it still is.
    std::optional<std::string> Flaw(
        const std::function<void()>& locked = [] {},
        const std::function<void(const std::string&)>& found = [](const std::string&) {});

    /// A command sees the session as it is at Begin. What it changes is there for others after
    /// Commit, or never. Reads outside of a command see the latest state.
    void Begin();
    void Commit();
    void Rollback();
    bool HasChanged() const { return m_nUpdateCount != m_nCountAtBegin; }
    /// What this command has added or given other audio, and may have deleted since.
    const std::set<std::int64_t>& RegionsWithNewAudio() const { return m_regionsWithNewAudio; }
    /// Called when another connection is in the middle of a change: true to try again.
    void WhenLocked(std::function<bool()> isToTryAgain)
    {
        m_isToTryAgain = std::move(isToTryAgain);
    }
    std::string Reason(const SQLite::Exception& error) const;
    /// Copies the session to a new file, also when its own file is no longer there. Not in a
    /// command.
    void CopyTo(const std::filesystem::path& file);

    /// Within a command as of its Begin and its own changes; outside as of the last one.
    std::int64_t UpdateCount() const { return m_nUpdateCount; }
    double LinkOffset() const { return m_dLinkOffset; }
    /// The id that what is added next gets.
    std::int64_t NextId() const { return m_nNextId; }

    CSession Content();

    std::int64_t TrackCount(DocumentKind kind);
    /// Places count from 0. Empty when there is none.
    std::optional<Track> TrackAt(DocumentKind kind, std::int64_t nPlace);
    std::optional<Track> FindTrack(DocumentKind kind, std::int64_t nTrackId);
    std::vector<Track> Tracks(DocumentKind kind);

    std::int64_t RegionCount(std::int64_t nTrackId);
    /// The id of the region at a place on its track, kNullId when there is none. Walking up, or
    /// asking for one place again and again, takes no longer on a track of many regions.
    std::int64_t RegionAt(std::int64_t nTrackId, std::int64_t nPlace);
    std::optional<Region> FindRegion(DocumentKind kind, std::int64_t nRegionId);
    std::optional<Region> FirstRegion(DocumentKind kind);
    /// The one with the least id above this one, of any document.
    std::optional<Region> NextRegion(std::int64_t nRegionId);
    /// The first region of the track that holds any of the timeline's stretch.
    std::optional<Region> FirstRegionIn(std::int64_t nTrackId, std::int64_t nStart,
                                        std::int64_t nEnd);
    /// Those of a track that begin within a stretch of the timeline, both ends included.
    std::vector<Region> RegionsThatBegin(std::int64_t nTrackId, std::int64_t nFirst,
                                         std::int64_t nLast);

    std::int64_t MarkerAreaCount(std::int64_t nTrackId);
    std::int64_t MarkerAreaAt(std::int64_t nTrackId, std::int64_t nPlace);
    bool HasMarkerArea(DocumentKind kind, std::int64_t nAreaId);

    std::int64_t LastProcessId(DocumentKind kind);
    /// What the process made, kNullId for nothing; empty when there is no such process.
    std::optional<std::int64_t> ProcessRegion(DocumentKind kind, std::int64_t nProcessId);

    std::int64_t SelectedRegionId(DocumentKind kind);

    // Fingerprints are no part of what the session is: they are kept beside it, count no update and
    // may be missing.

    /// What is kept for the stretch of this very state of a file.
    std::optional<Fingerprint> FindFingerprint(const AudioStretch& stretch);
    /// Has it kept by the next SaveFingerprints.
    void NoteFingerprint(AudioStretch stretch, Fingerprint fingerprint);
    bool HasNotedFingerprints() const { return !m_fingerprints.empty(); }
    /// Not in a command. What cannot be saved is dropped.
    void SaveFingerprints();

    // The changes. Each counts one update, but for one that changes nothing. They stand in a
    // command.

    /// Returns the new track's id.
    std::int64_t AddTrack(DocumentKind kind, const std::string& strName);
    /// The track is one of the document; a name is valid.
    void RenameTrack(std::int64_t nTrackId, const std::string& strName);
    /// To a place in the list, from 0, at most its last; the tracks from there on move up.
    void MoveTrack(DocumentKind kind, std::int64_t nTrackId, std::int64_t nPlace);
    /// Regions and marker areas of the track go with it, and so do the processes that it takes part
    /// in. Each region counts as a change of its own.
    void DeleteTrack(DocumentKind kind, std::int64_t nTrackId);
    /// Gives the region the next id and returns it. It has no flaw (RegionFlaw), and its track is
    /// there.
    std::int64_t AddRegion(const Region& region);
    void SelectRegion(DocumentKind kind, std::int64_t nRegionId);
    /// Lets the region play all of another file, without moving it on the timeline or changing its
    /// length.
    void ReplaceAudio(const Region& region, const std::string& strPath);
    /// Whatever named the region names none from then on.
    void DeleteRegion(std::int64_t nRegionId);
    /// Give the new thing the next id and return it. Its tracks are the document's.
    std::int64_t AddMarkerArea(const MarkerArea& area);
    std::int64_t AddProcess(DocumentKind kind, const Process& process);
    void DeleteMarkerArea(std::int64_t nAreaId);
    void MoveDisplay(DocumentKind kind, double dPosition);

private:
    class CQuery;

    /// Of the file, at its head: what program it belongs to, and the version of its tables. 1 and 2
    /// were a text and a binary session.
    static constexpr std::int64_t kApplicationId = 'TkNe';
    static constexpr std::int64_t kVersion = 3;

    /// Some 200 bytes each.
    static constexpr std::int64_t kMostFingerprints = 1'000'000;

    /// A place on a track and the id of what stands there, for the next question.
    struct Cursor
    {
        std::int64_t nTrackId = kNullId;
        std::int64_t nPlace = 0;
        std::int64_t nId = kNullId;
    };

    CSessionDatabase(const std::filesystem::path& file, int nFlags);
    void Prepare();
    void MakeTables();
    void MakeFingerprintTable();
    void Fill(const CSession& content);
    void FillDocument(const Document& document, DocumentKind kind);
    void InsertRegion(const Region& region);
    void InsertProcess(DocumentKind kind, const Process& process);
    void RequireSession();
    std::optional<std::string> FlawOfContent();
    void ReadCounts();
    /// The first step of every change.
    void TakeLock();
    Document ContentOf(DocumentKind kind);
    void ReadStretches(Process& process);
    /// Of the query's present row, all columns of the table.
    static Region ReadRegion(CQuery& query);
    static std::optional<Region> OneRegion(CQuery query);
    /// Of a query's first column; 0 without rows.
    static std::int64_t Number(CQuery query);

    template <typename... Values> CQuery Query(const char* szText, const Values&... values);
    template <typename... Values> void Change(const char* szText, const Values&... values);

    SQLite::Database m_database;
    std::unordered_map<const char*, std::unique_ptr<SQLite::Statement>> m_statements; ///< by text
    std::optional<SQLite::Transaction> m_transaction;
    std::function<bool()> m_isToTryAgain;
    bool m_fLocked = false;
    double m_dLinkOffset = 0.0;
    std::int64_t m_nUpdateCount = 0;
    std::int64_t m_nCountAtBegin = 0;
    std::int64_t m_nNextId = 1;
    std::set<std::int64_t> m_regionsWithNewAudio;
    std::vector<std::pair<AudioStretch, Fingerprint>> m_fingerprints; ///< not kept yet
    Cursor m_cursor;
};

} // namespace Tarvane::Server
