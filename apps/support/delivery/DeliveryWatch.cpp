#include "apps/support/delivery/DeliveryWatch.h"

namespace Tarvane
{

void CDeliveryWatch::TakeIn()
{
    for (const SeenCommand& command : m_commands.Take())
        m_outcome.Add(command);
}

void CDeliveryWatch::Begin(const TNCaptureElement& record)
{
    // An offset that was asked for in between counts as told.
    TakeIn();
    m_outcome.Begin(record);
}

CDeliveryReport CDeliveryWatch::Conclude(bool fNotDelivered)
{
    TakeIn();
    return m_outcome.Conclude(fNotDelivered);
}

} // namespace Tarvane
