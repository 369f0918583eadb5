#include "tests/utils/ParameterHelpers.h"

#include <CoreFoundation/CoreFoundation.h>

std::string SaveSession(CParameterBlock& block)
{
    CFMutableDataRef pData = CFDataCreateMutable(kCFAllocatorDefault, 0);
    const unsigned long nSize = block.SaveBinarySessionToMemory(pData);
    std::string bytes(reinterpret_cast<const char*>(CFDataGetBytePtr(pData)), nSize);
    CFRelease(pData);
    return bytes;
}
