#include "apps/link/doctor/ServerChecks.h"

#include "apps/link/doctor/Contract.h"

#include "TarvaneLinkShared/ScriptNumbers.h"

#include <Carbon/Carbon.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <utility>

namespace Tarvane::Link
{

namespace
{

// Two bytes, three and four in UTF-8; one unit, one and two in UTF-16.
constexpr char szSample[] = "V\xC3\xB6x \xE5\xA3\xB0 \xF0\x9F\x8E\x99";

constexpr int kRounds = 20;
// A command holds the host's user interface for as long as it takes.
constexpr double kNoticeableMilliseconds = 100.0;

double Milliseconds(std::chrono::steady_clock::duration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

std::string Text(double dMilliseconds)
{
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), "%.2f ms", dMilliseconds);
    return text.data();
}

std::string Printed(const CExaminer::Reply& reply)
{
    constexpr std::size_t kEnough = 60;
    if (reply.outcome == Outcome::ServerError)
        return "the error \"" + reply.strMessage + "\"";
    return QuotedText(reply.strPrinted, kEnough);
}

} // namespace

Finding CheckServer(const CExaminer& examiner)
{
    const auto reply = examiner.Ask("print(\"" + std::string(szSample) + "\")\n");
    if (!reply.Answered())
        return NoReplyFinding("server", reply);
    if (reply.Is(szSample))
        return {"server", Verdict::Good, "a server answers, and text comes back as it went"};
    return Seen(
        {"server", Verdict::Problem,
         "asked to print \"" + std::string(szSample) + "\", the server answered " + Printed(reply),
         "A server runs the script as Lua and answers with a line for each print, ended by "
         "a line feed, in UTF-16 of this machine's byte order.",
         Outcome::ServerError},
        reply);
}

Finding CheckVersion(const CExaminer& examiner)
{
    const auto reply = examiner.Ask(szVersionScript);
    if (!reply.Answered())
        return NoReplyFinding("version", reply);
    if (reply.outcome == Outcome::ServerError)
        return Seen({"version", Verdict::Warning, "the server does not tell its version",
                     "GetLinkVersion answers with the version as a text; a server without one "
                     "leaves the function out."},
                    reply);
    const std::string strLine = reply.strPrinted.substr(0, reply.strPrinted.find_first_of("\r\n"));
    if (strLine.empty())
        return {"version", Verdict::Good, "the server has no version to tell, and need not"};
    return {"version", Verdict::Good, "the server's version is " + QuotedText(strLine)};
}

Finding CheckSilence(const CExaminer& examiner)
{
    const auto reply = examiner.Ask("local nothing\n");
    if (reply.nStatus == errAEDescNotFound)
        return Seen(
            {"silence", Verdict::Warning,
             "a script that prints nothing is answered without 'Rslt', which reads as a failure",
             "Put 'Rslt' into every reply, empty when nothing was printed."},
            reply);
    if (!reply.Answered())
        return NoReplyFinding("silence", reply);
    if (reply.outcome == Outcome::Done && reply.strPrinted.empty())
        return {"silence", Verdict::Good, "a script that prints nothing has an empty result"};
    return Seen({"silence", Verdict::Warning,
                 "a script that prints nothing is answered with " + Printed(reply),
                 "Put into 'Rslt' what the script printed, and nothing else."},
                reply);
}

Finding CheckErrors(const CExaminer& examiner)
{
    const auto reply = examiner.Ask("error(\"asked for by tarvane-link\")\n");
    if (!reply.Answered())
        return NoReplyFinding("errors", reply);
    if (reply.outcome == Outcome::ServerError)
        return {"errors", Verdict::Good, "errors of scripts are reported"};
    return Seen({"errors", Verdict::Warning,
                 "a script that fails is answered without an error, so that a capture that went "
                 "wrong looks delivered",
                 "Put the text of a script's error into 'Errr', beside 'Rslt'."},
                reply);
}

Finding CheckSpeed(const CExaminer& examiner)
{
    std::vector<double> times;
    for (int nRound = 0; nRound < kRounds; nRound++)
    {
        const auto start = std::chrono::steady_clock::now();
        const auto reply = examiner.Ask("print(1)\n");
        if (!reply.Answered())
            return NoReplyFinding("speed", reply);
        times.push_back(Milliseconds(std::chrono::steady_clock::now() - start));
    }
    std::sort(times.begin(), times.end());
    const double dMedian = times[times.size() / 2];
    Finding finding{"speed", Verdict::Good,
                    "a command takes " + Text(dMedian) + " in the middle, " + Text(times.back()) +
                        " at most, of " + std::to_string(kRounds)};
    if (dMedian > kNoticeableMilliseconds)
    {
        finding.verdict = Verdict::Warning;
        finding.strAdvice = "The host's windows stand still while a command waits; let the server "
                            "answer events before other work.";
    }
    return finding;
}

Finding CheckFunctions(const CExaminer& examiner)
{
    int nMissing = 0;
    std::string strMissing;
    bool fCapturesFail = false;
    CExaminer::Reply missing; // the last
    for (const ContractFunction& function : ContractFunctions())
    {
        const auto reply = examiner.AskType(function.szName);
        if (!reply.Answered())
            return NoReplyFinding("functions", reply);
        if (reply.Is("function"))
            continue;
        missing = reply;
        nMissing++;
        strMissing += "\n" + std::string(function.szName) + ": " + function.szNeededBy;
        fCapturesFail |= function.fForCaptures;
    }
    const std::string strAll = std::to_string(ContractFunctions().size());
    if (nMissing == 0)
        return {"functions", Verdict::Good, "the server has all " + strAll + " functions"};
    return Seen({"functions", fCapturesFail ? Verdict::Problem : Verdict::Warning,
                 "the server lacks " + std::to_string(nMissing) + " of " + strAll + " functions",
                 "Take a newer server, or do without what needs them:" + strMissing,
                 fCapturesFail ? Outcome::ServerError : Outcome::Done},
                missing);
}

Finding CheckDocument(const CExaminer& examiner)
{
    const auto reply = examiner.AskDocument("GetTrackCount()");
    if (!reply.Answered())
        return NoReplyFinding("document", reply);
    const auto problem = [&reply](std::string strText, std::string strAdvice)
    {
        return Seen({"document", Verdict::Problem, std::move(strText), std::move(strAdvice),
                     Outcome::ServerError},
                    reply);
    };
    if (reply.outcome == Outcome::ServerError)
        return problem("the tracks cannot be counted: " + reply.strMessage,
                       "Make the document-select and track functions of the server work.");
    if (reply.strPrinted.empty())
        return problem("the server has no document to work on", "Open a session in the server.");
    if (reply.Is("0"))
        return problem("the document has no tracks", "Make a track in the server.");
    const long nTracks = LongFromText(reply.strPrinted.c_str());
    if (nTracks <= 0)
        return problem("asked for the count of tracks, the server answered " + Printed(reply),
                       "GetTrackCount gives a whole number, 0 or more.");
    return {"document", Verdict::Good,
            "the document's count of tracks is " + std::to_string(nTracks)};
}

} // namespace Tarvane::Link
