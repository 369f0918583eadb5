#include "apps/server/session/BlockReader.h"

#include "apps/session/EntryPath.h"

#include <algorithm>

namespace Tarvane::Server
{

std::string CBlockReader::Text(const char* szName)
{
    std::string text;
    if (!m_block.FindParameter(szName, &text, nullptr))
        FailMissing("string", szName);
    ++m_nRead;
    return text;
}

template <class Parameter, typename T>
std::vector<T> CBlockReader::Values(const char* szBlock, const char* szName)
{
    return Block(szBlock,
                 [szName](CBlockReader& reader)
                 {
                     std::vector<T> values;
                     for (const CParameter* pEntry : reader.m_block.m_vParameters)
                     {
                         if (pEntry->m_nType == Parameter::kType && pEntry->m_strName == szName)
                             values.push_back(static_cast<const Parameter*>(pEntry)->m_nValue);
                     }
                     reader.m_nRead = values.size();
                     return values;
                 });
}

std::vector<std::int32_t> CBlockReader::Ints(const char* szBlock, const char* szName)
{
    return Values<CIntParameter, std::int32_t>(szBlock, szName);
}

std::vector<std::int64_t> CBlockReader::Int64s(const char* szBlock, const char* szName)
{
    return Values<CSInt64Parameter, std::int64_t>(szBlock, szName);
}

void CBlockReader::RequireAllRead() const
{
    if (m_nRead != m_block.m_vParameters.size())
        throw CSessionFlaw(Place() + " holds something twice or that does not belong there");
}

std::string CBlockReader::Place() const
{
    std::vector<Tarvane::Session::PathStep> steps;
    for (const CBlockReader* pReader = this; pReader->m_pAbove; pReader = pReader->m_pAbove)
        steps.push_back({pReader->m_szName, pReader->m_nIndex});
    std::reverse(steps.begin(), steps.end());
    return Tarvane::Session::FormatPath(steps);
}

void CBlockReader::FailMissing(const char* szType, const char* szName) const
{
    throw CSessionFlaw(Place() + " has no " + szType + " \"" + szName + "\"");
}

} // namespace Tarvane::Server
