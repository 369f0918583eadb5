// The memory of one script's state.
#pragma once

#include <cstddef>

namespace Tarvane::Server
{

/// A state and a short script take several hundred small blocks, which are given back all at once:
/// they lie in one room, in which nothing is used twice. What no longer fits comes from the heap.
class CScriptMemory
{
public:
    CScriptMemory() = default;
    CScriptMemory(const CScriptMemory&) = delete;
    CScriptMemory& operator=(const CScriptMemory&) = delete;

    /// As std::realloc, for more than no bytes. Null, and the block as it was, when there is no
    /// memory.
    void* Resize(void* pBlock, std::size_t nHeld, std::size_t nWanted);
    /// Whatever lies on the heap is the owner's to free.
    void Free(void* pBlock);

private:
    static constexpr std::size_t kRoom = 64 << 10;

    bool IsInRoom(const void* pBlock) const;
    void* Take(std::size_t nWanted);

    std::size_t m_nUsed = 0;
    alignas(std::max_align_t) std::byte m_room[kRoom];
};

} // namespace Tarvane::Server
