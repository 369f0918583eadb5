// Keeps the application from offering services to others; one source file a platform.
#pragma once

namespace Tarvane
{

/// Main thread, before the application runs.
void OfferNoServices();

} // namespace Tarvane
