#include "apps/host/Stalls.h"

#include <algorithm>
#include <cstdio>

namespace Tarvane
{
namespace
{

// In the order of StallCause.
constexpr std::array<const char*, kStallCauses> kWords{
    "opening",  "menu",     "track choice", "toggle",  "arming",
    "delivery", "progress", "drawing",      "closing",
};

double Milliseconds(CStalls::Duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

} // namespace

CStalls::CStay::CStay(CStalls& stalls, StallCause cause)
    : m_stalls(stalls), m_cause(cause), m_start(std::chrono::steady_clock::now())
{
    ++m_stalls.m_nDepth;
}

CStalls::CStay::~CStay()
{
    if (--m_stalls.m_nDepth == 0)
    {
        m_stalls.Add(m_cause, std::chrono::steady_clock::now() - m_start);
    }
}

void CStalls::Sum::Add(const Sum& other)
{
    nCount += other.nCount;
    total += other.total;
    longest = std::max(longest, other.longest);
}

void CStalls::Add(StallCause cause, Duration length)
{
    m_sums[static_cast<std::size_t>(cause)].Add({1, length, length});
}

CStalls::Sum CStalls::Whole() const
{
    Sum whole;
    for (const Sum& sum : m_sums)
    {
        whole.Add(sum);
    }
    return whole;
}

std::string CStalls::Tell() const
{
    char szLine[160];
    const Sum whole = Whole();
    std::snprintf(szLine, sizeof szLine,
                  "The view kept the main thread %.1f ms in all, %.1f ms at the longest\n",
                  Milliseconds(whole.total), Milliseconds(whole.longest));
    std::string strStory = szLine;
    for (std::size_t n = 0; n < kStallCauses; ++n)
    {
        const Sum& sum = m_sums[n];
        if (sum.nCount == 0)
        {
            continue;
        }
        std::snprintf(szLine, sizeof szLine,
                      "  %-12s %6d times %10.1f ms in all %10.1f ms at the longest\n", kWords[n],
                      sum.nCount, Milliseconds(sum.total), Milliseconds(sum.longest));
        strStory += szLine;
    }
    return strStory;
}

nlohmann::json CStalls::Describe() const
{
    const Sum whole = Whole();
    nlohmann::json causes = nlohmann::json::object();
    for (std::size_t n = 0; n < kStallCauses; ++n)
    {
        const Sum& sum = m_sums[n];
        if (sum.nCount > 0)
        {
            causes[kWords[n]] = {{"count", sum.nCount},
                                 {"total", Milliseconds(sum.total)},
                                 {"longest", Milliseconds(sum.longest)}};
        }
    }
    return {{"total", Milliseconds(whole.total)},
            {"longest", Milliseconds(whole.longest)},
            {"causes", causes}};
}

} // namespace Tarvane
