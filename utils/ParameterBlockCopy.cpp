#include "utils/ParameterBlock.h"
#include "utils/ParameterFormat.h"
#include "utils/ParameterPool.h"
#include "utils/ParameterWalk.h"

#include <memory>

using namespace ParameterFormat;

namespace
{
CParameter* CopyValue(CParameterPool& pool, const CParameter& source)
{
    const auto copy = [&pool]<class Parameter>(const Parameter& value) -> CParameter*
    {
        std::unique_ptr<Parameter> pCopy(pool.Make<Parameter>());
        pCopy->m_strName = value.m_strName;
        ValueOf(*pCopy) = ValueOf(value);
        return pCopy.release();
    };
    return VisitValue(source, static_cast<CParameter*>(nullptr), copy);
}

// Name and token alone; what it holds follows.
CParameterBlock* CopyEmptyBlock(CParameterPool& pool, const CParameter& source)
{
    std::unique_ptr<CParameterBlock> pCopy(pool.Make<CParameterBlock>());
    pCopy->m_strName = source.m_strName;
    pCopy->m_nToken = source.m_nToken;
    return pCopy.release();
}

// Null for what cannot be copied: a null entry or a tag of nobody's.
CParameter* CopyEntry(CParameterPool& pool, const CParameter* pSource)
{
    if (!pSource)
        return nullptr;
    return IsBlock(*pSource) ? CopyEmptyBlock(pool, *pSource) : CopyValue(pool, *pSource);
}

// Copies one entry with all that lies below it.
class CTreeCopier
{
public:
    std::unique_ptr<CParameter> Copy(const CParameter* pSource)
    {
        std::unique_ptr<CParameter> pCopy(CopyEntry(m_pool, pSource));
        if (pCopy && IsBlock(*pCopy))
            CopyContents(static_cast<const CParameterBlock&>(*pSource),
                         static_cast<CParameterBlock&>(*pCopy));
        return pCopy;
    }

private:
    // What is still to be copied of a block, and where to.
    struct Rest
    {
        CParameterList::const_iterator pNext;
        CParameterList::const_iterator pEnd;
        CParameterList* pTarget;
    };

    Rest Begin(const CParameterBlock& source, CParameterBlock& target)
    {
        const auto& entries = source.m_vParameters;
        target.m_vParameters.reserve(entries.size(), m_pool.GetSlabs());
        return {entries.begin(), entries.end(), &target.m_vParameters};
    }

    void CopyContents(const CParameterBlock& source, CParameterBlock& target)
    {
        m_waiting.clear();
        Rest rest = Begin(source, target);
        for (;;)
        {
            if (rest.pNext == rest.pEnd)
            {
                if (m_waiting.empty())
                    return;
                rest = m_waiting.back();
                m_waiting.pop_back();
                continue;
            }
            const CParameter* pEntry = *rest.pNext++;
            CParameter* pCopy = CopyEntry(m_pool, pEntry);
            if (!pCopy)
                continue;
            rest.pTarget->push_back(pCopy); // Begin has made room.
            if (!IsBlock(*pCopy))
                continue;
            if (rest.pNext != rest.pEnd)
                m_waiting.push_back(rest);
            rest = Begin(static_cast<const CParameterBlock&>(*pEntry),
                         static_cast<CParameterBlock&>(*pCopy));
        }
    }

    CParameterPool m_pool;
    std::vector<Rest> m_waiting;
};
} // namespace

void CParameterBlock::CopyParameters(const CParameterBlock* pSource)
{
    // The old contents go last, for the source may be among them; the list keeps its capacity. A
    // block copied onto itself finds nothing to copy.
    CParameterBlock old;
    old.m_vParameters = m_vParameters;
    m_vParameters.clear();
    if (!pSource)
        return;

    CTreeCopier copier;
    m_vParameters.reserve(pSource->m_vParameters.size());
    // This block may lie inside the source. Each copy is complete before it is appended, so that
    // the walk through the source never meets the copy that it is making.
    for (const CParameter* pEntry : pSource->m_vParameters)
        if (auto pCopy = copier.Copy(pEntry))
            m_vParameters.push_back(pCopy.release());
}
