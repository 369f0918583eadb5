#include "apps/server/ScriptArguments.h"

#include <cmath>
#include <lua.hpp>

// Only calls that raise no Lua error stand here: one would jump over the caller's C++ objects.

namespace Tarvane::Server
{

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
    int fWhole = 0;
    if (nPlace <= m_nCount && lua_type(m_pState, nPlace) == LUA_TNUMBER)
    {
        const std::int64_t nValue = lua_tointegerx(m_pState, nPlace, &fWhole);
        if (fWhole)
            return nValue;
    }
    Fail(nPlace, "a whole number");
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

std::vector<std::int64_t> CScriptArguments::Integers(int nPlace, std::size_t nMost) const
{
    if (nPlace > m_nCount || !lua_istable(m_pState, nPlace))
        Fail(nPlace, "a table");
    const std::size_t nLength = lua_rawlen(m_pState, nPlace);
    if (nLength > nMost)
        throw CScriptError("argument " + std::to_string(nPlace) + " holds more than " +
                           std::to_string(nMost) + " numbers");
    std::vector<std::int64_t> numbers;
    for (std::size_t nEntry = 1; nEntry <= nLength; nEntry++)
    {
        int fWhole = 0;
        lua_rawgeti(m_pState, nPlace, static_cast<lua_Integer>(nEntry));
        const bool fNumber = lua_type(m_pState, -1) == LUA_TNUMBER;
        const std::int64_t nValue = fNumber ? lua_tointegerx(m_pState, -1, &fWhole) : 0;
        lua_pop(m_pState, 1);
        if (!fWhole)
            Fail(nPlace, "a table of whole numbers");
        numbers.push_back(nValue);
    }
    return numbers;
}

void CScriptArguments::Fail(int nPlace, const char* szWanted) const
{
    const char* szType =
        nPlace <= m_nCount ? lua_typename(m_pState, lua_type(m_pState, nPlace)) : "missing";
    throw CScriptError("argument " + std::to_string(nPlace) + " should be " + szWanted +
                       ", and is " + (nPlace <= m_nCount ? "a " : "") + szType);
}

} // namespace Tarvane::Server
