#include "utils/ParameterList.h"

#include "utils/Parameter.h"
#include "utils/ParameterSlabs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

namespace
{
class ParameterList : public testing::Test
{
protected:
    CParameter* P(std::size_t nIndex) { return &m_parameters[nIndex]; }
    void Append(CParameterList& list, std::size_t nFirst, std::size_t nCount)
    {
        for (std::size_t i = nFirst; i < nFirst + nCount; ++i)
            list.push_back(P(i));
    }
    std::vector<CParameter*> All(const CParameterList& list) { return {list.begin(), list.end()}; }
    std::vector<CParameter*> Expected(std::initializer_list<std::size_t> indices)
    {
        std::vector<CParameter*> result;
        for (const std::size_t i : indices)
            result.push_back(P(i));
        return result;
    }

    std::array<CIntParameter, 1000> m_parameters;
};
} // namespace

TEST_F(ParameterList, GrowsAndKeepsItsEntries)
{
    CParameterList list;
    EXPECT_TRUE(list.empty());
    Append(list, 0, 1000);
    ASSERT_EQ(list.size(), 1000u);
    EXPECT_GE(list.capacity(), 1000u);
    for (std::size_t i = 0; i < 1000; ++i)
        ASSERT_EQ(list[i], P(i));
    EXPECT_EQ(list.front(), P(0));
    EXPECT_EQ(list.back(), P(999));
}

TEST_F(ParameterList, ClearAndPopKeepTheCapacity)
{
    CParameterList list;
    Append(list, 0, 10);
    const std::size_t nCapacity = list.capacity();
    list.pop_back();
    EXPECT_EQ(list.back(), P(8));
    list.clear();
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.capacity(), nCapacity);
}

TEST_F(ParameterList, EraseTakesOneOut)
{
    CParameterList list;
    Append(list, 0, 4);
    EXPECT_EQ(*list.erase(list.begin() + 1), P(2));
    EXPECT_EQ(All(list), Expected({0, 2, 3}));
    const auto behindLast = list.erase(list.begin() + 2);
    EXPECT_EQ(behindLast, list.end());
    EXPECT_EQ(All(list), Expected({0, 2}));
}

TEST_F(ParameterList, SwapTakesStorageOfEitherKind)
{
    CParameterSlabs slabs;
    CParameterList heap, slab;
    Append(heap, 0, 3);
    slab.reserve(2, &slabs);
    Append(slab, 10, 2);
    heap.swap(slab);
    EXPECT_EQ(All(heap), Expected({10, 11}));
    EXPECT_EQ(All(slab), Expected({0, 1, 2}));
    EXPECT_EQ(heap.capacity(), 2u);
    Append(heap, 12, 1);
    Append(slab, 3, 5);
    EXPECT_EQ(All(heap), Expected({10, 11, 12}));
    EXPECT_EQ(All(slab), Expected({0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(ParameterList, ReserveGivesJustThatAndNeverLess)
{
    CParameterSlabs slabs;
    for (CParameterSlabs* pSlabs : {static_cast<CParameterSlabs*>(nullptr), &slabs})
    {
        CParameterList list;
        list.reserve(7, pSlabs);
        EXPECT_EQ(list.capacity(), 7u);
        list.reserve(3, pSlabs);
        EXPECT_EQ(list.capacity(), 7u);
        list.reserve(900, pSlabs);
        EXPECT_EQ(list.capacity(), 900u) << "too much for a slab comes from the heap";
        Append(list, 0, 900);
        EXPECT_EQ(list.back(), P(899));
    }
}

TEST_F(ParameterList, CopyHoldsTheSamePointersInStorageOfItsOwn)
{
    CParameterSlabs slabs;
    CParameterList list;
    list.reserve(2, &slabs);
    Append(list, 0, 2);
    CParameterList copy(list);
    list[0] = P(5);
    EXPECT_EQ(All(copy), Expected({0, 1}));
    copy = list;
    EXPECT_EQ(All(copy), Expected({5, 1}));
}

TEST_F(ParameterList, StorageFromSlabsIsToldFromTheHeaps)
{
    // Of every size, one behind the other: where one ends must not decide where the next begins.
    CParameterSlabs slabs;
    std::vector<CParameterList> lists(600);
    for (std::size_t i = 0; i < lists.size(); ++i)
    {
        lists[i].reserve(i % 9 + 1, &slabs);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(lists[i].data()) % 16, 8u);
        Append(lists[i], i, i % 9 + 1);
    }
    for (std::size_t i = 0; i < lists.size(); ++i)
        EXPECT_EQ(lists[i].back(), P(i + i % 9));
}

TEST_F(ParameterList, OutlivesTheSlabsItCameFrom)
{
    CParameterList list;
    {
        CParameterSlabs slabs;
        list.reserve(2, &slabs);
        Append(list, 0, 2);
    }
    Append(list, 2, 1);
    EXPECT_EQ(All(list), Expected({0, 1, 2}));
}

TEST(ParameterSlabs, PiecesAreApartAlignedAndOutliveTheirMaker)
{
    std::vector<unsigned char*> pieces;
    {
        CParameterSlabs slabs;
        for (std::size_t i = 0; i < 5000; ++i)
        {
            const std::size_t nSize = 8 + i % 9 * 8;
            auto* pPiece = static_cast<unsigned char*>(slabs.Take(nSize));
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pPiece) % 8, 0u);
            std::fill_n(pPiece, nSize, static_cast<unsigned char>(i));
            pieces.push_back(pPiece);
        }
        pieces.push_back(static_cast<unsigned char*>(slabs.Take(CParameterSlabs::kMostAtOnce)));
    }
    for (std::size_t i = 0; i < 5000; ++i)
    {
        const std::size_t nSize = 8 + i % 9 * 8;
        EXPECT_EQ(std::count(pieces[i], pieces[i] + nSize, static_cast<unsigned char>(i)),
                  static_cast<std::ptrdiff_t>(nSize));
    }
    for (unsigned char* pPiece : pieces)
        CParameterSlabs::GiveBack(pPiece);
}

TEST(ParameterSlabs, UnusedTheyCostNothing)
{
    const CParameterSlabs slabs;
    EXPECT_LE(sizeof slabs, 24u);
}
