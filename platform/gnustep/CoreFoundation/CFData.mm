#include <CoreFoundation/CFData.h>

#include "platform/gnustep/CoreFoundation/Pool.h"

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length)
{
    if (length < 0 || (bytes == nullptr && length > 0))
        return nullptr;
    platform::Pool pool;
    return (CFDataRef)[[NSData alloc] initWithBytes:bytes length:length];
}

CFMutableDataRef CFDataCreateMutable(CFAllocatorRef, CFIndex capacity)
{
    if (capacity < 0)
        return nullptr;
    platform::Pool pool;
    return (CFMutableDataRef)[[NSMutableData alloc] initWithCapacity:capacity];
}

CFIndex CFDataGetLength(CFDataRef data) { return [(NSData*)data length]; }

const UInt8* CFDataGetBytePtr(CFDataRef data)
{
    return static_cast<const UInt8*>([(NSData*)data bytes]);
}

UInt8* CFDataGetMutableBytePtr(CFMutableDataRef data)
{
    return static_cast<UInt8*>([(NSMutableData*)data mutableBytes]);
}

void CFDataSetLength(CFMutableDataRef data, CFIndex length)
{
    if (length < 0)
        return;
    platform::Pool pool;
    [(NSMutableData*)data setLength:length];
}

void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length)
{
    if (length <= 0 || bytes == nullptr)
        return;
    platform::Pool pool;
    [(NSMutableData*)data appendBytes:bytes length:length];
}
