#pragma once

#include "utils/ByteString.h"

#include <array>

/// Finds the number that belongs to a name without asking the map of names each time: a tree uses
/// few names, very often. Holds pointers into the tree and into the map for the length of one walk.
class CNameCache
{
public:
    /// find(): the place of the number in the map, or null; asked when the name is not at hand.
    template <typename Find> int* Get(const CByteString& strName, Find&& find)
    {
        Slot& slot = m_slots[strName.QuickHash() % m_slots.size()];
        if (!slot.pName || !slot.pName->HasSameBytes(strName))
            slot = {&strName, find()};
        return slot.pNumber;
    }

private:
    struct Slot
    {
        const CByteString* pName = nullptr;
        int* pNumber = nullptr;
    };

    std::array<Slot, 256> m_slots;
};
