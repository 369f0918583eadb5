#include <CoreFoundation/CFString.h>

#include "platform/gnustep/CoreFoundation/Pool.h"
#include "platform/gnustep/CoreFoundation/UnitString.h"

#include <cstring>
#include <limits>
#include <vector>

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

NSString* CreateFromUnits(const UniChar* units, NSUInteger count)
{
    return [[PlatformUnitString alloc] initWithUnits:units count:count];
}

// Foundation takes a leading U+FEFF or U+FFFE for a mark of the byte order and drops it.
bool IsByteOrderMark(UniChar unit) { return unit == 0xFEFF || unit == 0xFFFE; }

// Either mark starts with this byte in UTF-8; so do other characters, which do not mind.
bool MayStartWithByteOrderMark(const char* text)
{
    return static_cast<unsigned char>(text[0]) == 0xEF;
}

// Behind another character the mark stays.
NSString* CreateMarkedFromUTF8(const char* text)
{
    NSMutableData* bytes = [NSMutableData dataWithBytes:"-" length:1];
    [bytes appendBytes:text length:std::strlen(text)];
    NSString* whole = [[[NSString alloc] initWithData:bytes
                                             encoding:NSUTF8StringEncoding] autorelease];
    if (whole == nil)
        return nil;
    std::vector<UniChar> units([whole length]);
    [whole getCharacters:units.data()];
    return CreateFromUnits(units.data() + 1, units.size() - 1);
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
        return (CFStringRef)CreateFromUnits(characters, length);
    NSString* string = [[NSString alloc] initWithCharacters:characters length:length];
    if (string == nil)
        string = CreateFromUnits(characters, length);
    return (CFStringRef)string;
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

    // Not by -getCString:maxLength:encoding:, which raises an exception for some strings that
    // cannot be converted.
    platform::Pool pool;
    NSData* text = [(NSString*)string dataUsingEncoding:foundation allowLossyConversion:NO];
    const NSUInteger length = [text length];
    if (text == nil || length >= NSUInteger(size))
        return false;
    [text getBytes:buffer length:length];
    buffer[length] = '\0';
    return true;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding)
{
    const CFIndex bytes = BytesPerUnit(encoding);
    if (bytes == 0 || length < 0 || length > std::numeric_limits<CFIndex>::max() / bytes)
        return kCFNotFound;
    return length * bytes;
}
