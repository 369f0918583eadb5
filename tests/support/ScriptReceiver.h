#pragma once

#include <Carbon/Carbon.h>

#include <functional>
#include <string>

namespace TarvaneTests
{

/// What a script gets: fills the reply and returns the handler's status.
using ScriptAnswer = std::function<OSErr(const std::string& script, AppleEvent* pReply)>;

/// Puts a text, given in UTF-8, into a reply as the link reads it.
OSErr PutText(AppleEvent* pReply, AEKeyword key, const std::string& text);

/// The script that a command carries, as it came.
std::u16string ScriptIn(const AppleEvent* pEvent);

/// Receives the link's commands as an application with its server's signature would; for servers
/// that run no scripts. Prints szReady once commands can come, or why they cannot. Returns the
/// program's exit code, and that only in the latter case.
int ReceiveScripts(const char* szReady, ScriptAnswer answer);
/// The same for a handler of the events themselves, which is given pRefcon.
int ReceiveCommands(const char* szReady, AEEventHandlerProcPtr handler, void* pRefcon);

} // namespace TarvaneTests
