#include "apps/session/Dump.h"

#include "apps/session/EntryText.h"

#include <iomanip>
#include <ostream>
#include <vector>

namespace Tarvane::Session
{

namespace
{

constexpr int kTypeWidth = 7;
constexpr std::size_t kIndent = 2;

void DumpLine(const CParameter* pEntry, std::size_t nLevel, std::ostream& out)
{
    out << std::string(nLevel * kIndent, ' ') << std::left << std::setw(kTypeWidth);
    if (!pEntry)
    {
        out << "?"
            << "an entry of unknown type\n";
        return;
    }
    out << TypeName(pEntry->m_nType) << '"' << PrintableText(pEntry->m_strName, "\"")
        << "\" = " << ValueText(*pEntry) << '\n';
}

struct Rest
{
    CParameterList::const_iterator it;
    CParameterList::const_iterator end;
};

} // namespace

void Dump(const CParameter& top, std::size_t nDepth, std::ostream& out)
{
    std::vector<Rest> open;
    const auto dump = [&](const CParameter* pEntry)
    {
        DumpLine(pEntry, open.size(), out);
        if (!pEntry || pEntry->m_nType != CParameterBlock::kType || open.size() >= nDepth)
            return;
        const auto& entries = static_cast<const CParameterBlock&>(*pEntry).m_vParameters;
        open.push_back({entries.begin(), entries.end()});
    };
    dump(&top);
    while (!open.empty())
    {
        if (open.back().it == open.back().end)
            open.pop_back();
        else
            dump(*open.back().it++);
    }
}

} // namespace Tarvane::Session
