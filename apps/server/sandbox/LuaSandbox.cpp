#include "apps/server/sandbox/LuaSandbox.h"

#include "apps/server/sandbox/LuaLibraries.h"
#include "apps/server/sandbox/NumberText.h"
#include "apps/server/sandbox/SandboxState.h"

#include <algorithm>
#include <locale.h>
#include <memory>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

namespace Tarvane::Server
{

namespace
{

constexpr std::size_t kLongestError = 4096;

// Lua reads numbers and compares texts by the locale; scripts mean the same everywhere.
class CPlainLocale
{
public:
    CPlainLocale() : m_before(uselocale(Plain())) {}
    ~CPlainLocale() { uselocale(m_before); }
    CPlainLocale(const CPlainLocale&) = delete;
    CPlainLocale& operator=(const CPlainLocale&) = delete;

private:
    static locale_t Plain()
    {
        static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
        return plain;
    }

    locale_t m_before;
};

struct Job
{
    std::string_view strScript;
    const std::vector<ScriptFunction>& functions;
};

void PushResult(lua_State* pState, const ScriptValue& value)
{
    if (const auto* pFlag = std::get_if<bool>(&value))
        lua_pushboolean(pState, *pFlag);
    else if (const auto* pInteger = std::get_if<std::int64_t>(&value))
        lua_pushinteger(pState, *pInteger);
    else if (const auto* pNumber = std::get_if<double>(&value))
        lua_pushnumber(pState, *pNumber);
    else if (const auto* pText = std::get_if<std::string>(&value))
        lua_pushlstring(pState, pText->data(), pText->size());
}

int CallFunction(lua_State* pState)
{
    CSandboxState& state = CSandboxState::Of(pState);
    state.CheckTime(pState);
    const auto* pFunction =
        static_cast<const ScriptFunction*>(lua_touserdata(pState, lua_upvalueindex(1)));
    if (!state.Call(pState, *pFunction))
    {
        lua_pushlstring(pState, state.CallError().data(), state.CallError().size());
        return lua_error(pState);
    }
    PushResult(pState, state.CallResult());
    return std::holds_alternative<std::monostate>(state.CallResult()) ? 0 : 1;
}

int OpenLibraries(lua_State* pState)
{
    lua_gc(pState, LUA_GCSTOP);
    OpenSafeLibraries(pState);
    lua_gc(pState, LUA_GCRESTART);
    return 0;
}

int RunJob(lua_State* pState)
{
    const auto* pJob = static_cast<const Job*>(lua_touserdata(pState, 1));
    for (const ScriptFunction& function : pJob->functions)
    {
        lua_pushlightuserdata(pState, const_cast<ScriptFunction*>(&function));
        lua_pushcclosure(pState, CallFunction, 1);
        lua_setglobal(pState, function.strName.c_str());
    }
    const int nStatus =
        luaL_loadbufferx(pState, pJob->strScript.data(), pJob->strScript.size(), "=script", "t");
    if (nStatus != LUA_OK)
        return lua_error(pState);
    lua_call(pState, 0, 0);
    return 0;
}

// The text of the error value on top of the stack. Nothing is converted in place: that could raise
// where nothing catches it.
std::string ErrorText(lua_State* pState)
{
    std::string strText;
    if (lua_type(pState, -1) == LUA_TSTRING)
    {
        std::size_t nLength = 0;
        const char* pText = lua_tolstring(pState, -1, &nLength);
        strText.assign(pText, nLength);
    }
    else if (lua_isinteger(pState, -1))
    {
        strText = std::to_string(lua_tointeger(pState, -1));
    }
    else if (lua_type(pState, -1) == LUA_TNUMBER)
    {
        NumberBuffer buffer;
        strText = NumberText(lua_tonumber(pState, -1), buffer);
    }
    // Clients read up to a NUL.
    std::replace(strText.begin(), strText.end(), '\0', ' ');
    if (strText.find_first_not_of(' ') == std::string::npos)
        strText = std::string("the script failed without words; its error is a ") +
                  luaL_typename(pState, -1);
    if (strText.size() > kLongestError)
    {
        std::size_t nEnd = kLongestError;
        // No character has more than three bytes behind its first; what has more is no text.
        for (int n = 0; n < 3 && (strText[nEnd] & 0xc0) == 0x80; n++)
            nEnd--;
        strText.resize(nEnd);
    }
    return strText;
}

std::unique_ptr<CSandboxState> FreshState(const SandboxLimits& limits)
{
    auto pState = std::make_unique<CSandboxState>(limits);
    int nStatus = LUA_ERRMEM;
    if (lua_State* const pLua = pState->Lua())
    {
        lua_pushcfunction(pLua, OpenLibraries);
        nStatus = lua_pcall(pLua, 0, 0, 0);
    }
    // Nothing else can fail in there.
    if (nStatus != LUA_OK)
        pState->NoteOutOfMemory();
    return pState;
}

std::string RunBounded(Job& job, CSandboxState& state)
{
    if (state.IsOver())
        return state.BoundText();
    lua_State* const pLua = state.Lua();
    lua_pushcfunction(pLua, RunJob);
    lua_pushlightuserdata(pLua, &job);
    const int nStatus = lua_pcall(pLua, 1, 0, 0);
    if (nStatus == LUA_ERRMEM)
        state.NoteOutOfMemory();
    if (state.IsOver())
        return state.BoundText();
    return nStatus == LUA_OK ? std::string() : ErrorText(pLua);
}

} // namespace

CLuaSandbox::CLuaSandbox(const SandboxLimits& limits) : m_limits(limits) {}

CLuaSandbox::~CLuaSandbox() = default;

void CLuaSandbox::GetReady()
{
    m_pSpent.reset();
    if (!m_pFresh)
        m_pFresh = FreshState(m_limits);
}

ScriptResult CLuaSandbox::Run(std::string_view strScript,
                              const std::vector<ScriptFunction>& functions)
{
    if (strScript.size() > m_limits.nScriptBytes)
        return {"", "the script is longer than " + std::to_string(m_limits.nScriptBytes) + " bytes",
                false};
    GetReady();
    m_pSpent = std::move(m_pFresh);
    m_pSpent->StartClock();
    const CPlainLocale plain;
    Job job{strScript, functions};
    std::string strError = RunBounded(job, *m_pSpent);
    return {m_pSpent->Output(), std::move(strError), m_pSpent->ChangeCalled()};
}

} // namespace Tarvane::Server
