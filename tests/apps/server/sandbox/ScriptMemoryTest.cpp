#include "apps/server/sandbox/ScriptMemory.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

using Tarvane::Server::CScriptMemory;

namespace
{

constexpr std::size_t kMoreThanTheRoom = 1 << 20;

struct Block
{
    unsigned char* pBytes = nullptr;
    std::size_t nSize = 0;
    int nMark = 0;

    bool IsWhole() const
    {
        for (std::size_t n = 0; n < nSize; n++)
        {
            if (pBytes[n] != nMark)
                return false;
        }
        return true;
    }
};

Block Take(CScriptMemory& memory, std::size_t nSize, int nMark)
{
    auto* const pBytes = static_cast<unsigned char*>(memory.Resize(nullptr, 0, nSize));
    std::memset(pBytes, nMark, nSize);
    return {pBytes, nSize, nMark};
}

} // namespace

TEST(ScriptMemory, BlocksAreApartAndAlignedInTheRoomAndBeyondIt)
{
    CScriptMemory memory;
    std::vector<Block> blocks;
    std::size_t nTaken = 0;
    for (int n = 1; nTaken < kMoreThanTheRoom; n++)
    {
        blocks.push_back(Take(memory, 1 + n * 37 % 900, n % 251));
        nTaken += blocks.back().nSize;
    }
    for (const Block& block : blocks)
    {
        EXPECT_TRUE(block.IsWhole());
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.pBytes) % alignof(std::max_align_t), 0U);
        memory.Free(block.pBytes);
    }
}

TEST(ScriptMemory, ABlockKeepsWhatItHoldsWhileItGrowsAndShrinks)
{
    CScriptMemory memory;
    Block block = Take(memory, 3, 7);
    const Block other = Take(memory, 100, 9);
    while (block.nSize < kMoreThanTheRoom)
    {
        const std::size_t nWanted = block.nSize * 2;
        block.pBytes =
            static_cast<unsigned char*>(memory.Resize(block.pBytes, block.nSize, nWanted));
        ASSERT_TRUE(block.IsWhole()) << nWanted;
        std::memset(block.pBytes, block.nMark, nWanted);
        block.nSize = nWanted;
    }
    while (block.nSize > 1)
    {
        const std::size_t nWanted = block.nSize / 2;
        block.pBytes =
            static_cast<unsigned char*>(memory.Resize(block.pBytes, block.nSize, nWanted));
        block.nSize = nWanted;
        ASSERT_TRUE(block.IsWhole()) << nWanted;
    }
    EXPECT_TRUE(other.IsWhole());
    memory.Free(block.pBytes);
    memory.Free(other.pBytes);
    memory.Free(nullptr);
}
