#include "apps/link/Examiner.h"

#include "TarvaneLinkShared/CommandResult.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"
#include "apps/support/EventStatus.h"
#include "utils/FileIO/FileName.h"

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
    CTarvaneScript link;
    CFileName file(strPath.c_str());
    Reply reply;
    reply.asked = {"CheckForDuplicateRegion()", std::chrono::steady_clock::now()};
    const bool fDuplicate =
        link.CheckDuplicateRegion(m_options.fAudioSuite, 0, &file, 0.0, 0.0, nFrames);
    reply.strMessage = link.m_strLastError;
    // The words about a duplicate are an answer, and no error.
    reply.outcome = fDuplicate ? Outcome::Done : OutcomeOf(link);
    return reply;
}

Finding NoReplyFinding(const std::string& strCheck, const CExaminer::Reply& reply)
{
    Finding finding{strCheck, Verdict::Problem, "", "", reply.outcome};
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
        finding.strAdvice = LikelyCause(reply.nStatus);
        finding.strAdvice += finding.strAdvice.empty() ? "" : " ";
        finding.strAdvice += "Run it again with --trace to see what came; a server answers class "
                             "'TKNE', id 'LCmd', with 'Rslt' as 'utxt' in every reply.";
        break;
    }
    return finding;
}

} // namespace Tarvane::Link
