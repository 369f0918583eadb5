#include "apps/link/doctor/Findings.h"

#include <algorithm>

namespace Tarvane::Link
{

namespace
{

constexpr std::size_t kVerdictWidth = 9;
constexpr std::size_t kCheckWidth = 16;

constexpr char szTraceHint[] =
    "TARVANE_AE_TRACE=1 in the environment, or --trace, shows every event and reply.\n";

std::string Padded(std::string strText, std::size_t nWidth)
{
    strText.resize(std::max(strText.size() + 1, nWidth), ' ');
    return strText;
}

// Later lines stand below the first.
std::string Indented(std::string strText)
{
    const std::string strBreak = "\n" + std::string(kVerdictWidth + kCheckWidth, ' ');
    std::size_t nAt = 0;
    while ((nAt = strText.find('\n', nAt)) != std::string::npos)
    {
        strText.replace(nAt, 1, strBreak);
        nAt += strBreak.size();
    }
    return strText;
}

} // namespace

const char* NameOf(Verdict verdict)
{
    switch (verdict)
    {
    case Verdict::Good:
        return "ok";
    case Verdict::Unknown:
        return "unknown";
    case Verdict::Warning:
        return "warning";
    case Verdict::Problem:
        break;
    }
    return "problem";
}

std::string FindingsText(const Findings& findings)
{
    const std::string strBelow(kVerdictWidth + kCheckWidth, ' ');
    std::string strText;
    bool fTold = false;
    for (const Finding& finding : findings)
    {
        strText += Padded(NameOf(finding.verdict), kVerdictWidth) +
                   Padded(finding.strCheck, kCheckWidth) + Indented(finding.strText) + "\n";
        if (!finding.strAdvice.empty())
            strText += strBelow + "-> " + Indented(finding.strAdvice) + "\n";
        for (const std::string& strLine : finding.told)
            strText += strBelow + Indented(strLine) + "\n";
        fTold |= !finding.told.empty();
    }
    return fTold ? strText + szTraceHint : strText;
}

nlohmann::ordered_json FindingsJson(const Findings& findings)
{
    auto array = nlohmann::ordered_json::array();
    for (const Finding& finding : findings)
        array.push_back({{"check", finding.strCheck},
                         {"verdict", NameOf(finding.verdict)},
                         {"text", finding.strText},
                         {"advice", finding.strAdvice},
                         {"told", finding.told}});
    return array;
}

Outcome OutcomeOf(const Findings& findings)
{
    const auto found =
        std::find_if(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.verdict == Verdict::Problem; });
    return found == findings.end() ? Outcome::Done : found->outcome;
}

} // namespace Tarvane::Link
