#include "apps/link/doctor/Examiner.h"

#include "apps/link/doctor/EventBus.h"

#include "TarvaneLinkShared/CommandResult.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <Carbon/Carbon.h>

namespace Tarvane::Link
{

CExaminer::Reply CExaminer::Ask(const std::string& strScript) const
{
    CTarvaneScript link;
    CCommandResult result;
    Reply reply;
    reply.asked = {strScript, std::chrono::steady_clock::now()};
    reply.nStatus = link.SendCommand(strScript.c_str(), result.Receive(), m_options.TimeoutTicks());
    reply.outcome = OutcomeOf(link);
    reply.strPrinted = result.Text() != nullptr ? result.Text() : "";
    reply.strMessage = link.m_strLastError;
    reply.exchange = {strScript, reply.nStatus, {}, {}, CarriersError()};
    if (result.Text() != nullptr)
        reply.exchange.result = reply.strPrinted;
    if (reply.outcome == Outcome::ServerError)
        reply.exchange.error = reply.strMessage;
    return reply;
}

CExaminer::Reply CExaminer::AskDocument(const std::string& strExpression) const
{
    const std::string strSelect =
        m_options.fAudioSuite ? "SelectAudioSuiteDocument" : "SelectScriptDocument";
    return Ask("if " + strSelect + "() then\nprint(" + strExpression + ")\nend\n");
}

CExaminer::Reply CExaminer::AskType(const std::string& strFunction) const
{
    return Ask("print(type(" + strFunction + "))\n");
}

CExaminer::Reply CExaminer::AskDuplicate(const std::string& strPath, int nFrames) const
{
    return AskDocument("CheckForDuplicateRegion(GetTrackID(0), \"" + strPath + "\",0,0," +
                       std::to_string(nFrames) + ")");
}

Finding Seen(Finding finding, const CExaminer::Reply& reply)
{
    finding.told = Told(reply.exchange);
    return finding;
}

Finding NoReplyFinding(const std::string& strCheck, const CExaminer::Reply& reply)
{
    Finding finding = Seen({strCheck, Verdict::Problem, "", "", reply.outcome}, reply);
    if (reply.nStatus == errAEEventNotPermitted)
    {
        finding.strText = "events to the server are forbidden: " + reply.strMessage;
        finding.strAdvice = szNotPermittedAdvice;
        finding.strAdvice[0] = 'T';
        return finding;
    }
    switch (reply.outcome)
    {
    case Outcome::NotRunning:
        finding.strText = "no server receives events on this bus";
        finding.strAdvice = "Start the server, in this session; tarvane-server is one.";
        break;
    case Outcome::TimedOut:
        finding.strText =
            "the server is there and did not answer within the timeout: " + TextOf(reply.asked);
        finding.strAdvice = "Look whether it waits for its user or hangs, and restart it if so; "
                            "--timeout waits longer.";
        break;
    default:
        finding.strText = "the server did not give an answer that can be read: " + reply.strMessage;
        finding.strAdvice = "A server answers class 'TKNE', id 'LCmd', with 'Rslt' as 'utxt' in "
                            "every reply.";
        break;
    }
    return finding;
}

} // namespace Tarvane::Link
