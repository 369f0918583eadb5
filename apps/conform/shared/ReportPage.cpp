#include "apps/conform/shared/ReportPage.h"

#include "apps/conform/shared/Report.h"
#include "apps/support/program/ProgramVersion.h"
#include "utils/UnicodeText.h"

#include <ctime>

namespace Tarvane::Conform
{
namespace
{

constexpr char szHead[] =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
    "<title>Conformance to Tarvane Link</title>\n<style>\n"
    "body { font: 15px/1.4 sans-serif; max-width: 60em; margin: 2em auto; padding: 0 1em; }\n"
    "td, th { text-align: left; vertical-align: top; padding: .3em .8em .3em 0; }\n"
    "tr { border-bottom: 1px solid #ccc; }\ntable { border-collapse: collapse; }\n"
    "p.summary { white-space: pre-line; }\n"
    "p.line { margin: .2em 0; color: #444; overflow-wrap: anywhere; }\n"
    ".kept { color: #060; } .broken { color: #b00; font-weight: bold; }\n"
    ".open { color: #850; }\n</style>\n</head>\n<body>\n";

// Text from outside: no markup, and nothing that a page cannot hold.
std::string Escaped(const std::string& strText)
{
    std::string strEscaped;
    for (const char c : IsUtf8(strText) ? strText : std::string("(no UTF-8)"))
    {
        if (c == '&')
            strEscaped += "&amp;";
        else if (c == '<')
            strEscaped += "&lt;";
        else if (c == '>')
            strEscaped += "&gt;";
        else
            strEscaped += static_cast<unsigned char>(c) < 0x20 && c != '\n' ? ' ' : c;
    }
    return strEscaped;
}

const char* ClassOf(Outcome outcome)
{
    return outcome == Outcome::Kept ? "kept" : outcome == Outcome::Broken ? "broken" : "open";
}

std::string Line(const std::string& strText)
{
    return strText.empty() ? "" : "<p class=\"line\">" + Escaped(strText) + "</p>\n";
}

std::string Row(const std::string& strParty, const Finding& finding)
{
    std::string strRow = "<tr><td>" + std::string(finding.rule.szId) + "</td><td class=\"" +
                         ClassOf(finding.outcome) + "\">" + NameOf(finding.outcome) + "</td><td>" +
                         Escaped(Sentence(strParty.c_str(), finding.rule)) + "\n" +
                         Line(finding.strSeen);
    for (const std::string& strTold : finding.told)
        strRow += Line(strTold);
    for (const std::string& strTried : finding.tried)
        strRow += Line("Tried: " + strTried);
    if (finding.outcome == Outcome::Broken)
        strRow += Line(std::string("Why it matters: ") + finding.rule.szWhy + ".");
    return strRow + "</td></tr>\n";
}

std::string Today()
{
    const std::time_t now = std::time(nullptr);
    char szDay[32] = "";
    std::strftime(szDay, sizeof szDay, "%Y-%m-%d", std::gmtime(&now));
    return szDay;
}

} // namespace

std::string ReportPage(const Subject& subject, const Findings& findings)
{
    std::string strPage =
        szHead +
        ("<h1>The " + Escaped(subject.strParty) +
         (Conforms(findings) ? " conforms" : " does not conform") + "</h1>\n<p>") +
        Escaped(subject.strName) + ", " +
        (subject.strVersion.empty() ? "of unknown version"
                                    : "version " + Escaped(subject.strVersion)) +
        ". Examined on " + Today() + " by tarvane-conform " + ProgramVersion() +
        ".</p>\n<p class=\"summary\">" + Escaped(SummaryText(findings)) +
        "</p>\n<table>\n<tr><th>Rule</th><th>Outcome</th><th></th></tr>\n";
    for (const Finding& finding : findings)
        strPage += Row(subject.strParty, finding);
    return strPage + "</table>\n</body>\n</html>\n";
}

} // namespace Tarvane::Conform
