// Looks on while the view delivers a take.
#pragma once

#include "plugin/view/DeliveryOutcome.h"

namespace Tarvane
{

// Every event of the process is looked at from then on, by nobody else. Once, before the view sends
// any.
void WatchDeliveries();

// The view has read a take's record, on the thread that delivers it.
void BeginDelivery();
// What has become of the take, whose acknowledge the view now writes; the same thread.
CDeliveryReport ConcludeDelivery(bool fNotDelivered);

} // namespace Tarvane
