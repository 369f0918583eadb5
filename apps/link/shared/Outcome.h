// How a command fared, read from the words that the script link leaves for its user.
#pragma once

#include <string>

class CTarvaneScript;

namespace Tarvane::Link
{

enum class Outcome
{
    Done,
    ServerError, ///< the server answered that it could not, or would not
    NotRunning,
    TimedOut,
    NoAnswer, ///< the answer did not come, or makes no sense
};

/// Beside kExitDone, kExitFailed (the server's error) and kExitUsage.
constexpr int kExitNotRunning = 3;
constexpr int kExitTimedOut = 4;
constexpr int kExitNoAnswer = 5;

int ExitCodeOf(Outcome outcome);
/// "done", "server-error", "not-running", "timed-out", "no-answer".
const char* NameOf(Outcome outcome);
/// What --help says of the exit codes.
std::string ExitCodeHelp();

/// Of the last command of a link that holds no message from earlier ones. It goes by the two
/// messages, since most operations have no status to hand out: an error text of the server's own
/// that reads "AEError ID:" and a number passes for a status.
Outcome OutcomeOf(const CTarvaneScript& link);

/// The status of an event that failed, from its message; 0 when the message is of another kind.
int EventStatusIn(const std::string& strMessage);

/// What to do about an outcome where the two messages do not say it. Empty when there is nothing to
/// add.
std::string HintFor(Outcome outcome, const CTarvaneScript& link);

/// What to do about errAEEventNotPermitted, on whatever system it comes.
inline constexpr char szNotPermittedAdvice[] =
    "the system does not let this program send events to the server. On macOS allow it in System "
    "Settings, Privacy & Security, Automation; where the program is not listed there, its "
    "Info.plist lacks NSAppleEventsUsageDescription or, if it is hardened, its signature lacks the "
    "automation entitlement. On Linux a policy of the session bus forbids it.";

} // namespace Tarvane::Link
