// Sends scripts to the server as its clients do.
#pragma once

#include <Carbon/Carbon.h>

#include <optional>
#include <string>
#include <string_view>

namespace TarvaneTest
{

struct CScriptAnswer
{
    OSErr nStatus = noErr;
    std::optional<std::string> result; ///< what 'Rslt' held; empty also for what is no 'utxt'
    std::optional<std::string> error;  ///< what 'Errr' held, likewise
};

/// No answer comes as late as that, unless it never comes.
constexpr SInt32 kAnyTicks = 100 * 60;

CScriptAnswer SendScript(std::string_view strScript, SInt32 nTicks = kAnyTicks);

/// The direct parameter as it is given; type 0 sends none. Without a reply being wanted the answer
/// is the status alone.
CScriptAnswer SendBytes(DescType nType, const std::string& bytes, SInt32 nTicks = kAnyTicks,
                        AESendMode nMode = kAEWaitReply);

} // namespace TarvaneTest
