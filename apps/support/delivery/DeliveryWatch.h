// Looks on while a view of this process delivers takes.
#pragma once

#include "apps/support/delivery/DeliveryOutcome.h"

namespace Tarvane
{

/// The commands of the process are to be shown to the watch that it is given, see WatchEvents;
/// where the system shows them to nobody, the acknowledge alone counts. On the delivering thread.
class CDeliveryWatch
{
public:
    explicit CDeliveryWatch(CCommandWatch& commands) : m_commands(commands) {}

    /// The view has read this record.
    void Begin(const TNCaptureElement& record);
    /// What has become of the take, whose acknowledge the view now writes.
    CDeliveryReport Conclude(bool fNotDelivered);

private:
    void TakeIn();

    CCommandWatch& m_commands;
    CDeliveryOutcome m_outcome;
};

} // namespace Tarvane
