// The umbrella that has AESend, beside all of CoreServices.
#pragma once

#include <CoreServices/CoreServices.h>

struct EventRecord;
typedef struct OpaqueRgnHandle* RgnHandle;
typedef Boolean (*AEIdleProcPtr)(struct EventRecord*, SInt32* sleepTime, RgnHandle* mouseRgn);
typedef AEIdleProcPtr AEIdleUPP;
typedef Boolean (*AEFilterProcPtr)(struct EventRecord*, SInt32 returnID, SInt32 transactionID,
                                   const AEAddressDesc* sender);
typedef AEFilterProcPtr AEFilterUPP;

extern "C" OSErr AESend(const AppleEvent*, AppleEvent* reply, AESendMode, AESendPriority,
                        SInt32 timeOutInTicks, AEIdleUPP, AEFilterUPP);
