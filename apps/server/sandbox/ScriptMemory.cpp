#include "apps/server/sandbox/ScriptMemory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>

namespace Tarvane::Server
{

bool CScriptMemory::IsInRoom(const void* pBlock) const
{
    return std::less_equal<const void*>()(m_room, pBlock) &&
           std::less<const void*>()(pBlock, m_room + kRoom);
}

void* CScriptMemory::Take(std::size_t nWanted)
{
    if (nWanted > kRoom - m_nUsed)
        return std::malloc(nWanted);
    constexpr std::size_t kStep = alignof(std::max_align_t);
    void* const pTaken = m_room + m_nUsed;
    m_nUsed = std::min(kRoom, (m_nUsed + nWanted + kStep - 1) / kStep * kStep);
    return pTaken;
}

void* CScriptMemory::Resize(void* pBlock, std::size_t nHeld, std::size_t nWanted)
{
    if (pBlock != nullptr && !IsInRoom(pBlock))
        return std::realloc(pBlock, nWanted);
    if (pBlock != nullptr && nWanted <= nHeld)
        return pBlock;
    void* const pNew = Take(nWanted);
    if (pNew != nullptr && pBlock != nullptr)
        std::memcpy(pNew, pBlock, nHeld);
    return pNew;
}

void CScriptMemory::Free(void* pBlock)
{
    if (!IsInRoom(pBlock))
        std::free(pBlock);
}

} // namespace Tarvane::Server
