// What a script hands to a function of the server, and what it gets back.
#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

struct lua_State;

namespace Tarvane::Server
{

/// A refusal. The text is for the user of the client: it says what was wrong, without the
/// function's name.
class CScriptError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// monostate is nothing at all: the function returns no value.
using ScriptValue = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

/// The named whole numbers of a table.
using ScriptRecord = std::map<std::string, std::int64_t>;

/// The arguments of one call, by place from 1. Each reading operation throws CScriptError when the
/// argument is missing or of another type. Valid during the call only.
class CScriptArguments
{
public:
    CScriptArguments(lua_State* pState, int nCount) : m_pState(pState), m_nCount(nCount) {}

    int Count() const { return m_nCount; }
    bool Has(int nPlace) const;

    bool Boolean(int nPlace) const;
    /// Whole numbers, and floats with a whole value. Texts are no numbers here.
    std::int64_t Integer(int nPlace) const;
    /// Finite.
    double Number(int nPlace) const;
    /// Without NUL bytes.
    std::string String(int nPlace) const;
    /// A table's whole numbers at 1, 2, 3, ... At most nMost of them.
    std::vector<std::int64_t> Integers(int nPlace, std::size_t nMost) const;
    /// A table's tables of named whole numbers at 1, 2, 3, ... At most nMost of them. What else is
    /// in them is left out.
    std::vector<ScriptRecord> Records(int nPlace, std::size_t nMost) const;

private:
    /// The length of a table argument.
    std::size_t TableLength(int nPlace, std::size_t nMost) const;
    /// Throws "argument 2 should be a number, and is a string".
    [[noreturn]] void Fail(int nPlace, const char* szWanted) const;

    lua_State* m_pState;
    int m_nCount;
};

} // namespace Tarvane::Server
