#include "apps/link/ServerChecks.h"

#include "apps/link/Contract.h"

#include "TarvaneLinkShared/ScriptNumbers.h"

#include <Carbon/Carbon.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

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
    std::size_t nShown = std::min(kEnough, reply.strPrinted.size());
    // Not in the middle of a UTF-8 character.
    while (nShown > 0 && (reply.strPrinted[nShown] & 0xC0) == 0x80)
        nShown--;
    std::string strText = reply.strPrinted.substr(0, nShown);
    std::replace(strText.begin(), strText.end(), '\n', '|');
    return "\"" + strText + (reply.strPrinted.size() > nShown ? "...\"" : "\"");
}

} // namespace

Finding CheckServer(const CExaminer& examiner)
{
    const auto reply = examiner.Ask("print(\"" + std::string(szSample) + "\")\n");
    if (!reply.Answered())
        return NoReplyFinding("server", reply);
    if (reply.Is(szSample))
        return {"server", Verdict::Good, "a server answers, and text comes back as it went"};
    return {"server", Verdict::Problem,
            "asked to print \"" + std::string(szSample) + "\", the server answered " +
                Printed(reply),
            "A server runs the script as Lua and answers with a line for each print, ended by a "
            "line feed, in UTF-16 of this machine's byte order.",
            Outcome::ServerError};
}

Finding CheckSilence(const CExaminer& examiner)
{
    const auto reply = examiner.Ask("local nothing\n");
    if (reply.nStatus == errAEDescNotFound)
        return {"silence", Verdict::Warning,
                "a script that prints nothing is answered without 'Rslt', which reads as a failure",
                "Put 'Rslt' into every reply, empty when nothing was printed."};
    if (!reply.Answered())
        return NoReplyFinding("silence", reply);
    if (reply.outcome == Outcome::Done && reply.strPrinted.empty())
        return {"silence", Verdict::Good, "a script that prints nothing has an empty result"};
    return {"silence", Verdict::Warning,
            "a script that prints nothing is answered with " + Printed(reply),
            "Put into 'Rslt' what the script printed, and nothing else."};
}

Finding CheckErrors(const CExaminer& examiner)
{
    const auto reply = examiner.Ask("error(\"asked for by tarvane-link\")\n");
    if (!reply.Answered())
        return NoReplyFinding("errors", reply);
    if (reply.outcome == Outcome::ServerError)
        return {"errors", Verdict::Good, "errors of scripts are reported"};
    return {"errors", Verdict::Warning,
            "a script that fails is answered without an error, so that a capture that went wrong "
            "looks delivered",
            "Put the text of a script's error into 'Errr', beside 'Rslt'."};
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
    for (const ContractFunction& function : ContractFunctions())
    {
        const auto reply = examiner.AskType(function.szName);
        if (!reply.Answered())
            return NoReplyFinding("functions", reply);
        if (reply.Is("function"))
            continue;
        nMissing++;
        strMissing += "\n" + std::string(function.szName) + ": " + function.szNeededBy;
        fCapturesFail |= function.fForCaptures;
    }
    const std::string strAll = std::to_string(ContractFunctions().size());
    if (nMissing == 0)
        return {"functions", Verdict::Good, "the server has all " + strAll + " functions"};
    return {"functions", fCapturesFail ? Verdict::Problem : Verdict::Warning,
            "the server lacks " + std::to_string(nMissing) + " of " + strAll + " functions",
            "Take a newer server, or do without what needs them:" + strMissing,
            fCapturesFail ? Outcome::ServerError : Outcome::Done};
}

Finding CheckDocument(const CExaminer& examiner)
{
    const auto reply = examiner.AskDocument("GetTrackCount()");
    if (!reply.Answered())
        return NoReplyFinding("document", reply);
    if (reply.outcome == Outcome::ServerError)
        return {"document", Verdict::Problem, "the tracks cannot be counted: " + reply.strMessage,
                "Make the document-select and track functions of the server work.",
                Outcome::ServerError};
    if (reply.strPrinted.empty())
        return {"document", Verdict::Problem, "the server has no document to work on",
                "Open a session in the server.", Outcome::ServerError};
    if (reply.Is("0"))
        return {"document", Verdict::Problem, "the document has no tracks",
                "Make a track in the server.", Outcome::ServerError};
    const long nTracks = LongFromText(reply.strPrinted.c_str());
    if (nTracks <= 0)
        return {"document", Verdict::Problem,
                "asked for the count of tracks, the server answered " + Printed(reply),
                "GetTrackCount gives a whole number, 0 or more.", Outcome::ServerError};
    return {"document", Verdict::Good,
            "the document's count of tracks is " + std::to_string(nTracks)};
}

} // namespace Tarvane::Link
