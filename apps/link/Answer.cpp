#include "apps/link/Answer.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <iostream>
#include <stdexcept>

namespace Tarvane::Link
{

std::string JsonLine(const nlohmann::ordered_json& json)
{
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

nlohmann::ordered_json ToJson(const std::string& strCommand, const Answer& answer,
                              const CTarvaneScript& link)
{
    nlohmann::ordered_json json;
    json["command"] = strCommand;
    json["outcome"] = NameOf(answer.outcome);
    json["exitCode"] = ExitCodeOf(answer.outcome);
    json["lastError"] = link.m_strLastError;
    json["advice"] = link.m_strAdvice;
    json.update(answer.fields);
    return json;
}

void TellMessages(Outcome outcome, const CTarvaneScript& link)
{
    for (const std::string& strLine : {link.m_strLastError, link.m_strAdvice})
    {
        if (!strLine.empty())
            std::cerr << strLine << "\n";
    }
    const std::string strHint = HintFor(outcome, link);
    if (!strHint.empty())
        std::cerr << "tarvane-link: " << strHint << "\n";
    std::cerr.flush();
}

void Print(const std::string& strText)
{
    std::cout << strText << std::flush;
    if (!std::cout)
        throw std::runtime_error("the standard output takes no more");
}

} // namespace Tarvane::Link
