// The listeners of an audio unit's properties.
#pragma once

#include "signal/PropertyListeners.h"

#include <AudioUnit/AudioUnit.h>

namespace Tarvane
{

using CPropertyListeners = CPropertyListenersOf<AudioUnit>;

} // namespace Tarvane
