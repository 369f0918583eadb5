#include "soak/Logs.h"

#include <cstdio>
#include <sstream>

namespace Tarvane::Soak
{

namespace
{

constexpr const char* kAcknowledge = "64008 TNProperty_ElementDone: ";
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
    std::string strPath; // that the event at hand adds
    std::string strError;
    bool fAnswered = false, fInError = false;
    const auto finish = [&]
    {
        if (fAnswered && !strPath.empty())
            answers.push_back({strPath, strError});
        strPath.clear();
        strError.clear();
        fAnswered = fInError = false;
    };
    std::istringstream lines(strServerLog);
    for (std::string strLine; std::getline(lines, strLine);)
    {
        if (strLine.find("Z event ") != std::string::npos && !Begins(strLine, " "))
        {
            const bool fOut = strLine.size() > 4 && strLine.substr(strLine.size() - 4) == " out";
            if (!fOut)
                finish();
            fAnswered = fOut;
        }
        else if (fAnswered)
        {
            if (strLine == "  error")
                fInError = true;
            // Not the first line of the next server.
            else if (fInError && Begins(strLine, kIndent))
                strError += strLine.substr(std::char_traits<char>::length(kIndent));
        }
        else if (const size_t nAt = strLine.find(kAddRegion); nAt != std::string::npos)
        {
            strPath = Quoted(strLine.substr(nAt));
        }
    }
    finish();
    return answers;
}

} // namespace Tarvane::Soak
