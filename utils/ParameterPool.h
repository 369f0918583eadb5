#pragma once

#include "utils/ParameterBlock.h"

#include <cstddef>
#include <cstdint>
#include <utility>

/// Where a load or a copy gets its parameters from. A large tree is millions of small objects,
/// which are made in one go and mostly die in one go: they are cut from slabs, in the order in
/// which they are made, and a slab is freed with the last parameter in it. The first ones come from
/// the heap, so that a small block costs no slab.
///
/// Whoever deletes a parameter need not know: the deleting destructor of a pooled one finds its
/// slab by its address. A slab counts what lives in it without a lock, since one tree belongs to
/// one thread at a time.
class CParameterPool
{
public:
    CParameterPool() = default;
    CParameterPool(const CParameterPool&) = delete;
    CParameterPool& operator=(const CParameterPool&) = delete;
    ~CParameterPool();

    /// A default-built parameter, which the caller owns and deletes as any other.
    template <class Parameter> Parameter* Make()
    {
        if (m_nFromHeap < kMostFromHeap)
        {
            ++m_nFromHeap;
            return new Parameter;
        }
        return new (*this) CPooled<Parameter>;
    }

private:
    /// At the start of its memory, which begins at a multiple of kSlabSize.
    struct Slab
    {
        std::size_t nLive;
    };

    template <class Parameter> class CPooled final : public Parameter
    {
    public:
        static void* operator new(std::size_t nSize, CParameterPool& pool)
        {
            return pool.Take(nSize);
        }
        static void operator delete(void* pParameter) { GiveBack(pParameter); }
        static void operator delete(void* pParameter, CParameterPool&) { GiveBack(pParameter); }
    };

    static constexpr unsigned int kMostFromHeap = 64;
    static constexpr std::size_t kSlabSize = std::size_t{32} * 1024;
    /// The allocator's own header then fits between two slabs.
    static constexpr std::size_t kUsableSize = kSlabSize - 2 * sizeof(void*);

    void* Take(std::size_t nSize)
    {
        if (nSize > m_nLeft)
            NextSlab();
        m_nLeft -= nSize;
        ++m_pSlab->nLive;
        return std::exchange(m_pFree, m_pFree + nSize);
    }

    static void GiveBack(void* pParameter) noexcept
    {
        auto* pSlab = reinterpret_cast<Slab*>(reinterpret_cast<std::uintptr_t>(pParameter) &
                                              ~std::uintptr_t{kSlabSize - 1});
        if (--pSlab->nLive == 0)
            Free(pSlab);
    }

    void NextSlab();
    static void Free(Slab* pSlab) noexcept;

    Slab* m_pSlab = nullptr;
    std::byte* m_pFree = nullptr;
    std::size_t m_nLeft = 0;
    unsigned int m_nFromHeap = 0;
};
