#include "apps/server/sandbox/LuaLibraries.h"

#include "apps/server/sandbox/NumberText.h"
#include "apps/server/sandbox/PatternCost.h"
#include "apps/server/sandbox/SandboxState.h"

#include <algorithm>
#include <cmath>

// Lua errors jump out of most functions here: no object with a destructor may live in them.

namespace Tarvane::Server
{

namespace
{

// Left out: what loads code or files, and setmetatable, whose __gc functions would run where no
// bound counts.
constexpr const char* kBaseFunctions[] = {"assert",   "error",  "ipairs",  "next",   "pairs",
                                          "rawequal", "rawget", "rawlen",  "rawset", "select",
                                          "tonumber", "type",   "_VERSION"};

// Pushes the text of a value as print and tostring write it.
void PushText(lua_State* pState, int nPlace)
{
    if (lua_type(pState, nPlace) == LUA_TNUMBER && !lua_isinteger(pState, nPlace))
    {
        NumberBuffer buffer;
        const std::string_view text = NumberText(lua_tonumber(pState, nPlace), buffer);
        lua_pushlstring(pState, text.data(), text.size());
        return;
    }
    luaL_tolstring(pState, nPlace, nullptr);
}

int ToString(lua_State* pState)
{
    luaL_checkany(pState, 1);
    PushText(pState, 1);
    return 1;
}

int Print(lua_State* pState)
{
    CSandboxState& state = CSandboxState::Of(pState);
    const int nCount = lua_gettop(pState);
    for (int nPlace = 1; nPlace <= nCount; nPlace++)
    {
        if (nPlace > 1)
            state.Write(pState, "\t");
        PushText(pState, nPlace);
        std::size_t nLength = 0;
        const char* pText = lua_tolstring(pState, -1, &nLength);
        state.Write(pState, {pText, nLength});
        lua_pop(pState, 1);
    }
    state.EndLine(pState);
    return 0;
}

// pcall, but for the bounds, which are not a script's to catch.
int ProtectedCall(lua_State* pState)
{
    luaL_checkany(pState, 1);
    CSandboxState& state = CSandboxState::Of(pState);
    const int nStatus = lua_pcall(pState, lua_gettop(pState) - 1, LUA_MULTRET, 0);
    if (nStatus == LUA_ERRMEM)
        state.NoteOutOfMemory();
    if (state.IsOver())
        return state.RaiseBound(pState);
    lua_pushboolean(pState, nStatus == LUA_OK);
    lua_insert(pState, 1);
    return lua_gettop(pState);
}

double TextLength(lua_State* pState, int nPlace)
{
    return lua_isstring(pState, nPlace) ? static_cast<double>(lua_rawlen(pState, nPlace)) : 0.0;
}

double MatchCost(lua_State* pState, bool fAnchors)
{
    if (!lua_isstring(pState, 1) || !lua_isstring(pState, 2))
        return 0.0;
    std::size_t nTextBytes = 0;
    std::size_t nPatternBytes = 0;
    lua_tolstring(pState, 1, &nTextBytes);
    const char* pPattern = lua_tolstring(pState, 2, &nPatternBytes);
    return PatternCost({pPattern, nPatternBytes}, nTextBytes, fAnchors);
}

double AnchoredMatchCost(lua_State* pState)
{
    return MatchCost(pState, true);
}

double FindCost(lua_State* pState)
{
    if (lua_toboolean(pState, 4))
        return (TextLength(pState, 1) + 1) * (TextLength(pState, 2) + 1);
    return MatchCost(pState, true);
}

// "^" is no anchor for gmatch.
double EachMatchCost(lua_State* pState)
{
    return MatchCost(pState, false);
}

// Each match can write a replacement, which can be long and yet come to nothing.
double ReplaceCost(lua_State* pState)
{
    return MatchCost(pState, true) + (TextLength(pState, 1) + 1) * (TextLength(pState, 3) + 1);
}

// The library loops over repetitions of an empty text too.
double RepeatCost(lua_State* pState)
{
    return lua_tonumber(pState, 2) * (TextLength(pState, 1) + TextLength(pState, 3) + 1);
}

double MoveCost(lua_State* pState)
{
    return lua_tonumber(pState, 3) - lua_tonumber(pState, 2);
}

// Comparisons of n entries, each as long as the longest text among them.
double SortCost(lua_State* pState)
{
    if (!lua_istable(pState, 1))
        return 0.0;
    const auto nEntries = static_cast<lua_Integer>(lua_rawlen(pState, 1));
    double dLongest = 0.0;
    for (lua_Integer nEntry = 1; nEntry <= nEntries; nEntry++)
    {
        if (lua_rawgeti(pState, 1, nEntry) == LUA_TSTRING)
            dLongest = std::max(dLongest, static_cast<double>(lua_rawlen(pState, -1)));
        lua_pop(pState, 1);
    }
    const double dEntries = static_cast<double>(nEntries);
    return dEntries * std::log2(dEntries + 1) * (dLongest + 1);
}

// A library function that can run long inside one instruction, and what a call of it can cost.
struct Guard
{
    const char* szLibrary;
    const char* szName;
    double (*cost)(lua_State* pState);
};

constexpr Guard kGuards[] = {
    {LUA_STRLIBNAME, "find", FindCost},        {LUA_STRLIBNAME, "match", AnchoredMatchCost},
    {LUA_STRLIBNAME, "gmatch", EachMatchCost}, {LUA_STRLIBNAME, "gsub", ReplaceCost},
    {LUA_STRLIBNAME, "rep", RepeatCost},       {LUA_TABLIBNAME, "move", MoveCost},
    {LUA_TABLIBNAME, "sort", SortCost},
};

int CallGuarded(lua_State* pState)
{
    const auto* pGuard = static_cast<const Guard*>(lua_touserdata(pState, lua_upvalueindex(1)));
    CSandboxState& state = CSandboxState::Of(pState);
    state.CheckTime(pState);
    if (pGuard->cost(pState) > state.Limits().dCallSteps)
        return luaL_error(pState,
                          "%s.%s could take more than %I steps here: use a simpler pattern or "
                          "fewer data",
                          pGuard->szLibrary, pGuard->szName,
                          static_cast<LUAI_UACINT>(state.Limits().dCallSteps));
    return lua_tocfunction(pState, lua_upvalueindex(2))(pState);
}

void OpenBase(lua_State* pState)
{
    // The library fills the globals themselves; what is not wanted goes again.
    luaL_requiref(pState, LUA_GNAME, luaopen_base, 1);
    lua_createtable(pState, 0, 16);
    for (const char* szName : kBaseFunctions)
    {
        lua_getfield(pState, -2, szName);
        lua_setfield(pState, -2, szName);
    }
    lua_pushcfunction(pState, Print);
    lua_setfield(pState, -2, "print");
    lua_pushcfunction(pState, ProtectedCall);
    lua_setfield(pState, -2, "pcall");
    lua_pushcfunction(pState, ToString);
    lua_setfield(pState, -2, "tostring");
    lua_pushvalue(pState, -1);
    lua_setfield(pState, -2, LUA_GNAME);
    lua_rawseti(pState, LUA_REGISTRYINDEX, LUA_RIDX_GLOBALS);
    lua_pop(pState, 1);
}

void OpenLibrary(lua_State* pState, const char* szName, lua_CFunction open)
{
    luaL_requiref(pState, szName, open, 1);
    for (const Guard& guard : kGuards)
    {
        lua_getfield(pState, -1, guard.szName);
        const bool fOurs = std::string_view(guard.szLibrary) == szName;
        lua_CFunction function = lua_tocfunction(pState, -1);
        lua_pop(pState, 1);
        if (!fOurs)
            continue;
        lua_pushlightuserdata(pState, const_cast<Guard*>(&guard));
        lua_pushcfunction(pState, function);
        lua_pushcclosure(pState, CallGuarded, 2);
        lua_setfield(pState, -2, guard.szName);
    }
    lua_pop(pState, 1);
}

} // namespace

void OpenSafeLibraries(lua_State* pState)
{
    OpenBase(pState);
    OpenLibrary(pState, LUA_STRLIBNAME, luaopen_string);
    OpenLibrary(pState, LUA_TABLIBNAME, luaopen_table);
    OpenLibrary(pState, LUA_MATHLIBNAME, luaopen_math);

    // Bytecode neither comes in nor goes out.
    lua_getglobal(pState, LUA_STRLIBNAME);
    lua_pushnil(pState);
    lua_setfield(pState, -2, "dump");
    lua_pop(pState, 1);
}

} // namespace Tarvane::Server
