#include "soak/Logs.h"

#include <cstdio>
#include <map>
#include <sstream>
#include <string_view>
#include <utility>

namespace Tarvane::Soak
{

namespace
{

constexpr const char* kAcknowledge = "64008 TNProperty_ElementDone: ";
constexpr std::string_view kEvent = "Z event ";
constexpr const char* kAddRegion = "AddAudioRegion(";
constexpr const char* kIndent = "    "; // of what is quoted in a server's log

bool Begins(const std::string& strLine, const char* szWith)
{
    return strLine.rfind(szWith, 0) == 0;
}

// The text between the first pair of double quotes.
std::string Quoted(const std::string& strLine)
{
    const size_t nBegin = strLine.find('"') + 1;
    return strLine.substr(nBegin, strLine.find('"', nBegin) - nBegin);
}

} // namespace

std::vector<Acknowledge> ReadAcknowledges(const std::string& strHostLog)
{
    std::vector<Acknowledge> acknowledges;
    std::istringstream lines(strHostLog);
    for (std::string strLine; std::getline(lines, strLine);)
    {
        if (!Begins(strLine, kAcknowledge))
            continue;
        Acknowledge read;
        const int nRead =
            std::sscanf(strLine.c_str() + std::char_traits<char>::length(kAcknowledge),
                        "nElement %d, fHandled %d, fNotDelivered %d, fFinal %d", &read.nElement,
                        &read.nHandled, &read.nNotDelivered, &read.nFinal);
        // A write of another size is told otherwise, and is no acknowledge of any element.
        acknowledges.push_back(nRead == 4 ? read : Acknowledge{-1, 0, 0, 0});
    }
    return acknowledges;
}

std::vector<ServerAnswer> ReadServerAnswers(const std::string& strServerLog)
{
    std::vector<ServerAnswer> answers;
    // What each event adds that has come and is not answered yet. A server begins to count anew,
    // and the number's next event takes the place of one that was never answered.
    std::map<std::string, std::string> added;
    enum
    {
        kIn,
        kResult,
        kError,
        kOther
    } part = kOther;
    std::string strEvent;
    ServerAnswer answer;
    const auto finish = [&]
    {
        if ((part == kResult || part == kError) && !answer.strPath.empty())
            answers.push_back(answer);
        answer = {};
    };
    std::istringstream lines(strServerLog);
    for (std::string strLine; std::getline(lines, strLine);)
    {
        if (const size_t nAt = strLine.find(kEvent);
            nAt != std::string::npos && !Begins(strLine, " "))
        {
            finish();
            std::istringstream words(strLine.substr(nAt + kEvent.size()));
            std::string strKind;
            words >> strEvent >> strKind;
            part = strKind == "in" ? kIn : strKind == "out" ? kResult : kOther;
            if (part == kIn)
                added[strEvent].clear();
            else if (part == kResult)
                answer.strPath = std::exchange(added[strEvent], {});
        }
        else if (part == kResult && strLine == "  error")
            part = kError;
        // Not the first line of the next server.
        else if (part == kError && Begins(strLine, kIndent))
            answer.strError += strLine.substr(std::char_traits<char>::length(kIndent));
        else if (const size_t nAt = strLine.find(kAddRegion);
                 part == kIn && nAt != std::string::npos)
            added[strEvent] = Quoted(strLine.substr(nAt));
    }
    finish();
    return answers;
}

} // namespace Tarvane::Soak
