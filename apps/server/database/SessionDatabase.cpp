#include "apps/server/database/SessionQuery.h"

#include <cerrno>
#include <cstring>
#include <sqlite3.h>
#include <sys/stat.h>

namespace Tarvane::Server
{

namespace
{

// Another connection's commit takes less; a longer wait is its owner's affair (WhenLocked).
constexpr int kBusyMilliseconds = 200;

bool IsOf(const SQLite::Exception& error, int nCode)
{
    return error.getErrorCode() == nCode;
}

// The flaw that the error tells of, if it does.
std::string FlawOrThrow(const SQLite::Exception& error)
{
    if (IsOf(error, SQLITE_CORRUPT) || IsOf(error, SQLITE_NOTADB))
        return error.what();
    throw error;
}

// The name as a URI that says that nobody writes to the file.
std::string UnchangingUri(const std::filesystem::path& file)
{
    std::string strUri = "file:";
    for (const char c : file.string())
    {
        if (c == '%' || c == '?' || c == '#')
        {
            constexpr const char* szDigits = "0123456789ABCDEF";
            strUri += {'%', szDigits[(c >> 4) & 15], szDigits[c & 15]};
        }
        else
        {
            strUri += c;
        }
    }
    return strUri + "?immutable=1";
}

// A reader of a database with a log makes files beside it. Without a log nobody is at work on it,
// and they are not needed.
std::string NameFor(const std::filesystem::path& file, int nFlags)
{
    struct stat status;
    const bool fHasLog = stat((file.string() + "-wal").c_str(), &status) == 0;
    return (nFlags & SQLite::OPEN_URI) != 0 && !fHasLog ? UnchangingUri(file) : file.string();
}

} // namespace

CSessionDatabase::CSessionDatabase(const std::filesystem::path& file)
    : CSessionDatabase(file, SQLite::OPEN_READWRITE)
{
    RequireSession();
}

CSessionDatabase::CSessionDatabase(const CSession& content)
    : CSessionDatabase(":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
{
    Prepare();
    MakeTables();
    Fill(content);
}

CSessionDatabase::CSessionDatabase(const std::filesystem::path& file, int nFlags)
    : m_database(NameFor(file, nFlags), nFlags, kBusyMilliseconds)
{
}

void CSessionDatabase::Prepare()
{
    // The cache, in KiB, holds what a command looks for among a million regions.
    m_database.exec("PRAGMA synchronous=FULL; PRAGMA foreign_keys=ON; PRAGMA trusted_schema=OFF; "
                    "PRAGMA cell_size_check=ON; PRAGMA cache_size=-16384");
}

void CSessionDatabase::Make(const std::filesystem::path& file, const CSession& content)
{
    CSessionDatabase made(file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    // Whoever makes it syncs it, and throws it away if it does not become whole.
    made.Prepare();
    made.m_database.exec("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF");
    made.MakeTables();
    made.Fill(content);
    made.m_statements.clear();
    made.m_database.exec("PRAGMA journal_mode=WAL");
}

void CSessionDatabase::UseLog(const std::filesystem::path& file)
{
    CSessionDatabase(file, SQLite::OPEN_READWRITE).m_database.exec("PRAGMA journal_mode=WAL");
}

void CSessionDatabase::RemoveLog(const std::filesystem::path& file)
{
    std::filesystem::remove(file.string() + "-wal");
    std::filesystem::remove(file.string() + "-shm");
}

CSession CSessionDatabase::Load(const std::filesystem::path& file)
{
    CSessionDatabase database(file, SQLite::OPEN_READONLY | SQLite::OPEN_URI);
    database.RequireSession();
    CSession content = database.Content();
    if (const auto flaw = content.Flaw())
        throw CSessionFlaw(*flaw);
    return content;
}

void CSessionDatabase::RequireSession()
try
{
    Prepare();
    const auto pragma = [this](const char* szText)
    { return m_database.execAndGet(szText).getInt64(); };
    if (pragma("PRAGMA application_id") != kApplicationId)
        throw CSessionFlaw("this is a database of another program");
    RequireVersion(pragma("PRAGMA user_version"), kVersion);
    ReadCounts();
    if (sqlite3_db_readonly(m_database.getHandle(), "main") == 0)
        MakeFingerprintTable();
}
catch (const SQLite::Exception& error)
{
    if (IsOf(error, SQLITE_NOTADB))
        throw CNoDatabase(error.what());
    // A table that is missing is SQLITE_ERROR.
    if (IsOf(error, SQLITE_CORRUPT) || IsOf(error, SQLITE_ERROR))
        throw CSessionFlaw(error.what());
    throw SQLite::Exception(Reason(error), error.getErrorCode());
}

std::optional<std::string>
CSessionDatabase::Flaw(const std::function<void()>& locked,
                       const std::function<void(const std::string&)>& found)
try
{
    const SQLite::Transaction transaction(m_database, SQLite::TransactionBehavior::IMMEDIATE);
    locked();
    const std::optional<std::string> flaw = FlawOfContent();
    if (flaw)
        found(*flaw);
    return flaw;
}
catch (const SQLite::Exception& error)
{
    return FlawOrThrow(error);
}

std::optional<std::string> CSessionDatabase::FlawOfContent()
try
{
    SQLite::Statement pages(m_database, "PRAGMA quick_check(1)");
    if (pages.executeStep() && pages.getColumn(0).getString() != "ok")
        return pages.getColumn(0).getString();
    SQLite::Statement references(m_database, "PRAGMA foreign_key_check");
    if (references.executeStep())
        return "a row of its " + references.getColumn(0).getString() + " names one of its " +
               references.getColumn(2).getString() + " that is missing";
    return std::nullopt;
}
catch (const SQLite::Exception& error)
{
    return FlawOrThrow(error);
}

void CSessionDatabase::ReadCounts()
{
    CQuery query = Query("SELECT update_count, next_id, link_offset FROM session");
    if (!query.Next())
        throw CSessionFlaw("its counts are missing");
    m_nUpdateCount = query.Number(0);
    m_nNextId = query.Number(1);
    m_dLinkOffset = query.Real(2);
}

void CSessionDatabase::Begin()
{
    m_transaction.emplace(m_database);
    m_fLocked = false;
    m_regionsWithNewAudio.clear();
    m_cursor = {};
    // The first read fixes the state that the command sees.
    ReadCounts();
    m_nCountAtBegin = m_nUpdateCount;
}

void CSessionDatabase::Commit()
{
    if (HasChanged())
        Change("UPDATE session SET update_count = ?, next_id = ?", m_nUpdateCount, m_nNextId);
    m_transaction->commit();
    m_transaction.reset();
    m_nCountAtBegin = m_nUpdateCount;
}

void CSessionDatabase::Rollback()
{
    m_transaction.reset();
    m_nUpdateCount = m_nCountAtBegin;
}

void CSessionDatabase::TakeLock()
{
    while (!m_fLocked)
    {
        try
        {
            Change("UPDATE session SET next_id = next_id");
            m_fLocked = true;
        }
        catch (const SQLite::Exception& error)
        {
            if (error.getExtendedErrorCode() == SQLITE_BUSY_SNAPSHOT)
                throw CSessionConflict("the session has been changed by another command meanwhile");
            if (!IsOf(error, SQLITE_BUSY) || !m_isToTryAgain)
                throw;
            if (!m_isToTryAgain())
                throw CSessionConflict("the session is being changed by another command");
        }
    }
}

std::string CSessionDatabase::Reason(const SQLite::Exception& error) const
{
    std::string strReason = error.what();
    if (const int nError = sqlite3_system_errno(m_database.getHandle()); nError != 0)
        strReason += std::string(": ") + std::strerror(nError);
    return strReason;
}

void CSessionDatabase::CopyTo(const std::filesystem::path& file)
{
    SQLite::Statement copy(m_database, "VACUUM INTO ?");
    copy.bind(1, file.string());
    copy.exec();
}

} // namespace Tarvane::Server
