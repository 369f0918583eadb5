#include "apps/conform/shared/Report.h"

#include <algorithm>
#include <utility>

namespace Tarvane::Conform
{
namespace
{

const char* NameOf(Level level)
{
    return level == Level::Must ? "MUST" : "SHOULD";
}

long Count(const Findings& findings, Level level, Outcome outcome)
{
    return std::count_if(findings.begin(), findings.end(),
                         [=](const Finding& finding)
                         { return finding.rule.level == level && finding.outcome == outcome; });
}

std::string Summary(const Findings& findings, Level level)
{
    return std::string(NameOf(level)) + ": " +
           std::to_string(Count(findings, level, Outcome::Kept)) + " kept, " +
           std::to_string(Count(findings, level, Outcome::Broken)) + " broken, " +
           std::to_string(Count(findings, level, Outcome::NotExamined)) + " not examined\n";
}

} // namespace

std::string Sentence(const char* szParty, const Rule& rule)
{
    return std::string("The ") + szParty + " " + NameOf(rule.level) + " " + rule.szText + ".";
}

std::string SummaryText(const Findings& findings)
{
    return Summary(findings, Level::Must) + Summary(findings, Level::Should);
}

const char* NameOf(Outcome outcome)
{
    switch (outcome)
    {
    case Outcome::Kept:
        return "kept";
    case Outcome::Broken:
        return "broken";
    case Outcome::NotExamined:
        break;
    }
    return "not examined";
}

namespace
{

std::string Lines(const char* szBefore, const std::vector<std::string>& lines)
{
    std::string strText;
    for (const std::string& strLine : lines)
        strText += szBefore + strLine + "\n";
    return strText;
}

std::string FindingText(const char* szParty, const Finding& finding)
{
    std::string strText = std::string(finding.rule.szId) + " " + NameOf(finding.outcome) + ": " +
                          Sentence(szParty, finding.rule) + "\n" +
                          Lines("    Tried: ", finding.tried);
    if (finding.outcome != Outcome::Kept)
        strText += "    " + finding.strSeen + "\n" + Lines("    ", finding.told);
    if (finding.outcome == Outcome::Broken)
        strText += std::string("    Why it matters: ") + finding.rule.szWhy + ".\n";
    return strText;
}

std::string FindingsWith(const char* szParty, const Findings& findings, Outcome outcome)
{
    std::string strText;
    for (const Finding& finding : findings)
        if (finding.outcome == outcome)
            strText += FindingText(szParty, finding);
    return strText;
}

// One line for all that share a reason.
std::string NotExaminedText(const Findings& findings)
{
    std::vector<std::pair<std::string, std::string>> reasons; // and the rules
    for (const Finding& finding : findings)
    {
        if (finding.outcome != Outcome::NotExamined)
            continue;
        const auto found =
            std::find_if(reasons.begin(), reasons.end(),
                         [&](const auto& reason) { return reason.first == finding.strSeen; });
        if (found == reasons.end())
            reasons.emplace_back(finding.strSeen, finding.rule.szId);
        else
            found->second += std::string(", ") + finding.rule.szId;
    }
    std::string strText;
    for (const auto& [strReason, strRules] : reasons)
        strText += strRules + " not examined: " + strReason + "\n";
    return strText;
}

} // namespace

std::string FindingsText(const char* szParty, const Findings& findings)
{
    return FindingsWith(szParty, findings, Outcome::Kept) + NotExaminedText(findings) +
           FindingsWith(szParty, findings, Outcome::Broken) + SummaryText(findings);
}

nlohmann::ordered_json FindingsJson(const char* szParty, const Findings& findings)
{
    auto rules = nlohmann::ordered_json::array();
    for (const Finding& finding : findings)
        rules.push_back({{"rule", finding.rule.szId},
                         {"level", NameOf(finding.rule.level)},
                         {"text", Sentence(szParty, finding.rule)},
                         {"outcome", NameOf(finding.outcome)},
                         {"seen", finding.strSeen},
                         {"told", finding.told},
                         {"tried", finding.tried}});
    return {{"party", szParty}, {"conforms", Conforms(findings)}, {"rules", rules}};
}

std::string RulesText(const char* szParty, const std::vector<Rule>& rules)
{
    std::string strText;
    for (const Rule& rule : rules)
        strText += std::string(rule.szId) + " " + Sentence(szParty, rule) +
                   "\n    Why: " + rule.szWhy + ".\n";
    return strText;
}

bool Conforms(const Findings& findings)
{
    return Count(findings, Level::Must, Outcome::Kept) ==
           std::count_if(findings.begin(), findings.end(),
                         [](const Finding& finding) { return finding.rule.level == Level::Must; });
}

} // namespace Tarvane::Conform
