// The statements of CSessionDatabase; only its own sources include this.
#pragma once

#include "apps/server/database/SessionDatabase.h"

#include <SQLiteCpp/VariadicBind.h>

namespace Tarvane::Server
{

/// A statement under way, which is free for the next use when the object goes.
class CSessionDatabase::CQuery
{
public:
    explicit CQuery(SQLite::Statement& statement) : m_statement(statement) {}
    ~CQuery() { m_statement.tryReset(); }
    CQuery(const CQuery&) = delete;
    CQuery& operator=(const CQuery&) = delete;

    bool Next() { return m_statement.executeStep(); }
    /// Of the present row, columns from 0; null is 0 and empty.
    std::int64_t Number(int nColumn) { return m_statement.getColumn(nColumn).getInt64(); }
    double Real(int nColumn) { return m_statement.getColumn(nColumn).getDouble(); }
    std::string Text(int nColumn) { return m_statement.getColumn(nColumn).getString(); }

private:
    SQLite::Statement& m_statement;
};

std::string ChannelText(const std::vector<std::int32_t>& channels);
std::vector<std::int32_t> ChannelsFromText(const std::string& strText);

/// szText is a literal: statements are kept by its address.
template <typename... Values>
CSessionDatabase::CQuery CSessionDatabase::Query(const char* szText, const Values&... values)
{
    std::unique_ptr<SQLite::Statement>& pStatement = m_statements[szText];
    if (pStatement == nullptr)
        pStatement = std::make_unique<SQLite::Statement>(m_database, szText);
    if constexpr (sizeof...(values) > 0)
        SQLite::bind(*pStatement, values...);
    return CQuery(*pStatement);
}

template <typename... Values>
void CSessionDatabase::Change(const char* szText, const Values&... values)
{
    Query(szText, values...).Next();
}

} // namespace Tarvane::Server
