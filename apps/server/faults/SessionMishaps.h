// What may happen to a session between two commands of a client, on request.
#pragma once

#include "apps/server/database/SessionDatabase.h"
#include "apps/server/faults/Misbehaviour.h"

namespace Tarvane::Server
{

/// Of the faults it knows those that befall tracks, in both documents; the others change nothing.
void Befall(CSessionDatabase& session, const FaultSet& faults);

} // namespace Tarvane::Server
