// The part of Lua's own libraries that scripts may use.
#pragma once

struct lua_State;

namespace Tarvane::Server
{

/// Puts them into the state's globals. Raises Lua errors: call in protected mode.
void OpenSafeLibraries(lua_State* pState);

} // namespace Tarvane::Server
