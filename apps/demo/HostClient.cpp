#include "apps/demo/HostClient.h"

#include "apps/support/text/Timecode.h"

#include <iomanip>
#include <sstream>

namespace Tarvane
{
namespace
{

using Clock = std::chrono::steady_clock;

// Long enough to open a window on a busy machine, with a server that does not answer.
constexpr std::chrono::minutes kStartTimeout{4};
constexpr std::chrono::milliseconds kSlice{100};

std::vector<std::string> WithCommands(std::vector<std::string> arguments)
{
    arguments.push_back("--commands");
    return arguments;
}

} // namespace

CHostClient::CHostClient(std::vector<std::string> arguments, std::function<bool()> fnBrokenOff)
    : m_process(WithCommands(std::move(arguments))), m_fnBrokenOff(std::move(fnBrokenOff)),
      m_ready(NextAnswer(kStartTimeout))
{
}

nlohmann::json CHostClient::NextAnswer(std::chrono::milliseconds timeout)
{
    const auto deadline = Clock::now() + timeout;
    while (!m_fnBrokenOff || !m_fnBrokenOff())
    {
        if (const auto strLine = m_process.WaitForLine("\"command\":", kSlice))
        {
            return nlohmann::json::parse(*strLine);
        }
        if (const auto nCode = m_process.WaitForEnd(std::chrono::milliseconds(0)))
        {
            throw std::runtime_error("the host has ended with code " + std::to_string(*nCode) +
                                     ": " + m_process.ErrorOutput());
        }
        if (Clock::now() >= deadline)
        {
            throw std::runtime_error("the host did not answer in time.");
        }
    }
    throw std::runtime_error("broken off.");
}

nlohmann::json CHostClient::Ask(const std::string& strCommand, std::chrono::milliseconds timeout)
{
    m_process.WriteLine(strCommand);
    nlohmann::json answer = NextAnswer(timeout);
    if (!answer.value("ok", false))
    {
        throw CHostRefusal(answer.value("error", "the host refused: ") + " (" + strCommand + ")");
    }
    return answer;
}

nlohmann::json CHostClient::Capture(const std::string& strFile, double dPosition,
                                    std::chrono::milliseconds timeout)
{
    std::ostringstream command;
    command << "capture " << std::quoted(strFile) << " " << FormatSamples(dPosition);
    return Ask(command.str(), timeout);
}

std::vector<nlohmann::json> CHostClient::Everything() const
{
    std::vector<nlohmann::json> answers;
    std::istringstream lines(m_process.Output());
    for (std::string strLine; std::getline(lines, strLine);)
    {
        nlohmann::json answer = nlohmann::json::parse(strLine, nullptr, false);
        if (answer.is_object())
        {
            answers.push_back(std::move(answer));
        }
    }
    return answers;
}

} // namespace Tarvane
