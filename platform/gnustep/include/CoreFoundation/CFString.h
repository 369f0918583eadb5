#pragma once

#include <CoreFoundation/CFBase.h>

using CFStringEncoding = UInt32;

enum : CFStringEncoding
{
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingNextStepLatin = 0x0B01,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUnicode = 0x0100,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100,
    kCFStringEncodingUTF32 = 0x0c000100,
    kCFStringEncodingUTF32BE = 0x18000100,
    kCFStringEncodingUTF32LE = 0x1c000100,
};

extern "C"
{
    /// `text` ends at its first zero byte and is copied. Null when it is not valid in the
    /// encoding (UTF-8: overlong forms, surrogates and cut-off sequences included), when it is
    /// null, or when the encoding is not one of the 8-bit encodings above.
    CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                          CFStringEncoding encoding);

    /// Copies `length` UTF-16 units, whatever they are: zeros, byte order marks and surrogates
    /// without their partner included. Null when `length` is negative or, with units to read,
    /// `characters` is null.
    CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* characters,
                                             CFIndex length);

    /// In UTF-16 units.
    CFIndex CFStringGetLength(CFStringRef string);

    /// Copies the units of `range` to `buffer`. A range that is not wholly inside the string
    /// copies nothing.
    void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);

    /// Writes the text and a zero byte into the `size` bytes at `buffer`. False when they do not
    /// fit, when a character does not exist in the encoding (UTF-8: a surrogate without its
    /// partner), or when the encoding is not one of the 8-bit encodings above; `buffer` then
    /// holds an empty text, if it has room for one.
    Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                               CFStringEncoding encoding);

    /// Bytes that `length` UTF-16 units take at most, without a closing zero (UTF-8: three times
    /// the length). kCFNotFound when that is no CFIndex or the encoding is not one of the above.
    CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
}
