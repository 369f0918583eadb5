#import "tests/utils/FileIO/PlatformCalls.h"

#include <dlfcn.h>

namespace
{

bool gfReplaced = false;
NSString* gstrReplacement = nil;

} // namespace

TemporaryDirectoryScope::TemporaryDirectoryScope(NSString* strPath)
{
    gfReplaced = true;
    gstrReplacement = [strPath retain];
}

TemporaryDirectoryScope::~TemporaryDirectoryScope()
{
    gfReplaced = false;
    [gstrReplacement release];
    gstrReplacement = nil;
}

NSString* NSTemporaryDirectory(void)
{
    if (gfReplaced)
        return gstrReplacement;
    static auto* const pNext =
        reinterpret_cast<NSString* (*)(void)>(dlsym(RTLD_NEXT, "NSTemporaryDirectory"));
    return pNext();
}
