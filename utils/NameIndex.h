#pragma once

#include "utils/ByteString.h"

#include <cstddef>
#include <vector>

/// Finds the number that belongs to a name in a map of names without asking the map each time: a
/// tree uses few names, very often, and mostly in the same order. Holds pointers into the tree and
/// into the map, and lives no longer than one walk.
class CNameIndex
{
public:
    /// find(): the place of the number in the map, or null; asked once a name.
    /// strName is not empty.
    template <typename Find> int* Get(const CByteString& strName, Find&& find)
    {
        // First the name that came behind the last one when that came last.
        const std::size_t nGuess = m_slots[m_nLast].nNext;
        if (m_slots[nGuess].strName == strName)
        {
            m_nLast = nGuess;
            return m_slots[nGuess].pNumber;
        }
        const std::size_t nSlot = Seek(strName);
        m_slots[m_nLast].nNext = nSlot;
        m_nLast = nSlot;
        if (!m_slots[nSlot].strName.empty())
            return m_slots[nSlot].pNumber;
        int* pNumber = find();
        m_slots[nSlot] = {strName, pNumber, 0};
        if (++m_nUsed * 2 > m_slots.size())
            Grow();
        return pNumber;
    }

private:
    struct Slot
    {
        CByteString strName; ///< Empty while the slot is free.
        int* pNumber = nullptr;
        std::size_t nNext = 0;
    };

    /// The slot of the name, or the free one where it belongs.
    std::size_t Seek(const CByteString& strName) const
    {
        const std::size_t nMask = m_slots.size() - 1;
        std::size_t n = strName.Hash() & nMask;
        while (!(m_slots[n].strName == strName) && !m_slots[n].strName.empty())
            n = (n + 1) & nMask;
        return n;
    }

    void Grow()
    {
        std::vector<Slot> old(m_slots.size() * 2);
        old.swap(m_slots);
        for (const Slot& slot : old)
            if (!slot.strName.empty())
                m_slots[Seek(slot.strName)] = {slot.strName, slot.pNumber, 0};
        m_nLast = 0;
    }

    std::vector<Slot> m_slots = std::vector<Slot>(64); ///< A power of two, at most half full.
    std::size_t m_nUsed = 0;
    std::size_t m_nLast = 0;
};
