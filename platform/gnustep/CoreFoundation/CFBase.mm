#include <CoreFoundation/CFBase.h>

#include "platform/gnustep/CoreFoundation/Pool.h"

const CFAllocatorRef kCFAllocatorDefault = nullptr;

CFTypeRef CFRetain(CFTypeRef object) { return [(id)object retain]; }

void CFRelease(CFTypeRef object)
{
    // What an object autoreleases while it is destroyed must not outlive the call either.
    platform::Pool pool;
    [(id)object release];
}

CFIndex CFGetRetainCount(CFTypeRef object) { return CFIndex([(id)object retainCount]); }
