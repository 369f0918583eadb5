#include "utils/ParameterList.h"

#include "utils/ParameterSlabs.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace
{
constexpr std::size_t kMostEntries = 0x7FFFFFFF;
constexpr std::size_t kFirstCapacity = 4;
} // namespace

CParameterList::iterator CParameterList::erase(iterator position) noexcept
{
    std::copy(position + 1, end(), position);
    --m_nSize;
    return position;
}

void CParameterList::reserve(std::size_t nCapacity, CParameterSlabs* pSlabs)
{
    if (nCapacity <= m_nCapacity)
        return;
    if (nCapacity > kMostEntries)
        throw std::length_error("more parameters than a block can hold");
    const std::size_t nBytes = nCapacity * sizeof(CParameter*);
    const bool fInSlab = pSlabs && nBytes <= CParameterSlabs::kMostAtOnce;
    auto** pStorage =
        static_cast<CParameter**>(fInSlab ? pSlabs->Take(nBytes) : ::operator new(nBytes));
    std::copy(begin(), end(), pStorage);
    FreeStorage();
    m_pFirst = pStorage;
    m_nCapacity = nCapacity & kMostEntries;
    m_fInSlab = fInSlab;
}

void CParameterList::swap(CParameterList& other) noexcept
{
    // Bit fields cannot be swapped by reference.
    const std::uint32_t nCapacity = m_nCapacity;
    const std::uint32_t fInSlab = m_fInSlab;
    std::swap(m_pFirst, other.m_pFirst);
    std::swap(m_nSize, other.m_nSize);
    m_nCapacity = other.m_nCapacity;
    m_fInSlab = other.m_fInSlab;
    other.m_nCapacity = nCapacity;
    other.m_fInSlab = fInSlab;
}

void CParameterList::Grow()
{
    reserve(std::max(kFirstCapacity, std::size_t{m_nCapacity} * 2));
}

void CParameterList::ReleaseStorage() noexcept
{
    if (m_fInSlab)
        CParameterSlabs::GiveBack(m_pFirst);
    else
        ::operator delete(m_pFirst);
}
