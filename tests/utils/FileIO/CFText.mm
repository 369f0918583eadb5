#include "tests/utils/FileIO/CFText.h"

#import <Foundation/Foundation.h>

CFStringRef CFText::CreateWithoutUtf8()
{
    // No string is made from half a pair, but one can be cut down to it.
    NSMutableString* str = [[NSMutableString alloc] initWithUTF8String:"a\xf0\x9d\x84\x9e"
                                                                       "b"];
    [str deleteCharactersInRange:NSMakeRange(2, 1)];
    return (CFStringRef)str;
}
