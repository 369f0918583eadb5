#include <CoreFoundation/CFURL.h>

#include "platform/gnustep/CoreFoundation/Pool.h"

#include <cstring>

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8* path, CFIndex length,
                                                 Boolean isDirectory)
{
    if (path == nullptr || length <= 0)
        return nullptr;
    platform::Pool pool;
    NSString* text = [[[NSString alloc] initWithBytes:path
                                               length:length
                                             encoding:NSUTF8StringEncoding] autorelease];
    if (text == nil)
        return nullptr;
    return (CFURLRef)[[NSURL alloc] initFileURLWithPath:text isDirectory:isDirectory != 0];
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean, UInt8* buffer, CFIndex size)
{
    if (buffer == nullptr || size <= 0)
        return false;

    buffer[0] = '\0';
    platform::Pool pool;
    if (url == nullptr || ![(NSURL*)url isFileURL])
        return false;
    const char* path = [[(NSURL*)url path] UTF8String];
    if (path == nullptr || std::strlen(path) >= size_t(size))
        return false;
    std::memcpy(buffer, path, std::strlen(path) + 1);
    return true;
}
