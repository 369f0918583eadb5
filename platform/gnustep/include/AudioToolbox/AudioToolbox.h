#pragma once

#include <AudioToolbox/AudioUnitUtilities.h>
