#pragma once

#include "utils/ParameterBlock.h"
#include "utils/ParameterSlabs.h"

#include <cstddef>

/// Where a load or a copy gets its parameters from: from slabs, but the first ones from the heap,
/// so that a small block costs no slab. Whoever deletes a parameter need not know which it is.
class CParameterPool
{
public:
    /// A default-built parameter, which the caller owns and deletes as any other.
    template <class Parameter> Parameter* Make()
    {
        if (m_nFromHeap < kMostFromHeap)
        {
            ++m_nFromHeap;
            return new Parameter;
        }
        return new (m_slabs) CPooled<Parameter>;
    }

    /// Where the list of a block made now belongs; null: on the heap.
    CParameterSlabs* GetSlabs() { return m_nFromHeap < kMostFromHeap ? nullptr : &m_slabs; }

private:
    template <class Parameter> class CPooled final : public Parameter
    {
    public:
        static void* operator new(std::size_t nSize, CParameterSlabs& slabs)
        {
            return slabs.Take(nSize);
        }
        static void operator delete(void* pPiece) { CParameterSlabs::GiveBack(pPiece); }
        static void operator delete(void* pPiece, CParameterSlabs&)
        {
            CParameterSlabs::GiveBack(pPiece);
        }
    };

    static constexpr unsigned int kMostFromHeap = 64;

    CParameterSlabs m_slabs;
    unsigned int m_nFromHeap = 0;
};
