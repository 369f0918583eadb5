#import "utils/FileIO/FileServices.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstring>

namespace
{

constexpr std::size_t kTemplateRoom = 10;

} // namespace

NSString* PathFromText(const char* pszPath)
{
    return pszPath == nullptr ? nil
                              : [NSString stringWithCString:pszPath encoding:NSUTF8StringEncoding];
}

NSDictionary* AttributesOfItem(const std::string& strPath)
{
    NSString* strItem = PathFromText(strPath.c_str());
    if (strItem == nil)
        return nil;
    return [[NSFileManager defaultManager] attributesOfItemAtPath:strItem error:nullptr];
}

__CFString* NewCFString(const std::string& strText)
{
    return const_cast<__CFString*>(
        CFStringCreateWithCString(kCFAllocatorDefault, strText.c_str(), kCFStringEncodingUTF8));
}

std::unique_ptr<char[]> TemporaryTemplate(NSString* strName)
{
    NSString* strBase = NSTemporaryDirectory();
    if (strBase == nil)
        strBase = @"/tmp";
    const std::string strPath = [[strBase stringByAppendingPathComponent:strName] UTF8String];
    std::unique_ptr<char[]> pszTemplate(new char[strPath.length() + kTemplateRoom]);
    std::strcpy(pszTemplate.get(), strPath.c_str());
    return pszTemplate;
}
