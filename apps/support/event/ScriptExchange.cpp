#include "apps/support/event/ScriptExchange.h"

#include "apps/support/event/EventStatus.h"

#include <algorithm>

namespace Tarvane
{

namespace
{

constexpr std::size_t kWholeText = 1500; // but for those that are meant to be long

std::string TextOrNone(const std::optional<std::string>& text)
{
    return text ? QuotedText(*text, kWholeText) : "none";
}

std::string WhatCameBack(const ScriptExchange& exchange)
{
    if (exchange.nStatus == 0)
        return "'Rslt' " + TextOrNone(exchange.result) + ", 'Errr' " + TextOrNone(exchange.error);
    const std::string strCause = LikelyCause(exchange.nStatus);
    return "status " + std::to_string(exchange.nStatus) + "." +
           (strCause.empty() ? "" : " " + strCause);
}

} // namespace

std::vector<std::string> Told(const ScriptExchange& exchange)
{
    std::vector<std::string> told{"Sent: " + QuotedText(exchange.strScript, kWholeText),
                                  "Came back: " + WhatCameBack(exchange)};
    if (!exchange.strCarriersError.empty())
        told.push_back("The bus says: " + exchange.strCarriersError);
    return told;
}

std::string QuotedText(const std::string& strText, std::size_t nEnough)
{
    std::size_t nShown = std::min(nEnough, strText.size());
    // Not in the middle of a UTF-8 character.
    while (nShown > 0 && nShown < strText.size() && (strText[nShown] & 0xC0) == 0x80)
        nShown--;
    std::string strShown;
    for (const char c : strText.substr(0, nShown))
        strShown += c == '\n' ? std::string("\\n") : c == '\r' ? "\\r" : std::string(1, c);
    return "\"" + strShown + (nShown < strText.size() ? "...\"" : "\"");
}

} // namespace Tarvane
