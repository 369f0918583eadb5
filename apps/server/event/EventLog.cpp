#include "apps/server/event/EventLog.h"

#include "apps/support/text/PlainText.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace Tarvane::Server
{

namespace
{

std::string Now()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto nMilliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    const std::time_t nSeconds = static_cast<std::time_t>(nMilliseconds / 1000);
    std::tm parts{};
    gmtime_r(&nSeconds, &parts);
    char day[32];
    std::strftime(day, sizeof day, "%Y-%m-%dT%H:%M:%S", &parts);
    char text[64];
    std::snprintf(text, sizeof text, "%s.%03dZ", day, static_cast<int>(nMilliseconds % 1000));
    return text;
}

void WriteIndented(std::ostream& stream, std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t nEnd = std::min(text.find_first_of("\r\n"), text.size());
        stream << "    " << PlainText(text.substr(0, nEnd)) << '\n';
        text.remove_prefix(std::min(nEnd + 1, text.size()));
    }
}

std::string InOneLine(std::string strText)
{
    std::replace(strText.begin(), strText.end(), '\n', '.');
    return strText;
}

} // namespace

CEventLog::CEventLog(const std::string& strFile)
{
    if (strFile.empty())
        return;
    if (strFile == "-")
    {
        m_pStream = &std::cout;
        return;
    }
    m_pFile = std::make_unique<std::ofstream>(strFile, std::ios::app);
    if (!*m_pFile)
        throw std::runtime_error("cannot open the log file " + strFile +
                                 "; name a file that can be written, or - for the output");
    m_pStream = m_pFile.get();
}

void CEventLog::In(std::int64_t nEvent, std::string_view strScript)
{
    if (m_pStream == nullptr)
        return;
    Begin(nEvent, "in");
    WriteIndented(*m_pStream, strScript);
    End();
}

void CEventLog::Faults(std::int64_t nEvent, const std::vector<std::string>& names)
{
    if (m_pStream == nullptr || names.empty())
        return;
    std::string strWhat = "faults";
    for (const std::string& strName : names)
        strWhat += " " + strName;
    Begin(nEvent, strWhat.c_str());
    End();
}

void CEventLog::Out(std::int64_t nEvent, const CommandReply& reply)
{
    if (m_pStream == nullptr)
        return;
    Begin(nEvent, "out");
    *m_pStream << (reply.fRefused ? "  no result\n" : "  result\n");
    WriteIndented(*m_pStream, reply.strResult);
    *m_pStream << "  error\n";
    WriteIndented(*m_pStream, reply.strError);
    End();
}

void CEventLog::Change(std::int64_t nEvent, std::int64_t nProcess, const std::string& strProgram)
{
    if (m_pStream == nullptr)
        return;
    Begin(nEvent, PlainText("changed the session, sent by " + std::to_string(nProcess) + " " +
                            InOneLine(strProgram))
                      .c_str());
    End();
}

void CEventLog::Begin(std::int64_t nEvent, const char* szWhat)
{
    *m_pStream << Now() << " event " << nEvent << ' ' << szWhat << '\n';
}

void CEventLog::End()
{
    m_pStream->flush();
    if (m_pStream->good())
        return;
    // A full disk must not keep the server from its work; later records may find room again.
    m_pStream->clear();
    if (!m_fTroubleTold)
        std::fputs("tarvane-server: the log could not be written; records are missing in it\n",
                   stderr);
    m_fTroubleTold = true;
}

} // namespace Tarvane::Server
