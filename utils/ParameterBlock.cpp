#include "utils/ParameterBlock.h"
#include "utils/ParameterPool.h"

#include <algorithm>
#include <memory>
#include <string_view>

namespace
{
CParameterBlock* AsBlock(CParameter* pParameter)
{
    return pParameter && pParameter->m_nType == CParameterBlock::kType
               ? static_cast<CParameterBlock*>(pParameter)
               : nullptr;
}

// Deletes what holds nothing itself. The blocks stay, the last one first: they are then taken from
// the end of the list, so that memory is gone through in the order in which a load has laid it
// out.
void DeleteValues(CParameterList& entries) noexcept
{
    std::size_t nBlocks = 0;
    for (CParameter* pEntry : entries)
    {
        if (AsBlock(pEntry))
            entries[nBlocks++] = pEntry;
        else if (pEntry)
            CParameterPool::DeleteValue(pEntry);
    }
    entries.resize(nBlocks);
    std::reverse(entries.begin(), entries.end());
}

// Deletes a block with all that lies below it. It has to do without recursion and, since
// destructors may not fail, without memory: a block that still has siblings takes their list,
// which has a place free since the block was taken off it, and waits for them at the far end of
// its own.
void DeleteTree(CParameterBlock* pTop) noexcept
{
    CParameterList current; // Blocks alone.
    std::size_t nWaiting = 0;
    for (CParameterBlock* pNext = pTop;;)
    {
        const bool fHasWaited = current.empty() && nWaiting > 0;
        if (!fHasWaited)
            DeleteValues(pNext->m_vParameters);
        if (!pNext->m_vParameters.empty())
            current.swap(pNext->m_vParameters);
        if (fHasWaited || pNext->m_vParameters.empty())
        {
            nWaiting -= fHasWaited;
            delete pNext;
        }
        else
        {
            ++nWaiting;
            pNext->m_vParameters.push_back(current.front());
            current.front() = pNext;
        }
        if (current.empty())
            return;
        pNext = static_cast<CParameterBlock*>(current.back());
        current.pop_back();
    }
}

// A name to look for. Most fit into a CByteString, which compares in two words.
class CNameKey
{
public:
    explicit CNameKey(const char* pName)
        : m_text(pName ? pName : ""), m_fInside(m_text.size() <= CByteString::kMostInside)
    {
        if (m_fInside)
            m_inside = m_text;
    }

    bool Matches(const CByteString& strName) const
    {
        return m_fInside ? strName.HasSameBytes(m_inside) : strName == m_text;
    }

private:
    std::string_view m_text;
    bool m_fInside;
    CByteString m_inside;
};

template <class Parameter, class Iterator>
Iterator FindFrom(Iterator first, Iterator last, const char* pName)
{
    const CNameKey key(pName);
    return std::find_if(first, last,
                        [&key](const CParameter* pEntry) {
                            return pEntry && pEntry->m_nType == Parameter::kType &&
                                   key.Matches(pEntry->m_strName);
                        });
}

template <class Parameter> Parameter* FindFirst(const CParameterList& parameters, const char* pName)
{
    const auto it = FindFrom<Parameter>(parameters.begin(), parameters.end(), pName);
    return it == parameters.end() ? nullptr : static_cast<Parameter*>(*it);
}

void Append(CParameterList& parameters, std::unique_ptr<CParameter> pNew)
{
    parameters.push_back(pNew.get());
    pNew.release();
}
} // namespace

CParameterBlock::CParameterBlock(const char* pName, const CParameterBlock* pSource)
    : CParameterBlock()
{
    m_strName = pName;
    CopyParameters(pSource);
}

CParameterBlock::CParameterBlock(const CParameter* pSource) : CParameterBlock()
{
    if (!pSource)
        return;
    m_strName = pSource->m_strName;
    m_nToken = pSource->m_nToken;
    CopyParameters(dynamic_cast<const CParameterBlock*>(pSource));
}

CParameterBlock::~CParameterBlock()
{
    Clear();
}

void CParameterBlock::Clear() noexcept
{
    DeleteValues(m_vParameters);
    for (; !m_vParameters.empty(); m_vParameters.pop_back())
        DeleteTree(static_cast<CParameterBlock*>(m_vParameters.back()));
}

CParameterBlock& CParameterBlock::operator=(CParameterBlock& other)
{
    CopyParameters(&other);
    return *this;
}

CParameter& CParameterBlock::operator=(CParameter& other)
{
    m_strName = other.m_strName;
    CopyParameters(dynamic_cast<CParameterBlock*>(&other));
    return *this;
}

void CParameterBlock::AddParameter(const char* pName, const char* pValue)
{
    Append(m_vParameters, std::make_unique<CStringParameter>(pName, pValue));
}

void CParameterBlock::AddParameter(const char* pName, int nValue)
{
    Append(m_vParameters, std::make_unique<CIntParameter>(pName, nValue));
}

void CParameterBlock::AddParameter(const char* pName, double dValue)
{
    Append(m_vParameters, std::make_unique<CDoubleParameter>(pName, dValue));
}

void CParameterBlock::AddParameter(const char* pName, unsigned long long nValue)
{
    Append(m_vParameters, std::make_unique<CUInt64Parameter>(pName, nValue));
}

void CParameterBlock::AddParameter(const char* pName, long long nValue)
{
    Append(m_vParameters, std::make_unique<CSInt64Parameter>(pName, nValue));
}

void CParameterBlock::AddParameter(const char* pName, TGL::FileIdType idValue)
{
    Append(m_vParameters, std::make_unique<CFileIdTypeParameter>(pName, idValue));
}

void CParameterBlock::AddParameter(const char* pName, const CParameterBlock* pValue)
{
    Append(m_vParameters, std::make_unique<CParameterBlock>(pName, pValue));
}

void CParameterBlock::AddParameter(const char* pName, bool bValue)
{
    Append(m_vParameters, std::make_unique<CBoolParameter>(pName, bValue));
}

void CParameterBlock::AddParameter(const char* pName, float fValue)
{
    Append(m_vParameters, std::make_unique<CFloatParameter>(pName, fValue));
}

bool CParameterBlock::FindParameter(const char* pName, std::string* pOut,
                                    const char* pDefault) const
{
    const auto* pFound = FindFirst<CStringParameter>(m_vParameters, pName);
    if (pFound)
        pOut->assign(pFound->m_strValue.data(), pFound->m_strValue.size());
    else if (pDefault)
        *pOut = pDefault;
    return pFound != nullptr;
}

bool CParameterBlock::FindParameter(const char* pName, int* pOut, int nDefault) const
{
    const auto* pFound = FindFirst<CIntParameter>(m_vParameters, pName);
    *pOut = pFound ? pFound->m_nValue : nDefault;
    return pFound != nullptr;
}

bool CParameterBlock::FindParameter(const char* pName, double* pOut, double dDefault) const
{
    const auto* pFound = FindFirst<CDoubleParameter>(m_vParameters, pName);
    *pOut = pFound ? pFound->m_dValue : dDefault;
    return pFound != nullptr;
}

bool CParameterBlock::FindParameter(const char* pName, unsigned long long* pOut,
                                    unsigned long long nDefault) const
{
    const auto* pFound = FindFirst<CUInt64Parameter>(m_vParameters, pName);
    *pOut = pFound ? pFound->m_nValue : nDefault;
    return pFound != nullptr;
}

bool CParameterBlock::FindParameter(const char* pName, long long* pOut, long long nDefault) const
{
    const auto* pFound = FindFirst<CSInt64Parameter>(m_vParameters, pName);
    *pOut = pFound ? pFound->m_nValue : nDefault;
    return pFound != nullptr;
}

bool CParameterBlock::FindParameter(const char* pName, TGL::FileIdType* pOut) const
{
    const auto* pFound = FindFirst<CFileIdTypeParameter>(m_vParameters, pName);
    *pOut = pFound ? pFound->m_idValue : TGL::FileIdType{-1, -1};
    return pFound != nullptr;
}

bool CParameterBlock::FindParameter(const char* pName, CParameterBlock** ppOut) const
{
    *ppOut = FindFirst<CParameterBlock>(m_vParameters, pName);
    return *ppOut != nullptr;
}

bool CParameterBlock::FindParameter(const char* pName, bool* pOut, bool bDefault) const
{
    const auto* pFound = FindFirst<CBoolParameter>(m_vParameters, pName);
    *pOut = pFound ? pFound->m_bValue : bDefault;
    return pFound != nullptr;
}

bool CParameterBlock::FindParameter(const char* pName, float* pOut, float fDefault) const
{
    const auto* pFound = FindFirst<CFloatParameter>(m_vParameters, pName);
    *pOut = pFound ? pFound->m_fValue : fDefault;
    return pFound != nullptr;
}

bool CParameterBlock::FindFirstParameter(const char* pName, CParameterBlock** ppOut,
                                         iterator* pIter)
{
    const auto it = FindFrom<CParameterBlock>(m_vParameters.begin(), m_vParameters.end(), pName);
    if (it == m_vParameters.end())
        return false;
    *ppOut = static_cast<CParameterBlock*>(*it);
    *pIter = it;
    return true;
}

bool CParameterBlock::FindNextParameter(const char* pName, CParameterBlock** ppOut, iterator* pIter)
{
    if (*pIter == m_vParameters.end())
        return false;
    const auto it = FindFrom<CParameterBlock>(*pIter + 1, m_vParameters.end(), pName);
    if (it == m_vParameters.end())
        return false;
    *ppOut = static_cast<CParameterBlock*>(*it);
    *pIter = it;
    return true;
}
