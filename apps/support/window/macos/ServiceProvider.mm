#include "apps/support/window/ServiceProvider.h"

namespace Tarvane
{

void OfferNoServices()
{
    // Nothing is offered unless a provider is set.
}

} // namespace Tarvane
