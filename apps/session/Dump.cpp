#include "apps/session/Dump.h"

#include "apps/session/EntryText.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <vector>

namespace Tarvane::Session
{

namespace
{

constexpr int kTypeWidth = 7;
constexpr std::size_t kIndent = 2;

// Were every line indented, a tree as deep as its file is long would print the square of its size.
void DumpLevel(std::size_t nLevel, std::ostream& out)
{
    out << std::string(std::min(nLevel, kDeepestIndent) * kIndent, ' ');
    if (nLevel > kDeepestIndent)
        out << '[' << nLevel << "] ";
}

void DumpLine(const CParameter* pEntry, std::size_t nLevel, std::ostream& out)
{
    DumpLevel(nLevel, out);
    out << std::left << std::setw(kTypeWidth);
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
