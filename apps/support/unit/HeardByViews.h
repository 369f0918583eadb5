// The ids that a view listens to; whoever stands between it and its plug-in hears the same ones.
#pragma once

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

#include <AudioUnit/AudioUnit.h>

namespace Tarvane
{

inline constexpr AudioUnitPropertyID kHeardByViews[] = {TNProperty_Elements, TNProperty_ArmCapture,
                                                        TNProperty_CurrentSampleInTimeLine,
                                                        kTNProperty_CurrentCaptureLength};

} // namespace Tarvane
