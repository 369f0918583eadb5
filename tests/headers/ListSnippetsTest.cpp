// What a caller does with a std::vector<CParameter*> he does with the entries of a block: one
// snippet an operation. That they compile is half of what is tested.
#include "utils/ParameterBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <numeric>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

namespace
{
class EntriesOfABlock : public testing::Test
{
protected:
    void SetUp() override
    {
        for (int i = 0; i < 4; ++i)
            m_block.AddParameter(std::to_string(i).c_str(), i);
        m_all = m_block.m_vParameters;
    }
    void TearDown() override
    {
        m_entries.clear(); // What it holds is in m_all.
        for (CParameter* pEntry : m_all)
            delete pEntry;
        for (CParameter* pEntry : m_made)
            delete pEntry;
    }
    CParameter* Make(int nValue) { return m_made.emplace_back(new CIntParameter("made", nValue)); }
    std::vector<CParameter*> All(std::initializer_list<std::size_t> indices) const
    {
        std::vector<CParameter*> entries;
        for (const std::size_t n : indices)
            entries.push_back(m_all[n]);
        return entries;
    }

    CParameterBlock m_block;
    CParameterList& m_entries = m_block.m_vParameters;
    std::vector<CParameter*> m_all;
    std::vector<CParameter*> m_made;
};

std::size_t TakesConstReference(const std::vector<CParameter*>& entries)
{
    return entries.size();
}
std::size_t TakesValue(std::vector<CParameter*> entries)
{
    return entries.size();
}
std::size_t TakesSpan(std::span<CParameter* const> entries)
{
    return entries.size();
}
} // namespace

TEST_F(EntriesOfABlock, AreIndexed)
{
    EXPECT_EQ(m_entries[1], m_all[1]);
    EXPECT_EQ(m_entries.at(2), m_all[2]);
    EXPECT_EQ(std::as_const(m_entries).at(2), m_all[2]);
    EXPECT_EQ(m_entries.front(), m_all[0]);
    EXPECT_EQ(m_entries.back(), m_all[3]);
    EXPECT_EQ(m_entries.data()[3], m_all[3]);
    EXPECT_THROW(m_entries.at(4), std::out_of_range);
}

TEST_F(EntriesOfABlock, AreWalkedEitherWay)
{
    EXPECT_TRUE(std::equal(m_entries.begin(), m_entries.end(), m_all.begin()));
    EXPECT_TRUE(std::equal(m_entries.cbegin(), m_entries.cend(), m_all.begin()));
    EXPECT_TRUE(std::equal(m_entries.rbegin(), m_entries.rend(), m_all.rbegin()));
    EXPECT_TRUE(std::equal(m_entries.crbegin(), m_entries.crend(), m_all.rbegin()));
    std::size_t n = 0;
    for (const CParameter* pEntry : m_entries)
        EXPECT_EQ(pEntry, m_all[n++]);
    EXPECT_EQ(n, 4u);
}

TEST_F(EntriesOfABlock, AreAppended)
{
    CParameter* pNew = Make(7);
    m_entries.push_back(pNew);
    EXPECT_EQ(m_entries.emplace_back(pNew), pNew);
    EXPECT_EQ(m_entries.size(), 6u);
    std::fill_n(std::back_inserter(m_entries), 2, pNew);
    EXPECT_EQ(m_entries.size(), 8u);
    m_entries.pop_back();
    EXPECT_EQ(m_entries.size(), 7u);
}

TEST_F(EntriesOfABlock, AreInserted)
{
    CParameter* pNew = Make(7);
    EXPECT_EQ(*m_entries.insert(m_entries.begin() + 1, pNew), pNew);
    EXPECT_EQ(m_entries[2], m_all[1]);
    m_entries.insert(m_entries.end(), {pNew, pNew});
    m_entries.insert(m_entries.begin(), 2, pNew);
    m_entries.insert(m_entries.cend(), m_all.begin(), m_all.end());
    m_entries.emplace(m_entries.begin(), pNew);
    EXPECT_EQ(m_entries.size(), 14u);
    EXPECT_EQ(std::count(m_entries.begin(), m_entries.end(), pNew), 6);
}

TEST_F(EntriesOfABlock, AreErased)
{
    EXPECT_EQ(*m_entries.erase(m_entries.begin()), m_all[1]);
    EXPECT_EQ(m_entries, All({1, 2, 3}));
    m_entries.erase(m_entries.begin(), m_entries.begin() + 2);
    EXPECT_EQ(m_entries, All({3}));
    m_entries.clear();
    EXPECT_TRUE(m_entries.empty());
}

TEST_F(EntriesOfABlock, AreErasedByACondition)
{
    std::erase_if(m_entries, [this](const CParameter* pEntry) { return pEntry == m_all[1]; });
    std::erase(m_entries, m_all[2]);
    m_entries.erase(std::remove(m_entries.begin(), m_entries.end(), m_all[3]), m_entries.end());
    EXPECT_EQ(m_entries, All({0}));
}

TEST_F(EntriesOfABlock, AreResized)
{
    m_entries.resize(6);
    EXPECT_EQ(m_entries[5], nullptr);
    m_entries.resize(7, m_all[0]);
    EXPECT_EQ(m_entries[6], m_all[0]);
    m_entries.resize(2);
    EXPECT_EQ(m_entries, All({0, 1}));
}

TEST_F(EntriesOfABlock, AreAssigned)
{
    m_entries.assign(m_all.rbegin(), m_all.rend());
    EXPECT_EQ(m_entries, All({3, 2, 1, 0}));
    m_entries.assign(2, m_all[1]);
    EXPECT_EQ(m_entries, All({1, 1}));
    m_entries.assign({m_all[2]});
    EXPECT_EQ(m_entries, All({2}));
    m_entries = {m_all[0], m_all[3]};
    EXPECT_EQ(m_entries, All({0, 3}));
    m_entries = m_all;
    EXPECT_EQ(m_entries, All({0, 1, 2, 3}));
}

TEST_F(EntriesOfABlock, AreCompared)
{
    const std::vector<CParameter*> same = m_all;
    EXPECT_TRUE(m_entries == same);
    EXPECT_TRUE(same == m_entries);
    EXPECT_FALSE(m_entries != same);
    const CParameterList copy = m_entries;
    EXPECT_TRUE(m_entries == copy);
    m_entries.pop_back();
    EXPECT_TRUE(m_entries != same);
    EXPECT_TRUE(m_entries != copy);
}

TEST_F(EntriesOfABlock, MakeRoomAsAsked)
{
    m_entries.reserve(100);
    EXPECT_EQ(m_entries.capacity(), 100u);
    m_entries.shrink_to_fit();
    EXPECT_EQ(m_entries.capacity(), 4u);
    EXPECT_GE(m_entries.max_size(), 4u);
    EXPECT_EQ(m_entries, m_all);
}

TEST_F(EntriesOfABlock, BecomeAVectorByValue)
{
    const std::vector<CParameter*> copied = m_entries;
    const std::vector<CParameter*> direct(m_entries);
    std::vector<CParameter*> assigned;
    assigned = m_entries;
    EXPECT_EQ(copied, m_all);
    EXPECT_EQ(direct, m_all);
    EXPECT_EQ(assigned, m_all);
    EXPECT_EQ(TakesConstReference(m_entries), 4u);
    EXPECT_EQ(TakesValue(m_entries), 4u);
    const auto byAuto = m_entries;
    EXPECT_EQ(byAuto, m_all);
}

TEST_F(EntriesOfABlock, BecomeASpan)
{
    const std::span<CParameter*> span(m_entries);
    EXPECT_EQ(span[2], m_all[2]);
    EXPECT_EQ(TakesSpan(m_entries), 4u);
    EXPECT_EQ(TakesSpan(std::as_const(m_entries)), 4u);
    std::span<CParameter*> fixed = m_entries;
    EXPECT_EQ(fixed.size(), 4u);
}

TEST_F(EntriesOfABlock, AreSwapped)
{
    CParameterBlock other;
    other.m_vParameters.swap(m_entries);
    EXPECT_TRUE(m_entries.empty());
    std::swap(other.m_vParameters, m_entries);
    EXPECT_EQ(m_entries, m_all);
    EXPECT_TRUE(other.m_vParameters.empty());
}

TEST_F(EntriesOfABlock, AreWorkedOnByAlgorithms)
{
    std::reverse(m_entries.begin(), m_entries.end());
    EXPECT_EQ(m_entries, All({3, 2, 1, 0}));
    std::sort(m_entries.begin(), m_entries.end(),
              [](const CParameter* pA, const CParameter* pB)
              { return pA->m_strName < pB->m_strName; });
    EXPECT_EQ(m_entries, m_all);
    std::rotate(m_entries.begin(), m_entries.begin() + 1, m_entries.end());
    EXPECT_EQ(m_entries, All({1, 2, 3, 0}));
    EXPECT_EQ(std::find(m_entries.begin(), m_entries.end(), m_all[3]) - m_entries.begin(), 2);
    EXPECT_EQ(std::accumulate(m_entries.begin(), m_entries.end(), 0,
                              [](int nSum, const CParameter* pEntry) {
                                  return nSum + static_cast<const CIntParameter*>(pEntry)->m_nValue;
                              }),
              6);
    EXPECT_EQ(std::ranges::count(m_entries, m_all[0]), 1);
}

TEST_F(EntriesOfABlock, ArePlacesOfAWalkByName)
{
    CParameterBlock root, nested;
    root.AddParameter("N", &nested);
    CParameterBlock* pFound = nullptr;
    auto it = root.m_vParameters.begin();
    EXPECT_TRUE(root.FindFirstParameter("N", &pFound, &it));
    EXPECT_EQ(it - root.m_vParameters.begin(), 0);
}
