// Between recorded parameters and events of the platform.
#pragma once

#include "apps/replay/Recording.h"

#include <Carbon/Carbon.h>

#include <set>

namespace Tarvane::Replay
{

/// Those of the keywords that the event or reply has.
Parameters ReadParameters(const AppleEvent* pEvent, const std::set<AEKeyword>& keywords);

/// Puts all into the event or reply. The status is that of the first that fails, 0 without one.
OSErr PutParameters(AppleEvent* pEvent, const Parameters& parameters);

} // namespace Tarvane::Replay
