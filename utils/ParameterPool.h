#pragma once

#include "utils/ParameterBlock.h"
#include "utils/ParameterSlabs.h"

#include <new>

/// Where a load or a copy gets its parameters from: from slabs, but the first ones from the heap,
/// so that what is not large costs no slab. Whoever deletes a parameter need not know which it is.
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
        auto* pNew = new (m_slabs.Take(sizeof(Parameter))) Parameter;
        pNew->MarkAsInSlab();
        return pNew;
    }

    /// Where the list of a block made now belongs; null: on the heap.
    CParameterSlabs* GetSlabs() { return m_nFromHeap < kMostFromHeap ? nullptr : &m_slabs; }

private:
    static constexpr unsigned int kMostFromHeap = 1024;

    CParameterSlabs m_slabs;
    unsigned int m_nFromHeap = 0;
};
