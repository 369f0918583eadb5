// Property writes in words, for logs.
#pragma once

#include <AudioUnit/AudioUnit.h>

#include <string>

namespace Tarvane
{

// The name of a property of the link protocol, "TNProperty_ElementDone" for instance; "unknown" for
// every other id.
const char* PropertyName(AudioUnitPropertyID nId);

// "64008 TNProperty_ElementDone: nElement 3, fHandled 1, fNotDelivered 0, fFinal 1". A payload that
// is not of the id's size, or of an id that is not written, is shown as bytes in hexadecimal.
std::string DescribeWrite(AudioUnitPropertyID nId, const void* pData, UInt32 nSize);

} // namespace Tarvane
