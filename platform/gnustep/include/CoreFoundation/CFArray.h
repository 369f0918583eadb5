#pragma once

#include <CoreFoundation/CFBase.h>

using CFArrayRef = const struct __CFArray*;

using CFArrayRetainCallBack = const void* (*)(CFAllocatorRef allocator, const void* value);
using CFArrayReleaseCallBack = void (*)(CFAllocatorRef allocator, const void* value);
using CFArrayCopyDescriptionCallBack = CFStringRef (*)(const void* value);
using CFArrayEqualCallBack = Boolean (*)(const void* value1, const void* value2);

/// Only `retain` and `release` are called; each may be null.
struct CFArrayCallBacks
{
    CFIndex version;
    CFArrayRetainCallBack retain;
    CFArrayReleaseCallBack release;
    CFArrayCopyDescriptionCallBack copyDescription;
    CFArrayEqualCallBack equal;
};

extern "C"
{
    /// The values are CF objects: CFRetain and CFRelease.
    extern const CFArrayCallBacks kCFTypeArrayCallBacks;

    /// Holds the `count` values, which never change. Null callbacks: plain pointers, neither
    /// retained nor looked at. Null when `count` is negative or, with values to read, `values`
    /// is null. The array is an NSArray, but only one of CF objects may be sent more than
    /// -count and -objectAtIndex:.
    CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                             const CFArrayCallBacks* callBacks);

    CFIndex CFArrayGetCount(CFArrayRef array);

    /// Not retained. Null for an index outside the array.
    const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
}
