#include "apps/support/ServiceProvider.h"

namespace Tarvane
{

void OfferNoServices()
{
    // Nothing is offered unless a provider is set.
}

} // namespace Tarvane
