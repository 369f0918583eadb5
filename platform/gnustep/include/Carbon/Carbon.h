// The umbrella that clients of AESend include.
#pragma once

#include <CoreServices/CoreServices.h>
