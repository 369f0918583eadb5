#include <CoreFoundation/CFBase.h>

#include "platform/gnustep/CoreFoundation/Pool.h"

#include <limits>

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef object) { return [(id)object retain]; }

void CFRelease(CFTypeRef object)
{
    // What an object autoreleases while it is destroyed must not outlive the call either.
    platform::Pool pool;
    [(id)object release];
}

CFIndex CFGetRetainCount(CFTypeRef object)
{
    const NSUInteger count = [(id)object retainCount];
    constexpr CFIndex kLargest = std::numeric_limits<CFIndex>::max();
    return count > NSUInteger(kLargest) ? kLargest : CFIndex(count);
}
