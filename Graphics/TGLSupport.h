// What the sources of the drawing layer share.
#pragma once

#import <Foundation/Foundation.h>

#include <string>

namespace TGL
{

/// nil for bytes that are not UTF-8.
inline NSString* PlatformString(const std::string& strText)
{
    return [NSString stringWithUTF8String:strText.c_str()];
}

} // namespace TGL
