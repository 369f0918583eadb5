#include "apps/link/shared/Outcome.h"

#include "apps/support/program/CommandLine.h"

#include "TarvaneLinkShared/ScriptTexts.h"
#include "TarvaneLinkShared/TarvaneLinkScript.h"

#include <Carbon/Carbon.h>

#include <charconv>
#include <string_view>

namespace Tarvane::Link
{

namespace
{

constexpr std::string_view kEventError = "AEError ID:";

const char* HintForStatus(int nStatus)
{
    switch (nStatus)
    {
    case connectionInvalid:
        return "the server or the bus went away before the answer; whether the command took effect "
               "is not known. Start the server again and look.";
    case errAEDescNotFound:
        return "the server's reply has no 'Rslt', and says no reason. A server leaves it out only "
               "for a change that it did not make.";
    case errAECoercionFail:
        return "the server's 'Rslt' is not of type 'utxt'. Text travels as UTF-16 of this "
               "machine's byte order.";
    case errAEEventNotHandled:
        return "the application of that signature takes no script events. A server handles class "
               "'TKNE', id 'LCmd'.";
    case errAEEventNotPermitted:
        return szNotPermittedAdvice;
    case bufferIsSmall:
        return "the script or the answer is over 16 MiB. Ask for less at a time.";
    default:
        return "the event failed with this status; --trace shows what went out and what came back.";
    }
}

} // namespace

int ExitCodeOf(Outcome outcome)
{
    switch (outcome)
    {
    case Outcome::Done:
        return kExitDone;
    case Outcome::ServerError:
        return kExitFailed;
    case Outcome::NotRunning:
        return kExitNotRunning;
    case Outcome::TimedOut:
        return kExitTimedOut;
    case Outcome::NoAnswer:
        break;
    }
    return kExitNoAnswer;
}

const char* NameOf(Outcome outcome)
{
    switch (outcome)
    {
    case Outcome::Done:
        return "done";
    case Outcome::ServerError:
        return "server-error";
    case Outcome::NotRunning:
        return "not-running";
    case Outcome::TimedOut:
        return "timed-out";
    case Outcome::NoAnswer:
        break;
    }
    return "no-answer";
}

std::string ExitCodeHelp()
{
    return "Exit codes: 0 done, 1 the server reported an error, 2 wrong use or unusable input, "
           "3 the server is not running, 4 no answer within the timeout, 5 no usable answer: the "
           "server or the bus went away, refused the event, or answered what makes no sense.";
}

int EventStatusIn(const std::string& strMessage)
{
    if (strMessage.compare(0, kEventError.size(), kEventError) != 0)
        return noErr;
    const char* const pEnd = strMessage.data() + strMessage.size();
    int nStatus = noErr;
    const auto [pStop, error] =
        std::from_chars(strMessage.data() + kEventError.size(), pEnd, nStatus);
    return error == std::errc() && pStop == pEnd ? nStatus : int(noErr);
}

Outcome OutcomeOf(const CTarvaneScript& link)
{
    if (link.m_strLastError.empty())
        return Outcome::Done;
    // The advice tells the link's own words from a server that says the same.
    if (link.m_strLastError == strTarvaneNotRunning &&
        link.m_strAdvice == strTarvaneNotRunningAdvice)
        return Outcome::NotRunning;
    switch (EventStatusIn(link.m_strLastError))
    {
    case noErr:
        return Outcome::ServerError;
    case errAETimeout:
        return Outcome::TimedOut;
    default:
        return Outcome::NoAnswer;
    }
}

std::string HintFor(Outcome outcome, const CTarvaneScript& link)
{
    switch (outcome)
    {
    case Outcome::NotRunning:
        return "\"tarvane-link doctor\" tells a missing bus from a missing server.";
    case Outcome::TimedOut:
        return "the server may still be at work on the command. Wait until it answers again; "
               "--timeout sets how long to wait.";
    case Outcome::NoAnswer:
        if (const int nStatus = EventStatusIn(link.m_strLastError))
            return HintForStatus(nStatus);
        return "the server's answer does not have the lines that this command reads; --trace shows "
               "it.";
    default:
        return {};
    }
}

} // namespace Tarvane::Link
