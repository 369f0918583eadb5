#include "apps/server/sandbox/SandboxState.h"

#include <cstring>
#include <ctime>

namespace Tarvane::Server
{

namespace
{

// Few enough that even instructions over the whole of the memory bound are stopped in time.
constexpr int kInstructionsBetweenChecks = 100;

std::int64_t ProcessorMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::int64_t(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
}

std::string ByteText(std::size_t nBytes)
{
    if (nBytes % (1 << 20) == 0)
        return std::to_string(nBytes >> 20) + " MiB";
    return std::to_string(nBytes) + " bytes";
}

} // namespace

std::string ProcessorTimeText(std::int64_t nMilliseconds)
{
    return "the script takes more than " + std::to_string(nMilliseconds) +
           " milliseconds of processor time";
}

CSandboxState::CSandboxState(const SandboxLimits& limits)
    : m_limits(limits), m_pLua(lua_newstate(Allocate, this))
{
    if (m_pLua == nullptr)
        return;
    CSandboxState* pSelf = this;
    std::memcpy(lua_getextraspace(m_pLua), &pSelf, sizeof pSelf);
    lua_sethook(m_pLua, CountInstructions, LUA_MASKCOUNT, kInstructionsBetweenChecks);
}

CSandboxState::~CSandboxState()
{
    if (m_pLua != nullptr)
        lua_close(m_pLua);
}

CSandboxState& CSandboxState::Of(lua_State* pState)
{
    CSandboxState* pSelf = nullptr;
    std::memcpy(&pSelf, lua_getextraspace(pState), sizeof pSelf);
    return *pSelf;
}

void* CSandboxState::Allocate(void* pState, void* pBlock, std::size_t nOld, std::size_t nNew)
{
    auto& self = *static_cast<CSandboxState*>(pState);
    // For a new block nOld tells what it is for, not a size.
    const std::size_t nHeld = pBlock == nullptr ? 0 : nOld;
    if (nNew == 0)
    {
        self.m_memory.Free(pBlock);
        self.m_nMemory -= nHeld;
        return nullptr;
    }
    if (nNew > nHeld && nNew - nHeld > self.m_limits.nMemoryBytes - self.m_nMemory)
        return nullptr;
    void* pNew = self.m_memory.Resize(pBlock, nHeld, nNew);
    if (pNew != nullptr)
        self.m_nMemory += nNew - nHeld;
    return pNew;
}

void CSandboxState::CountInstructions(lua_State* pState, lua_Debug*)
{
    CSandboxState& self = Of(pState);
    self.m_nInstructions += kInstructionsBetweenChecks;
    if (self.m_nInstructions > self.m_limits.nInstructions)
        self.Raise(pState, Bound::Instructions);
    self.CheckTime(pState);
}

void CSandboxState::StartClock()
{
    m_nTimeAtStart = ProcessorMilliseconds();
}

void CSandboxState::CheckTime(lua_State* pState)
{
    if (ProcessorMilliseconds() - m_nTimeAtStart > m_limits.nMilliseconds)
        Raise(pState, Bound::Time);
}

void CSandboxState::Write(lua_State* pState, std::string_view text)
{
    for (char c : text)
        Append(pState, c == '\n' || c == '\r' || c == '\0' ? ' ' : c);
}

void CSandboxState::EndLine(lua_State* pState)
{
    Append(pState, '\n');
}

void CSandboxState::Append(lua_State* pState, char cNext)
{
    if (m_strOutput.size() >= m_limits.nOutputBytes)
        Raise(pState, Bound::Output);
    m_strOutput += cNext;
}

bool CSandboxState::Call(lua_State* pState, const ScriptFunction& function) noexcept
{
    m_fChangeCalled |= function.fChanges;
    try
    {
        m_callResult = function.call(CScriptArguments(pState, lua_gettop(pState)));
        return true;
    }
    catch (const std::exception& error)
    {
        m_strCallError = function.strName + ": " + error.what();
        return false;
    }
}

int CSandboxState::Raise(lua_State* pState, Bound bound)
{
    m_bound = bound;
    // The text is made when the script has ended. Nil takes no memory, which may be what is
    // missing.
    lua_pushnil(pState);
    return lua_error(pState);
}

std::string CSandboxState::BoundText() const
{
    switch (m_bound)
    {
    case Bound::Memory:
        return "the script needs more than " + ByteText(m_limits.nMemoryBytes) + " of memory";
    case Bound::Instructions:
        return "the script runs longer than " + std::to_string(m_limits.nInstructions) +
               " instructions";
    case Bound::Time:
        return ProcessorTimeText(m_limits.nMilliseconds);
    case Bound::Output:
        return "the script prints more than " + ByteText(m_limits.nOutputBytes);
    case Bound::None:
        break;
    }
    return "";
}

} // namespace Tarvane::Server
