#pragma once

#include "utils/ByteString.h"

#include <cstddef>
#include <vector>

/// Finds the number that belongs to a name in a map of names without asking the map each time: a
/// tree uses few names, very often. Holds pointers into the tree and into the map, and lives no
/// longer than one walk.
class CNameIndex
{
public:
    /// find(): the place of the number in the map, or null; asked once a name.
    /// strName is not empty.
    template <typename Find> int* Get(const CByteString& strName, Find&& find)
    {
        Slot& slot = Seek(strName);
        if (!slot.strName.empty())
            return slot.pNumber;
        int* pNumber = find();
        slot = {strName, pNumber};
        if (++m_nUsed * 2 > m_slots.size())
            Grow();
        return pNumber;
    }

private:
    struct Slot
    {
        CByteString strName; ///< Empty while the slot is free.
        int* pNumber = nullptr;
    };

    /// The slot of the name, or the free one where it belongs.
    Slot& Seek(const CByteString& strName)
    {
        const std::size_t nMask = m_slots.size() - 1;
        std::size_t n = strName.Hash() & nMask;
        while (!(m_slots[n].strName == strName) && !m_slots[n].strName.empty())
            n = (n + 1) & nMask;
        return m_slots[n];
    }

    void Grow()
    {
        std::vector<Slot> old(m_slots.size() * 2);
        old.swap(m_slots);
        for (const Slot& slot : old)
            if (!slot.strName.empty())
                Seek(slot.strName) = slot;
    }

    std::vector<Slot> m_slots = std::vector<Slot>(64); ///< A power of two, at most half full.
    std::size_t m_nUsed = 0;
};
