#include "apps/support/window/TemporaryFolder.h"

namespace Tarvane
{

// Each user has a folder of their own there.
void RequireTemporaryFolder() {}

} // namespace Tarvane
