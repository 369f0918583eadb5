#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

class CParameter;
class CParameterSlabs;

/// The entries of a block: a vector of pointers, which it does not own. It differs from std::vector
/// in its size and in that a load can put its storage where it puts the parameters.
class CParameterList
{
public:
    using value_type = CParameter*;
    using iterator = CParameter**;
    using const_iterator = CParameter* const*;

    CParameterList() = default;
    CParameterList(const CParameterList&) = delete;
    CParameterList& operator=(const CParameterList&) = delete;
    ~CParameterList() { FreeStorage(); }

    iterator begin() noexcept { return m_pFirst; }
    iterator end() noexcept { return m_pFirst + m_nSize; }
    const_iterator begin() const noexcept { return m_pFirst; }
    const_iterator end() const noexcept { return m_pFirst + m_nSize; }

    std::size_t size() const noexcept { return m_nSize; }
    std::size_t capacity() const noexcept { return m_nCapacity; }
    bool empty() const noexcept { return m_nSize == 0; }

    CParameter*& operator[](std::size_t nIndex) noexcept { return m_pFirst[nIndex]; }
    CParameter* operator[](std::size_t nIndex) const noexcept { return m_pFirst[nIndex]; }
    CParameter*& front() noexcept { return m_pFirst[0]; }
    CParameter* front() const noexcept { return m_pFirst[0]; }
    CParameter*& back() noexcept { return m_pFirst[m_nSize - 1]; }
    CParameter* back() const noexcept { return m_pFirst[m_nSize - 1]; }

    void push_back(CParameter* pEntry)
    {
        if (m_nSize == m_nCapacity)
            Grow();
        m_pFirst[m_nSize++] = pEntry;
    }
    void pop_back() noexcept { --m_nSize; }
    /// Takes the entry out, which is then the caller's.
    iterator erase(iterator position) noexcept;
    /// The capacity stays.
    void clear() noexcept { m_nSize = 0; }
    /// Keeps the first nSize entries, of at least as many.
    void truncate(std::size_t nSize) noexcept { m_nSize = static_cast<std::uint32_t>(nSize); }
    /// From the slabs, if given and if it fits; otherwise from the heap, as all later growth.
    void reserve(std::size_t nCapacity, CParameterSlabs* pSlabs = nullptr);
    void swap(CParameterList& other) noexcept;

private:
    void Grow();
    void FreeStorage() noexcept
    {
        if (m_pFirst)
            ReleaseStorage();
    }
    void ReleaseStorage() noexcept;

    CParameter** m_pFirst = nullptr;
    std::uint32_t m_nSize = 0;
    std::uint32_t m_nCapacity : 31 = 0;
    std::uint32_t m_fInSlab : 1 = 0;
};
