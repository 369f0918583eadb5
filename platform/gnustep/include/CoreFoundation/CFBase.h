#pragma once

#include <MacTypes.h>

// Every CF reference is an object of the Foundation library: a CFStringRef an NSString, a
// CFMutableDataRef an NSMutableData. In Objective-C++ a C-style cast goes either way.
//
// All functions may be called on any thread, with or without an autorelease pool: what they
// autorelease on the way is gone when they return. One object must not be changed by one thread
// while another uses it. A null reference reads as an empty object, and is ignored by
// CFRetain and CFRelease.
//
// "Create" in a name: the caller owns the result and gives it back with CFRelease. "Get": not.

using CFTypeRef = const void*;
using CFIndex = long;
using CFHashCode = unsigned long;
using CFTypeID = unsigned long;
using CFOptionFlags = unsigned long;
using CFTimeInterval = double; ///< seconds

using CFStringRef = const struct __CFString*;
using CFMutableStringRef = struct __CFString*;
using CFAllocatorRef = const struct __CFAllocator*;

enum : CFIndex
{
    kCFNotFound = -1,
};

struct CFRange
{
    CFIndex location;
    CFIndex length;
};

constexpr CFRange CFRangeMake(CFIndex location, CFIndex length)
{
    return CFRange{location, length};
}

extern "C"
{
    /// The one allocator there is. An allocator argument is not looked at.
    extern const CFAllocatorRef kCFAllocatorDefault;

    /// Returns its argument.
    CFTypeRef CFRetain(CFTypeRef object);
    void CFRelease(CFTypeRef object);

    /// For tests and diagnostics. Says nothing of objects that are never destroyed, such as the
    /// empty string; 0 for null.
    CFIndex CFGetRetainCount(CFTypeRef object);
}
