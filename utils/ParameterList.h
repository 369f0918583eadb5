#pragma once

#include "utils/ParameterSlabs.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <vector>

class CParameter;

/// Lets a load and a copy put the storage of a list where they put its parameters: the storage that
/// a list gets while a CUseSlabs lives comes from there, all other from the heap. Pieces of slabs
/// lie 8 bytes beside the multiples of 16 on which the heap's lie; that tells them apart.
template <class Entry> class CListAllocator
{
public:
    using value_type = Entry;
    using is_always_equal = std::true_type;

    CListAllocator() = default;
    template <class Other> CListAllocator(const CListAllocator<Other>&) noexcept {}

    Entry* allocate(std::size_t nCount)
    {
        const std::size_t nBytes = nCount * sizeof(Entry);
        if (CParameterSlabs* pSlabs = CUseSlabs::pInUse;
            pSlabs && nBytes <= CParameterSlabs::kMostAtOnce)
            return static_cast<Entry*>(pSlabs->TakeBesideSixteen(nBytes));
        return static_cast<Entry*>(::operator new(nBytes));
    }
    void deallocate(Entry* pStorage, std::size_t) noexcept
    {
        if (reinterpret_cast<std::uintptr_t>(pStorage) % 16 != 0)
            CParameterSlabs::GiveBack(pStorage);
        else
            ::operator delete(pStorage);
    }

    friend bool operator==(CListAllocator, CListAllocator) { return true; }
};
static_assert(__STDCPP_DEFAULT_NEW_ALIGNMENT__ >= 16, "the heap's pieces are told by their place");

/// The entries of a block: a vector of pointers, which it does not own; a copy of it holds the same
/// pointers. It is no std::vector<CParameter*> by type, for the sake of its storage, and converts
/// from and to one by value: a std::vector<CParameter*>& or an iterator of one does not bind to it.
class CParameterList : public std::vector<CParameter*, CListAllocator<CParameter*>>
{
public:
    using vector::vector;
    CParameterList() = default;
    CParameterList(const std::vector<CParameter*>& entries) : vector(entries.begin(), entries.end())
    {
    }
    operator std::vector<CParameter*>() const { return {begin(), end()}; }

    using vector::reserve;
    /// From the slabs, if given and if it fits; otherwise from the heap, as all later growth.
    void reserve(std::size_t nCapacity, CParameterSlabs* pSlabs)
    {
        const CUseSlabs use(pSlabs);
        reserve(nCapacity);
    }

    friend bool operator==(const CParameterList& a, const CParameterList& b)
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    friend bool operator==(const CParameterList& a, const std::vector<CParameter*>& b)
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
};
