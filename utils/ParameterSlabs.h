#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

/// Memory for what a load or a copy makes. A large tree is millions of small objects that are made
/// in one go and mostly die in one go: they are cut from slabs, in the order in which they are
/// made, and a slab is freed with the last piece of it.
///
/// A piece outlives the object that it was taken from, and finds its slab by its own address. A
/// slab counts its pieces without a lock: one tree belongs to one thread at a time.
class CParameterSlabs
{
public:
    /// More does not come from a slab.
    static constexpr std::size_t kMostAtOnce = 4096;

    CParameterSlabs() = default;
    CParameterSlabs(const CParameterSlabs&) = delete;
    CParameterSlabs& operator=(const CParameterSlabs&) = delete;
    ~CParameterSlabs() { LeaveSlab(); }

    /// nSize: a multiple of 8, at most kMostAtOnce. The piece is aligned to 8 bytes.
    void* Take(std::size_t nSize)
    {
        if (nSize > m_nLeft)
            NextSlab();
        m_nLeft -= nSize;
        ++m_pSlab->nPieces;
        return std::exchange(m_pFree, m_pFree + nSize);
    }

    /// A piece that lies 8 bytes behind a multiple of 16, where no piece of the heap lies.
    void* TakeBesideSixteen(std::size_t nSize)
    {
        if (reinterpret_cast<std::uintptr_t>(m_pFree) % 16 == 0 && m_nLeft >= 8)
        {
            m_pFree += 8;
            m_nLeft -= 8;
        }
        return Take(nSize); // A slab begins with such a place.
    }

    static void GiveBack(void* pPiece) noexcept
    {
        Drop(reinterpret_cast<Slab*>(reinterpret_cast<std::uintptr_t>(pPiece) & ~(kSlabSize - 1)));
    }

private:
    /// At the start of its memory, which begins at a multiple of kSlabSize.
    struct Slab
    {
        std::size_t nPieces;
    };

    static constexpr std::uintptr_t kSlabSize = std::uintptr_t{32} * 1024;
    /// The allocator's own header then fits between two slabs.
    static constexpr std::size_t kUsableSize = kSlabSize - 2 * sizeof(void*);

    static void Drop(Slab* pSlab) noexcept
    {
        if (--pSlab->nPieces == 0)
            Free(pSlab);
    }

    void NextSlab();
    void LeaveSlab() noexcept;
    static void Free(Slab* pSlab) noexcept;

    static_assert(sizeof(Slab) % 16 == 8);

    Slab* m_pSlab = nullptr; ///< Its slab counts this object as a piece.
    std::byte* m_pFree = nullptr;
    std::size_t m_nLeft = 0;
};

/// While it lives, the lists of parameters that grow on this thread do so in these slabs; null: on
/// the heap.
class CUseSlabs
{
public:
    explicit CUseSlabs(CParameterSlabs* pSlabs) : m_pBefore(std::exchange(pInUse, pSlabs)) {}
    CUseSlabs(const CUseSlabs&) = delete;
    CUseSlabs& operator=(const CUseSlabs&) = delete;
    ~CUseSlabs() { pInUse = m_pBefore; }

    static inline thread_local CParameterSlabs* pInUse = nullptr;

private:
    CParameterSlabs* m_pBefore;
};
