#pragma once

#include "utils/ParameterRecord.h"
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

    /// As delete does, quicker.
    static void DeleteValue(CParameter* pValue) noexcept
    {
        if (!ParameterFormat::IsOwnClass(*pValue))
        {
            delete pValue;
            return;
        }
        const bool fInSlab = pValue->IsInSlab();
        ParameterFormat::VisitValue(*pValue, false,
                                    []<class Value>(const Value& value)
                                    {
                                        const_cast<Value&>(value).Value::~Value();
                                        return true;
                                    });
        if (fInSlab)
            CParameterSlabs::GiveBack(pValue);
        else
            ::operator delete(pValue);
    }

    /// Where the list of a block made now belongs; null: on the heap.
    CParameterSlabs* GetSlabs() { return m_nFromHeap < kMostFromHeap ? nullptr : &m_slabs; }

private:
    static constexpr unsigned int kMostFromHeap = 1024;

    CParameterSlabs m_slabs;
    unsigned int m_nFromHeap = 0;
};
