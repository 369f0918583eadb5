// The state that one script runs in: Lua's, what the script has used so far, and the bounds that
// stop it.
#pragma once

#include "apps/server/sandbox/LuaSandbox.h"
#include "apps/server/sandbox/ScriptMemory.h"

#include <lua.hpp>
#include <string>
#include <string_view>

namespace Tarvane::Server
{

/// Lua's errors jump over C++ frames without running destructors. Functions here that may raise one
/// say so; their callers hold no object with a destructor.
class CSandboxState
{
public:
    explicit CSandboxState(const SandboxLimits& limits);
    ~CSandboxState();
    CSandboxState(const CSandboxState&) = delete;
    CSandboxState& operator=(const CSandboxState&) = delete;

    const SandboxLimits& Limits() const { return m_limits; }

    /// Lua's state, without libraries, on the bounded allocator. Null when the bound leaves no room
    /// for it.
    lua_State* Lua() const { return m_pLua; }
    static CSandboxState& Of(lua_State* pState);

    /// The script's time begins.
    void StartClock();
    /// Raises when the script has used up its time.
    void CheckTime(lua_State* pState);
    /// Raises when there is no room left. Line ends and NULs come out as spaces.
    void Write(lua_State* pState, std::string_view text);
    /// Raises when there is no room left.
    void EndLine(lua_State* pState);

    /// Calls a function of the server without raising. False: the text of CallError is the reason.
    bool Call(lua_State* pState, const ScriptFunction& function) noexcept;
    const ScriptValue& CallResult() const { return m_callResult; }
    const std::string& CallError() const { return m_strCallError; }
    bool ChangeCalled() const { return m_fChangeCalled; }

    /// Once a bound has been reached the script is to end, whatever it catches.
    bool IsOver() const { return m_bound != Bound::None; }
    /// Lua reports by a status of its own that the allocator has refused.
    void NoteOutOfMemory() { m_bound = Bound::Memory; }
    /// Raises again what the script must not catch.
    int RaiseBound(lua_State* pState) { return Raise(pState, m_bound); }

    const std::string& Output() const { return m_strOutput; }
    /// The error for the bound that was reached.
    std::string BoundText() const;

private:
    enum class Bound
    {
        None,
        Memory,
        Instructions,
        Time,
        Output
    };

    static void* Allocate(void* pState, void* pBlock, std::size_t nOld, std::size_t nNew);
    static void CountInstructions(lua_State* pState, lua_Debug* pDebug);
    void Append(lua_State* pState, char cNext);
    int Raise(lua_State* pState, Bound bound);

    const SandboxLimits m_limits;
    std::int64_t m_nTimeAtStart = 0;
    CScriptMemory m_memory;
    std::size_t m_nMemory = 0;
    std::int64_t m_nInstructions = 0;
    Bound m_bound = Bound::None;
    std::string m_strOutput;
    ScriptValue m_callResult;
    std::string m_strCallError;
    bool m_fChangeCalled = false;
    lua_State* m_pLua;
};

} // namespace Tarvane::Server
