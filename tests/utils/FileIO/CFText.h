#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

/// A CF string of a test's own.
class CFText
{
public:
    explicit CFText(const char* pszText)
        : m_str(CFStringCreateWithCString(kCFAllocatorDefault, pszText, kCFStringEncodingUTF8))
    {
    }
    /// Half a surrogate pair between two letters: has no UTF-8 form.
    static CFText WithoutUtf8() { return CFText(CreateWithoutUtf8()); }
    ~CFText() { CFRelease(m_str); }
    CFText(const CFText&) = delete;
    CFText& operator=(const CFText&) = delete;

    operator CFStringRef() const { return m_str; }

private:
    explicit CFText(CFStringRef str) : m_str(str) {}
    static CFStringRef CreateWithoutUtf8();

    CFStringRef m_str;
};

/// The UTF-8 bytes of a string that the caller owns, which is released. "(null)" for null,
/// "(shared)" if somebody else owns it as well.
inline std::string TakenText(CFStringRef str)
{
    if (str == nullptr)
        return "(null)";
    char buffer[4096] = "(does not convert)";
    CFStringGetCString(str, buffer, sizeof buffer, kCFStringEncodingUTF8);
    const bool fShared = CFGetRetainCount(str) != 1;
    CFRelease(str);
    return fShared ? "(shared)" : buffer;
}
