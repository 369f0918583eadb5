#include "apps/link/shared/SendableText.h"

#include "apps/support/program/CommandLine.h"

#include <CoreFoundation/CoreFoundation.h>

#include <filesystem>

namespace Tarvane::Link
{

void RequireSendable(const std::string& strText, const std::string& strWhat)
{
    if (strText.find('\0') != std::string::npos)
        throw CUsageError(strWhat + " contains a NUL byte; give plain text.");
    CFStringRef pString =
        CFStringCreateWithCString(kCFAllocatorDefault, strText.c_str(), kCFStringEncodingUTF8);
    if (pString == nullptr)
        throw CUsageError(strWhat + " is not UTF-8; convert it first.");
    CFRelease(pString);
}

std::string QuotablePath(const std::string& strFile)
{
    RequireSendable(strFile, "the file's name");
    const std::string strPath = std::filesystem::absolute(strFile).lexically_normal().string();
    if (strPath.find_first_of("\"\\\n\r") != std::string::npos)
        throw CUsageError("a path with a double quote, a backslash or a line end cannot be sent; "
                          "rename " +
                          strPath + ".");
    return strPath;
}

} // namespace Tarvane::Link
