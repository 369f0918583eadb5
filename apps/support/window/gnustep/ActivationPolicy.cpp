#include "apps/support/window/ActivationPolicy.h"

namespace Tarvane
{

void StandInFront()
{
    // Nobody keeps a program from it.
}

} // namespace Tarvane
