#include "utils/ParameterBlockLoader.h"

#include "utils/ParameterFormat.h"
#include "utils/ParameterPool.h"

#include <algorithm>
#include <memory>

using namespace ParameterFormat;

namespace
{
constexpr long kFailed = -1;
// A stated count up to this gets its memory at once. More would let a small file ask for a lot.
constexpr std::uint32_t kMostTrusted = 16;

// The result of a parameter's Load counts as a signed 32-bit number.
bool IsFailure(std::uint32_t nConsumed)
{
    return static_cast<std::int32_t>(nConsumed) < 0;
}

struct InlineNames
{
    std::uint32_t Load(CParameter& parameter, std::uint32_t nSize, const unsigned char* pNext) const
    {
        return LoadInlineName(parameter, nSize, pNext);
    }
};

template <class Name> struct TokenNames
{
    const std::vector<Name>& names;

    std::uint32_t Load(CParameter& parameter, std::uint32_t nSize, const unsigned char* pNext) const
    {
        return LoadTokenName(parameter, names, nSize, pNext);
    }
};

template <class Names> class CLoader
{
public:
    CLoader(CParameterBlock& root, const Names& names, unsigned long nSize,
            const unsigned char* pSource)
        : m_root(root), m_names(names), m_pNext(pSource), m_nSize(nSize),
          m_nRemaining(static_cast<std::uint32_t>(nSize))
    {
    }
    CLoader(const CLoader&) = delete;
    CLoader& operator=(const CLoader&) = delete;

    ~CLoader()
    {
        for (const Level& level : m_levels)
            if (level.pBlock != &m_root)
                delete level.pBlock;
        for (CParameter* pEntry : m_entries)
            delete pEntry;
    }

    long Load()
    {
        if (m_nSize < kSizeOfCount)
            return 0;
        const std::uint32_t nCount = LoadCount();
        if (nCount == 0)
            return static_cast<long>(kSizeOfCount);
        // Every entry takes its tag at the least.
        m_root.m_vParameters.reserve(std::min<unsigned long>(nCount, m_nRemaining / kSizeOfTag));
        m_levels.push_back({&m_root, 0, nCount, m_nRemaining});
        while (m_levels.size() > 1 || m_levels.back().nToRead > 0)
        {
            const bool fFinished = m_levels.back().nToRead == 0;
            if (!(fFinished ? FinishBlock() : LoadEntry()))
                return kFailed;
        }
        return static_cast<long>(m_nSize - m_nRemaining);
    }

private:
    // A block whose entries are being read. The root gets each as it is read: a progress sink may
    // look, and what is there stays after any failure. All others wait in m_entries, so that each
    // list is made once, in its right size.
    struct Level
    {
        CParameterBlock* pBlock;
        std::size_t nFirstEntry;
        std::uint32_t nToRead;
        std::uint32_t nRemainingBefore;
    };

    bool LoadEntry()
    {
        --m_levels.back().nToRead;
        if (m_nRemaining < kSizeOfTag)
            return false;
        const auto nTag = Read<std::int32_t>(m_pNext);
        Advance(kSizeOfTag);
        switch (nTag)
        {
        case CStringParameter::kType:
            return LoadValue<CStringParameter>();
        case CIntParameter::kType:
            return LoadValue<CIntParameter>();
        case CDoubleParameter::kType:
            return LoadValue<CDoubleParameter>();
        case CUInt64Parameter::kType:
            return LoadValue<CUInt64Parameter>();
        case CFileIdTypeParameter::kType:
            return LoadValue<CFileIdTypeParameter>();
        case CParameterBlock::kType:
            BeginBlock();
            return true;
        case CBoolParameter::kType:
            return LoadValue<CBoolParameter>();
        case CFloatParameter::kType:
            return LoadValue<CFloatParameter>();
        case CSInt64Parameter::kType:
            return LoadValue<CSInt64Parameter>();
        default:
            // Nobody knows how long an unknown record is: the next tag is read from right here.
            Append(nullptr);
            return true;
        }
    }

    void Append(std::unique_ptr<CParameter> pEntry)
    {
        if (m_levels.size() == 1)
            m_root.m_vParameters.push_back(pEntry.get());
        else
            m_entries.push_back(pEntry.get());
        pEntry.release();
    }

    template <class Parameter> bool LoadValue()
    {
        std::unique_ptr<Parameter> pValue(m_pool.Make<Parameter>());
        const std::uint32_t nName = m_names.Load(*pValue, m_nRemaining, m_pNext);
        const auto nPayload = static_cast<std::uint32_t>(
            LoadPayload(ValueOf(*pValue), m_nRemaining - nName, m_pNext + nName));
        if (IsFailure(nName + nPayload))
            return false;
        Advance(nName + nPayload);
        Append(std::move(pValue));
        return true;
    }

    void BeginBlock()
    {
        std::unique_ptr<CParameterBlock> pBlock(m_pool.Make<CParameterBlock>());
        const CParameterBlock& parent = *m_levels.back().pBlock;
        pBlock->m_pProgress = parent.m_pProgress;
        pBlock->m_nProgressTotal = parent.m_nProgressTotal;
        const std::uint32_t nRemainingBefore = m_nRemaining;
        Advance(m_names.Load(*pBlock, m_nRemaining, m_pNext));
        const std::uint32_t nCount = m_nRemaining < kSizeOfCount ? 0 : LoadCount();
        // In front of its entries: walks then go through memory in one direction.
        if (nCount <= kMostTrusted)
            pBlock->m_vParameters.reserve(nCount, m_pool.GetSlabs());
        m_levels.push_back({pBlock.get(), m_entries.size(), nCount, nRemainingBefore});
        pBlock.release();
    }

    bool FinishBlock()
    {
        const Level level = m_levels.back();
        if (IsFailure(level.nRemainingBefore - m_nRemaining))
            return false;
        MoveEntries(level.nFirstEntry, *level.pBlock);
        const CParameterBlock& parent = *m_levels[m_levels.size() - 2].pBlock;
        if (parent.m_pProgress && parent.m_nProgressTotal != 0 &&
            parent.m_pProgress->Update(parent.m_nProgressTotal - m_nRemaining))
            return false;
        m_levels.pop_back();
        Append(std::unique_ptr<CParameter>(level.pBlock));
        return true;
    }

    // Hands a block its entries, which are the last ones.
    void MoveEntries(std::size_t nFirst, CParameterBlock& block)
    {
        const auto first = m_entries.begin() + static_cast<std::ptrdiff_t>(nFirst);
        auto& entries = block.m_vParameters;
        entries.reserve(m_entries.size() - nFirst, m_pool.GetSlabs());
        entries.insert(entries.end(), first, m_entries.end());
        m_entries.erase(first, m_entries.end());
    }

    std::uint32_t LoadCount()
    {
        const auto nCount = Read<std::int32_t>(m_pNext);
        Advance(kSizeOfCount);
        return nCount < 0 ? 0 : static_cast<std::uint32_t>(nCount);
    }

    void Advance(std::uint32_t nBytes)
    {
        m_pNext += nBytes;
        m_nRemaining -= nBytes;
    }

    CParameterBlock& m_root;
    const Names m_names;
    const unsigned char* m_pNext;
    const unsigned long m_nSize;
    std::uint32_t m_nRemaining; // To the end of the buffer, on every level.
    CParameterPool m_pool;
    std::vector<Level> m_levels;
    std::vector<CParameter*> m_entries;
};
} // namespace

long LoadContents(CParameterBlock& root, const std::vector<std::string>* pNames,
                  unsigned long nSize, const unsigned char* pSource)
{
    if (!pNames)
        return CLoader<InlineNames>(root, {}, nSize, pSource).Load();
    if (pNames->size() > nSize)
        return CLoader<TokenNames<std::string>>(root, {*pNames}, nSize, pSource).Load();
    // One text a name for the whole tree; making the table costs less than the load.
    const std::vector<CByteString> names(pNames->begin(), pNames->end());
    return CLoader<TokenNames<CByteString>>(root, {names}, nSize, pSource).Load();
}
