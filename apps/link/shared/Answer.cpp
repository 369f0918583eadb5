#include "apps/link/shared/Answer.h"

#include "apps/support/text/PlainText.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <iostream>
#include <stdexcept>

namespace Tarvane::Link
{

std::string JsonLine(const nlohmann::ordered_json& json)
{
    return json.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

void NoteRefusal(Answer& answer, const std::vector<SeenCommand>& commands)
{
    if (commands.empty() || !commands.back().IsRefused())
        return;
    answer.outcome = Outcome::ServerError;
    answer.strRefusal = commands.back().strError;
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
    if (!answer.strRefusal.empty())
        json["refusal"] = answer.strRefusal;
    json.update(answer.fields);
    return json;
}

void TellMessages(const Answer& answer, const CTarvaneScript& link)
{
    for (const std::string& strLine : {link.m_strLastError, link.m_strAdvice})
    {
        if (!strLine.empty())
            std::cerr << PlainText(strLine) << "\n";
    }
    if (!answer.strRefusal.empty())
        std::cerr << "tarvane-link: the server did not do it: " << PlainText(answer.strRefusal)
                  << "\n";
    const std::string strHint = HintFor(answer.outcome, link);
    if (!strHint.empty())
        std::cerr << "tarvane-link: " << strHint << "\n";
    std::cerr.flush();
}

void Print(const std::string& strText)
{
    std::cout << PlainText(strText) << std::flush;
    if (!std::cout)
        throw std::runtime_error("the standard output takes no more");
}

} // namespace Tarvane::Link
