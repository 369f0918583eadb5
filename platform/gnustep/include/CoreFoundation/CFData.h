#pragma once

#include <CoreFoundation/CFBase.h>

using CFDataRef = const struct __CFData*;
using CFMutableDataRef = struct __CFData*;

extern "C"
{
    /// Copies `length` bytes. Null when `length` is negative or, with bytes to read, `bytes` is
    /// null.
    CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);

    /// Empty at first. `capacity` is a hint, never a limit; 0 is none, negative gives null.
    CFMutableDataRef CFDataCreateMutable(CFAllocatorRef allocator, CFIndex capacity);

    /// In bytes.
    CFIndex CFDataGetLength(CFDataRef data);

    /// Valid until the data changes its length or goes. May be null while the data is empty.
    const UInt8* CFDataGetBytePtr(CFDataRef data);
    UInt8* CFDataGetMutableBytePtr(CFMutableDataRef data);

    /// Bytes that the data grows by are zero. A negative length changes nothing.
    void CFDataSetLength(CFMutableDataRef data, CFIndex length);

    /// A negative length or null `bytes` changes nothing.
    void CFDataAppendBytes(CFMutableDataRef data, const UInt8* bytes, CFIndex length);
}
