#include <CoreFoundation/CFString.h>

#include "platform/gnustep/CoreFoundation/Pool.h"

#include <cstring>
#include <limits>

namespace
{

constexpr NSStringEncoding kNoEncoding = NSStringEncoding(0);

// The 8-bit encodings: those that a C string can be in.
NSStringEncoding FoundationEncoding(CFStringEncoding encoding)
{
    switch (encoding)
    {
    case kCFStringEncodingUTF8:
        return NSUTF8StringEncoding;
    case kCFStringEncodingASCII:
        return NSASCIIStringEncoding;
    case kCFStringEncodingISOLatin1:
        return NSISOLatin1StringEncoding;
    case kCFStringEncodingMacRoman:
        return NSMacOSRomanStringEncoding;
    case kCFStringEncodingWindowsLatin1:
        return NSWindowsCP1252StringEncoding;
    case kCFStringEncodingNextStepLatin:
        return NSNEXTSTEPStringEncoding;
    default:
        return kNoEncoding;
    }
}

CFIndex BytesPerUnit(CFStringEncoding encoding)
{
    switch (encoding)
    {
    case kCFStringEncodingUTF8:
        return 3;
    case kCFStringEncodingUTF16:
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE:
        return 2;
    case kCFStringEncodingUTF32:
    case kCFStringEncodingUTF32BE:
    case kCFStringEncodingUTF32LE:
        return 4;
    default:
        return FoundationEncoding(encoding) == kNoEncoding ? 0 : 1;
    }
}

// Foundation takes a leading U+FEFF or U+FFFE for a mark of the byte order and drops it. Behind
// another character it stays, so the text is made with one in front that is then taken away.
bool IsByteOrderMark(UniChar unit) { return unit == 0xFEFF || unit == 0xFFFE; }

bool MayStartWithByteOrderMark(const char* text)
{
    return static_cast<unsigned char>(text[0]) == 0xEF;
}

NSString* WithoutFirst(NSString* text)
{
    NSMutableString* rest = [text mutableCopy];
    [rest deleteCharactersInRange:NSMakeRange(0, 1)];
    return rest;
}

NSString* CreateMarkedFromUTF8(const char* text)
{
    NSMutableData* bytes = [NSMutableData dataWithBytes:"-" length:1];
    [bytes appendBytes:text length:std::strlen(text)];
    NSString* whole = [[[NSString alloc] initWithData:bytes
                                             encoding:NSUTF8StringEncoding] autorelease];
    return whole == nil ? nil : WithoutFirst(whole);
}

NSString* CreateMarkedFromCharacters(const UniChar* characters, NSUInteger length)
{
    NSMutableData* units = [NSMutableData dataWithLength:(length + 1) * sizeof(UniChar)];
    UniChar* buffer = static_cast<UniChar*>([units mutableBytes]);
    buffer[0] = '-';
    std::memcpy(buffer + 1, characters, length * sizeof(UniChar));
    NSString* whole = [[[NSString alloc] initWithCharacters:buffer length:length + 1] autorelease];
    return WithoutFirst(whole);
}

} // namespace

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding)
{
    const NSStringEncoding foundation = FoundationEncoding(encoding);
    if (text == nullptr || foundation == kNoEncoding)
        return nullptr;

    platform::Pool pool;
    if (foundation == NSUTF8StringEncoding && MayStartWithByteOrderMark(text))
        return (CFStringRef)CreateMarkedFromUTF8(text);
    return (CFStringRef)[[NSString alloc] initWithBytes:text
                                                 length:std::strlen(text)
                                               encoding:foundation];
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* characters, CFIndex length)
{
    if (length < 0 || (characters == nullptr && length > 0))
        return nullptr;

    platform::Pool pool;
    if (length > 0 && IsByteOrderMark(characters[0]))
        return (CFStringRef)CreateMarkedFromCharacters(characters, length);
    return (CFStringRef)[[NSString alloc] initWithCharacters:characters length:length];
}

CFIndex CFStringGetLength(CFStringRef string) { return [(NSString*)string length]; }

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer)
{
    const CFIndex length = CFStringGetLength(string);
    if (buffer == nullptr || range.location < 0 || range.length <= 0 || range.location > length ||
        range.length > length - range.location)
        return;

    platform::Pool pool;
    [(NSString*)string getCharacters:buffer range:NSMakeRange(range.location, range.length)];
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding)
{
    if (buffer == nullptr || size <= 0)
        return false;

    buffer[0] = '\0';
    const NSStringEncoding foundation = FoundationEncoding(encoding);
    if (string == nullptr || foundation == kNoEncoding)
        return false;

    platform::Pool pool;
    if ([(NSString*)string getCString:buffer maxLength:size encoding:foundation])
        return true;
    buffer[0] = '\0';
    return false;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding)
{
    const CFIndex bytes = BytesPerUnit(encoding);
    if (bytes == 0 || length < 0 || length > std::numeric_limits<CFIndex>::max() / bytes)
        return kCFNotFound;
    return length * bytes;
}
