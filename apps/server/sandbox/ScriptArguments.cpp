#include "apps/server/sandbox/ScriptArguments.h"

#include <cmath>
#include <lua.hpp>
#include <optional>

// Only calls that raise no Lua error stand here: one would jump over the caller's C++ objects.

namespace Tarvane::Server
{

namespace
{

std::optional<std::int64_t> WholeNumber(lua_State* pState, int nPlace)
{
    int fWhole = 0;
    if (lua_type(pState, nPlace) != LUA_TNUMBER)
        return std::nullopt;
    const std::int64_t nValue = lua_tointegerx(pState, nPlace, &fWhole);
    return fWhole ? std::optional<std::int64_t>(nValue) : std::nullopt;
}

// Of the table on top of the stack, which stays there.
ScriptRecord RecordOnTop(lua_State* pState)
{
    ScriptRecord record;
    lua_pushnil(pState);
    while (lua_next(pState, -2) != 0)
    {
        const std::optional<std::int64_t> number = WholeNumber(pState, -1);
        lua_pop(pState, 1);
        // A number as a key would be turned into a string in place, which can fail.
        if (number && lua_type(pState, -1) == LUA_TSTRING)
            record[lua_tostring(pState, -1)] = *number;
    }
    return record;
}

} // namespace

bool CScriptArguments::Has(int nPlace) const
{
    return nPlace <= m_nCount && !lua_isnil(m_pState, nPlace);
}

bool CScriptArguments::Boolean(int nPlace) const
{
    if (nPlace > m_nCount || !lua_isboolean(m_pState, nPlace))
        Fail(nPlace, "a boolean");
    return lua_toboolean(m_pState, nPlace) != 0;
}

std::int64_t CScriptArguments::Integer(int nPlace) const
{
    const auto number =
        nPlace <= m_nCount ? WholeNumber(m_pState, nPlace) : std::optional<std::int64_t>();
    if (!number)
        Fail(nPlace, "a whole number");
    return *number;
}

double CScriptArguments::Number(int nPlace) const
{
    if (nPlace > m_nCount || lua_type(m_pState, nPlace) != LUA_TNUMBER)
        Fail(nPlace, "a number");
    const double dValue = lua_tonumber(m_pState, nPlace);
    if (!std::isfinite(dValue))
        Fail(nPlace, "a finite number");
    return dValue;
}

std::string CScriptArguments::String(int nPlace) const
{
    // A number would be turned into a string in place, which can fail.
    if (nPlace > m_nCount || lua_type(m_pState, nPlace) != LUA_TSTRING)
        Fail(nPlace, "a string");
    std::size_t nLength = 0;
    const char* pText = lua_tolstring(m_pState, nPlace, &nLength);
    std::string strText(pText, nLength);
    if (strText.find('\0') != std::string::npos)
        throw CScriptError("argument " + std::to_string(nPlace) + " contains a NUL byte");
    return strText;
}

std::size_t CScriptArguments::TableLength(int nPlace, std::size_t nMost) const
{
    if (nPlace > m_nCount || !lua_istable(m_pState, nPlace))
        Fail(nPlace, "a table");
    const std::size_t nLength = lua_rawlen(m_pState, nPlace);
    if (nLength > nMost)
        throw CScriptError("argument " + std::to_string(nPlace) + " holds more than " +
                           std::to_string(nMost) + " entries");
    return nLength;
}

std::vector<std::int64_t> CScriptArguments::Integers(int nPlace, std::size_t nMost) const
{
    const std::size_t nLength = TableLength(nPlace, nMost);
    std::vector<std::int64_t> numbers;
    for (std::size_t nEntry = 1; nEntry <= nLength; nEntry++)
    {
        lua_rawgeti(m_pState, nPlace, static_cast<lua_Integer>(nEntry));
        const std::optional<std::int64_t> number = WholeNumber(m_pState, -1);
        lua_pop(m_pState, 1);
        if (!number)
            Fail(nPlace, "a table of whole numbers");
        numbers.push_back(*number);
    }
    return numbers;
}

std::vector<ScriptRecord> CScriptArguments::Records(int nPlace, std::size_t nMost) const
{
    const std::size_t nLength = TableLength(nPlace, nMost);
    std::vector<ScriptRecord> records;
    for (std::size_t nEntry = 1; nEntry <= nLength; nEntry++)
    {
        lua_rawgeti(m_pState, nPlace, static_cast<lua_Integer>(nEntry));
        if (!lua_istable(m_pState, -1))
        {
            lua_pop(m_pState, 1);
            Fail(nPlace, "a table of tables");
        }
        records.push_back(RecordOnTop(m_pState));
        lua_pop(m_pState, 1);
    }
    return records;
}

void CScriptArguments::Fail(int nPlace, const char* szWanted) const
{
    const char* szType =
        nPlace <= m_nCount ? lua_typename(m_pState, lua_type(m_pState, nPlace)) : "missing";
    throw CScriptError("argument " + std::to_string(nPlace) + " should be " + szWanted +
                       ", and is " + (nPlace <= m_nCount ? "a " : "") + szType);
}

} // namespace Tarvane::Server
