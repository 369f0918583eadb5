// What the project uses of CoreServices: the Apple Event Manager.
#pragma once

#include <AE/AEDataModel.h>
#include <AE/AEErrors.h>
#include <AE/AppleEvents.h>
#include <CoreFoundation/CoreFoundation.h>
