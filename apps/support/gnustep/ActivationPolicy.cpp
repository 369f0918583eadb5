#include "apps/support/ActivationPolicy.h"

namespace Tarvane
{

void StandInFront()
{
    // Nobody keeps a program from it.
}

} // namespace Tarvane
