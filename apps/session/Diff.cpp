#include "apps/session/Diff.h"

#include "apps/session/EntryPath.h"
#include "apps/session/EntryText.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <unordered_map>
#include <utility>

namespace Tarvane::Session
{

namespace
{

// A pair of blocks still to be compared. Paths share their front parts, which a deep tree has many
// of.
struct Place
{
    std::shared_ptr<Place> pAbove;
    PathStep step;
    const CParameterBlock* pFirst;
    const CParameterBlock* pSecond;

    ~Place()
    {
        // One after the other: a chain as long as a tree is deep must not end by recursion.
        std::shared_ptr<Place> pNext = std::move(pAbove);
        while (pNext && pNext.use_count() == 1)
            pNext = std::exchange(pNext->pAbove, nullptr);
    }
};
using PlacePointer = std::shared_ptr<Place>;

struct Numbered
{
    const CParameter* pEntry;
    std::size_t nIndex; // among those of its name
};

std::vector<Numbered> Number(const CParameterBlock& block)
{
    std::unordered_map<std::string_view, std::size_t> counts;
    std::vector<Numbered> entries;
    for (const CParameter* pEntry : block.m_vParameters)
        if (pEntry)
            entries.push_back({pEntry, counts[std::string_view(pEntry->m_strName)]++});
    return entries;
}

bool SameKey(const Numbered& a, const Numbered& b)
{
    return a.nIndex == b.nIndex && a.pEntry->m_strName == b.pEntry->m_strName;
}

struct KeyHash
{
    std::size_t operator()(const Numbered& entry) const
    {
        return std::hash<std::string_view>()(entry.pEntry->m_strName) ^ entry.nIndex;
    }
};
struct KeyEqual
{
    bool operator()(const Numbered& a, const Numbered& b) const { return SameKey(a, b); }
};

std::string TypedValue(const CParameter& parameter)
{
    return std::string(TypeName(parameter.m_nType)) + " " + ValueText(parameter);
}

class CComparison
{
public:
    explicit CComparison(std::ostream& out) : m_out(out) {}

    std::size_t Run(const CParameterBlock& first, const CParameterBlock& second)
    {
        if (!(first.m_strName == second.m_strName))
            Report("~ / is named \"" + PrintableText(first.m_strName, "\"") + "\" -> \"" +
                   PrintableText(second.m_strName, "\"") + "\"");
        m_open.push_back(std::make_shared<Place>(Place{{}, {}, &first, &second}));
        while (!m_open.empty())
        {
            const PlacePointer pPlace = m_open.back();
            m_open.pop_back();
            Compare(pPlace);
        }
        return m_nDifferences;
    }

private:
    void Report(const std::string& strLine)
    {
        m_out << strLine << '\n';
        ++m_nDifferences;
    }

    void Compare(const PlacePointer& pPlace)
    {
        const auto first = Number(*pPlace->pFirst);
        const auto second = Number(*pPlace->pSecond);
        if (first.size() == second.size() &&
            std::equal(first.begin(), first.end(), second.begin(), SameKey))
        {
            for (std::size_t i = first.size(); i-- > 0;)
                Descend(pPlace, first[i], *second[i].pEntry);
            for (std::size_t i = 0; i < first.size(); ++i)
                CompareValues(pPlace, first[i], *second[i].pEntry);
            return;
        }
        Match(pPlace, first, second);
    }

    void Match(const PlacePointer& pPlace, const std::vector<Numbered>& first,
               const std::vector<Numbered>& second)
    {
        std::unordered_map<Numbered, const CParameter*, KeyHash, KeyEqual> unmatched;
        for (const Numbered& entry : second)
            unmatched.emplace(entry, entry.pEntry);
        const std::size_t nBefore = m_nDifferences;
        bool fAllMatched = true;
        for (const Numbered& entry : first)
        {
            const auto it = unmatched.find(entry);
            if (it == unmatched.end())
            {
                fAllMatched = false;
                Report("- " + PathOf(pPlace, entry) + " = " + TypedValue(*entry.pEntry));
                continue;
            }
            CompareValues(pPlace, entry, *it->second);
            Descend(pPlace, entry, *it->second);
            unmatched.erase(it);
        }
        for (const Numbered& entry : second)
            if (unmatched.count(entry) > 0)
                Report("+ " + PathOf(pPlace, entry) + " = " + TypedValue(*entry.pEntry));
        if (fAllMatched && unmatched.empty() && m_nDifferences == nBefore)
            Report("^ " + PathOf(pPlace, {nullptr, 0}));
    }

    void CompareValues(const PlacePointer& pPlace, const Numbered& first, const CParameter& second)
    {
        const bool fBlocks = first.pEntry->m_nType == CParameterBlock::kType &&
                             second.m_nType == CParameterBlock::kType;
        if (fBlocks || SameValue(*first.pEntry, second))
            return;
        Report("~ " + PathOf(pPlace, first) + " = " + TypedValue(*first.pEntry) + " -> " +
               TypedValue(second));
    }

    static bool SameValue(const CParameter& a, const CParameter& b)
    {
        return a.m_nType == b.m_nType && ValueText(a) == ValueText(b);
    }

    void Descend(const PlacePointer& pPlace, const Numbered& first, const CParameter& second)
    {
        if (first.pEntry->m_nType != CParameterBlock::kType ||
            second.m_nType != CParameterBlock::kType)
            return;
        m_open.push_back(
            std::make_shared<Place>(Place{pPlace,
                                          {first.pEntry->m_strName.str(), first.nIndex},
                                          static_cast<const CParameterBlock*>(first.pEntry),
                                          static_cast<const CParameterBlock*>(&second)}));
    }

    static std::string PathOf(const PlacePointer& pPlace, const Numbered& entry)
    {
        std::vector<PathStep> steps;
        if (entry.pEntry)
            steps.push_back({entry.pEntry->m_strName.str(), entry.nIndex});
        for (const Place* p = pPlace.get(); p->pAbove; p = p->pAbove.get())
            steps.push_back(p->step);
        std::reverse(steps.begin(), steps.end());
        return FormatPath(steps);
    }

    std::ostream& m_out;
    std::vector<PlacePointer> m_open;
    std::size_t m_nDifferences = 0;
};

} // namespace

std::size_t Diff(const CParameterBlock& first, const CParameterBlock& second, std::ostream& out)
{
    return CComparison(out).Run(first, second);
}

} // namespace Tarvane::Session
