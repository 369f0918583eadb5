#include "utils/ParameterBlockLoader.h"

#include "utils/ParameterFormat.h"

using namespace ParameterFormat;

namespace
{
constexpr long kFailed = -1;

/// The result of a parameter's Load counts as a signed 32-bit number.
bool IsFailure(std::uint32_t nConsumed)
{
    return static_cast<std::int32_t>(nConsumed) < 0;
}
} // namespace

CParameterBlockLoader::CParameterBlockLoader(CParameterBlock& root,
                                             const std::vector<std::string>* pNames,
                                             unsigned long nSize, const unsigned char* pSource)
    : m_root(root), m_pNames(pNames), m_pNext(pSource), m_nSize(nSize),
      m_nRemaining(static_cast<std::uint32_t>(nSize))
{
    // One text a name for the whole tree, unless making the table would cost more than the load.
    if (pNames && pNames->size() <= nSize)
        m_sharedNames.assign(pNames->begin(), pNames->end());
}

CParameterBlockLoader::~CParameterBlockLoader()
{
    for (const Level& level : m_levels)
        if (level.pBlock != &m_root)
            delete level.pBlock;
    for (CParameter* pEntry : m_entries)
        delete pEntry;
}

long CParameterBlockLoader::Load()
{
    if (m_nSize < kSizeOfCount)
        return 0;
    const std::uint32_t nCount = LoadCount();
    m_levels.push_back({&m_root, 0, nCount, m_nRemaining});
    while (m_levels.size() > 1 || m_levels.back().nToRead > 0)
    {
        const bool fFinished = m_levels.back().nToRead == 0;
        if (fFinished ? FinishBlock() : LoadEntry())
            continue;
        FinishRoot(m_levels.size() > 1 ? m_levels[1].nFirstEntry : m_entries.size());
        return kFailed;
    }
    FinishRoot(m_entries.size());
    return static_cast<long>(m_nSize - m_nRemaining);
}

bool CParameterBlockLoader::LoadEntry()
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
        m_entries.push_back(nullptr);
        return true;
    }
}

template <class Parameter> bool CParameterBlockLoader::LoadValue()
{
    auto* pValue = m_pool.Make<Parameter>();
    m_entries.push_back(pValue);
    const std::uint32_t nName = LoadName(*pValue);
    const auto nPayload = static_cast<std::uint32_t>(
        LoadPayload(ValueOf(*pValue), m_nRemaining - nName, m_pNext + nName));
    if (IsFailure(nName + nPayload))
    {
        m_entries.pop_back();
        delete pValue;
        return false;
    }
    Advance(nName + nPayload);
    return true;
}

void CParameterBlockLoader::BeginBlock()
{
    std::unique_ptr<CParameterBlock> pBlock(m_pool.Make<CParameterBlock>());
    pBlock->m_pProgress = m_root.m_pProgress;
    pBlock->m_nProgressTotal = m_root.m_nProgressTotal;
    const std::uint32_t nRemainingBefore = m_nRemaining;
    Advance(LoadName(*pBlock));
    const std::uint32_t nCount = m_nRemaining < kSizeOfCount ? 0 : LoadCount();
    m_levels.push_back({pBlock.get(), m_entries.size(), nCount, nRemainingBefore});
    pBlock.release();
}

bool CParameterBlockLoader::FinishBlock()
{
    const Level level = m_levels.back();
    if (IsFailure(level.nRemainingBefore - m_nRemaining))
        return false;
    const auto first = m_entries.begin() + static_cast<std::ptrdiff_t>(level.nFirstEntry);
    level.pBlock->m_vParameters.assign(first, m_entries.end());
    m_entries.erase(first, m_entries.end());
    if (m_root.m_pProgress && m_root.m_nProgressTotal != 0 &&
        m_root.m_pProgress->Update(m_root.m_nProgressTotal - m_nRemaining))
        return false;
    m_entries.push_back(level.pBlock);
    m_levels.pop_back();
    return true;
}

/// Hands the root its first entries; all others belong to blocks that were not finished.
void CParameterBlockLoader::FinishRoot(std::size_t nEntries)
{
    const auto first = m_entries.begin();
    const auto last = first + static_cast<std::ptrdiff_t>(nEntries);
    m_root.m_vParameters.assign(first, last);
    m_entries.erase(first, last);
}

std::uint32_t CParameterBlockLoader::LoadName(CParameter& parameter)
{
    if (!m_pNames)
        return LoadInlineName(parameter, m_nRemaining, m_pNext);
    if (m_sharedNames.empty())
        return LoadTokenName(parameter, *m_pNames, m_nRemaining, m_pNext);
    return LoadTokenName(parameter, m_sharedNames, m_nRemaining, m_pNext);
}

std::uint32_t CParameterBlockLoader::LoadCount()
{
    const auto nCount = Read<std::int32_t>(m_pNext);
    Advance(kSizeOfCount);
    return nCount < 0 ? 0 : static_cast<std::uint32_t>(nCount);
}

void CParameterBlockLoader::Advance(std::uint32_t nBytes)
{
    m_pNext += nBytes;
    m_nRemaining -= nBytes;
}
