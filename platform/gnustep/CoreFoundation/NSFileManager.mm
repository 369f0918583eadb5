#import <Foundation/Foundation.h>

#include <cerrno>
#include <cstring>
#include <unistd.h>

@implementation NSFileManager (TarvanePlatform)

- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error
{
    // GNUstep would call it a success to set nothing that it knows on nothing that exists.
    if ([self attributesOfItemAtPath:path error:error] == nil)
        return NO;
    errno = 0;
    if ([self changeFileAttributes:attributes atPath:path])
        return YES;
    if (error != nullptr)
    {
        // What GNUstep does on its way out may leave another number than the failure's.
        const int reported = errno;
        const bool missing = access([path fileSystemRepresentation], F_OK) != 0;
        const int code = missing ? errno : reported;
        NSString* text = [NSString stringWithUTF8String:std::strerror(code)];
        NSDictionary* info = [NSDictionary dictionaryWithObject:text
                                                         forKey:NSLocalizedDescriptionKey];
        *error = [NSError errorWithDomain:NSPOSIXErrorDomain code:code userInfo:info];
    }
    return NO;
}

@end
