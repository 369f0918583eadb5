#include "apps/support/window/ApplicationIcon.h"

namespace Tarvane
{

void ShowNoIconWindow()
{
    // The icon is in the Dock, where it does what icons do.
}

} // namespace Tarvane
