#include "apps/support/sound/CaptureSource.h"

#include <cmath>

namespace Tarvane
{

double PositionBehind(double dPosition, double dFrames, double dRate, double dNextRate)
{
    const double dEnd = dPosition + dFrames;
    return dRate > 0 && dRate != dNextRate ? std::ceil(dEnd / dRate * dNextRate) : dEnd;
}

} // namespace Tarvane
