#include "apps/support/delivery/ServerWatch.h"

namespace Tarvane
{

// Nobody tells plain code here that an application has come up: what was unreachable is offered at
// the next start.
class CServerWatch::CThread
{
};

CServerWatch::CServerWatch(std::function<void()>) {}
CServerWatch::~CServerWatch() = default;

} // namespace Tarvane
