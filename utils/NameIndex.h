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
    template <typename Find> int* Get(const CByteString& strName, Find&& find)
    {
        Slot& slot = Seek(strName);
        if (slot.pName)
            return slot.pNumber;
        int* pNumber = find();
        slot = {&strName, pNumber};
        if (++m_nUsed * 2 > m_slots.size())
            Grow();
        return pNumber;
    }

private:
    struct Slot
    {
        const CByteString* pName = nullptr;
        int* pNumber = nullptr;
    };

    /// The slot of the name, or the free one where it belongs.
    Slot& Seek(const CByteString& strName)
    {
        const std::size_t nMask = m_slots.size() - 1;
        std::size_t n = strName.Hash() & nMask;
        while (m_slots[n].pName && !(*m_slots[n].pName == strName))
            n = (n + 1) & nMask;
        return m_slots[n];
    }

    void Grow()
    {
        std::vector<Slot> old(m_slots.size() * 2);
        old.swap(m_slots);
        for (const Slot& slot : old)
            if (slot.pName)
                Seek(*slot.pName) = slot;
    }

    std::vector<Slot> m_slots = std::vector<Slot>(64); ///< A power of two, at most half full.
    std::size_t m_nUsed = 0;
};
