#import "Graphics/TGLGraphics.h"

#import "Graphics/TGLSupport.h"

#import <AppKit/AppKit.h>
#include <CoreFoundation/CoreFoundation.h>

#include <cstdarg>
#include <cstdio>

namespace TGL
{

namespace
{

constexpr size_t kPanelTextSize = 10000; // with its terminator

bool GoesOn(char c) { return (c & 0xc0) == 0x80; } // inside a UTF-8 character

// As much of the text as there is room for, in whole characters; empty for what does not convert.
std::string Expanded(const char* szFormat, va_list arguments)
{
    // A byte more than is shown tells whether the cut would fall inside a character.
    char szText[kPanelTextSize + 1];
    const int nBytes = vsnprintf(szText, sizeof szText, szFormat, arguments);
    if (nBytes < 0)
        return {};
    if (size_t(nBytes) < kPanelTextSize)
        return szText;
    size_t nShown = kPanelTextSize - 1;
    while (nShown > 0 && GoesOn(szText[nShown]))
        --nShown;
    return std::string(szText, nShown);
}

// A panel reads its text as a format once more, with no arguments to go with it. Doubled percent
// signs become one there, as they always have; a directive is shown as it stands.
std::string AsFormat(const std::string& strText)
{
    std::string strFormat;
    for (size_t i = 0; i < strText.size(); ++i)
    {
        strFormat += strText[i];
        if (strText[i] != '%')
            continue;
        strFormat += '%';
        if (strText[i + 1] == '%')
            ++i;
    }
    return strFormat;
}

NSString* Title(const char* szTitle) { return PlatformString(szTitle ? szTitle : ""); }

} // namespace

bool MessageBoxOKCancel(const char* szTitle, const char* szFormat, ...)
{
    TGL_ASSERT(szFormat != NULL);
    va_list arguments;
    va_start(arguments, szFormat);
    const std::string strText = Expanded(szFormat, arguments);
    va_end(arguments);
    return NSRunAlertPanel(Title(szTitle), PlatformString(AsFormat(strText)), @"OK", @"Cancel",
                           nil) == 1;
}

void Alert(const char* szTitle, const char* szFormat, ...)
{
    TGL_ASSERT(szFormat != NULL);
    va_list arguments;
    va_start(arguments, szFormat);
    const std::string strText = Expanded(szFormat, arguments);
    va_end(arguments);
    CFOptionFlags response = 0;
    CFUserNotificationDisplayAlert(0, kCFUserNotificationPlainAlertLevel, nullptr, nullptr, nullptr,
                                   (CFStringRef)Title(szTitle),
                                   (CFStringRef)PlatformString(strText), nullptr, nullptr, nullptr,
                                   &response);
}

} // namespace TGL
