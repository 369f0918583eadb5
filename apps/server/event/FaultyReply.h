// A command's reply on its way into the event, and what may go wrong with it on request.
#pragma once

#include "apps/server/command/CommandProcessor.h"
#include "apps/server/faults/Misbehaviour.h"

#include <Carbon/Carbon.h>

namespace Tarvane::Server
{

/// Puts 'Rslt', unless the command was refused, and, when there is an error, 'Errr' into the reply:
/// 'utxt', UTF-16 of this machine's byte order. Of the faults it knows those that change the reply.
/// The status is that of the first parameter that the reply did not take.
OSErr PutReply(AppleEvent* pReply, const CommandReply& reply, const FaultSet& faults);

} // namespace Tarvane::Server
