#pragma once
typedef const struct __CFString* CFStringRef;
