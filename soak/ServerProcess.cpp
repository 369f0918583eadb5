#include "soak/ServerProcess.h"

#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "soak/ProcessSample.h"

#include <memory>
#include <stdexcept>
#include <thread>

namespace Tarvane::Soak
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::minutes kPatience{2};
constexpr std::chrono::milliseconds kPause{10};
constexpr int kAnswerTicks = 120;

bool Answers()
{
    CTarvaneScript script;
    char* pResult = nullptr;
    const int nStatus = script.SendCommand("print(GetUpdateCount())\n", &pResult, kAnswerTicks);
    const std::unique_ptr<char[]> result(pResult);
    return nStatus == 0;
}

} // namespace

CServerProcess::CServerProcess(std::filesystem::path session) : m_session(std::move(session))
{
    Restart();
}

void CServerProcess::Restart()
{
    m_process.emplace(std::vector<std::string>{ProgramFolder() / "tarvane-server", "--session",
                                               m_session, "--track", "Dialogue", "--track", "ADR",
                                               "--track", "Foley", "--track", "Ambience",
                                               "--link-offset", kLinkOffsetText, "--log", "-"});
    if (!m_process->WaitForLine("ready", kPatience))
        throw std::runtime_error("the server did not start: " + m_process->ErrorOutput());
    AwaitAnswer();
    m_first = SampleProcess(m_process->Pid());
}

void CServerProcess::AwaitAnswer() const
{
    const auto deadline = Clock::now() + kPatience;
    while (!Answers())
    {
        if (Clock::now() > deadline)
            throw std::runtime_error("the server answers no more: " + m_process->ErrorOutput());
        std::this_thread::sleep_for(kPause);
    }
}

void CServerProcess::Kill()
{
    m_process->Kill();
    m_process->WaitForEnd(kPatience);
    KeepLogs();
}

int CServerProcess::Close()
{
    m_process->Terminate();
    const auto nCode = m_process->WaitForEnd(kPatience);
    KeepLogs();
    return nCode.value_or(-1);
}

void CServerProcess::KeepLogs()
{
    m_strLog += m_process->Output();
    // A record that was cut short ends here.
    if (!m_strLog.empty() && m_strLog.back() != '\n')
        m_strLog += '\n';
    m_strErrorLog += m_process->ErrorOutput();
}

} // namespace Tarvane::Soak
