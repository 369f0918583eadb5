#pragma once

#include <CoreFoundation/CFBase.h>

/// An NSURL.
using CFURLRef = const struct __CFURL*;

extern "C"
{
    /// A file URL of the path: `length` bytes of UTF-8, relative paths from the current folder.
    /// Null for null, an empty path or bytes that are no UTF-8.
    CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                     CFIndex length, Boolean isDirectory);

    /// Writes the path and a zero byte into the `size` bytes at `buffer`, as an absolute path
    /// whatever `resolveAgainstBase` says. False when they do not fit or the URL is no file's;
    /// `buffer` then holds an empty text, if it has room for one.
    Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                             UInt8* buffer, CFIndex size);
}
