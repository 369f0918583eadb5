#pragma once

#include <string>

struct __CFString;

// For the file layer's own use.

/// The string's UTF-8 bytes as a new terminated array, which the caller frees with delete[]. Null
/// if the string is null or will not convert (half a surrogate pair).
char* CFStringToCString(const __CFString* str);

/// The same as a text; empty where CFStringToCString gives null.
std::string TextOfCFString(const __CFString* str);
