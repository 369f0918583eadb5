// What the sources of the drawing layer share.
#pragma once

#include "utils/Assertion.h"

#import <Foundation/Foundation.h>

#include <string>

/// Reports the layer under its one name, whichever of its sources asserts.
#define TGL_ASSERT(expression)                                                                     \
    ((expression)                                                                                  \
         ? (void)0                                                                                 \
         : AssertionFailed((const char*)__func__, "Graphics/TGLGraphics", __LINE__, #expression))

namespace TGL
{

/// nil for bytes that are not UTF-8.
inline NSString* PlatformString(const std::string& strText)
{
    return [NSString stringWithUTF8String:strText.c_str()];
}

} // namespace TGL
