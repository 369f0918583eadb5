#pragma once

#include <cstdint>

// The basic types and status codes that the platform's C interfaces share.

using UInt8 = unsigned char;
using SInt8 = signed char;
using UInt16 = unsigned short;
using SInt16 = signed short;
using UInt32 = unsigned int;
using SInt32 = signed int;
using UInt64 = unsigned long long;
using SInt64 = signed long long;
using Float32 = float;
using Float64 = double;

/// 0 is false; every other value is true.
using Boolean = unsigned char;

/// Four characters, the first in the highest byte: 'TkNe' is 0x546B4E65.
using FourCharCode = UInt32;
using OSType = FourCharCode;
using ResType = FourCharCode;

/// 0 (noErr) is success, negative numbers are published errors.
using OSErr = SInt16;
using OSStatus = SInt32;

/// A count of bytes.
using Size = long;
using Ptr = char*;

using UniChar = UInt16;
using UniCharCount = unsigned long;

inline constexpr OSErr noErr = 0;
inline constexpr OSErr userCanceledErr = -128;
inline constexpr OSErr memFullErr = -108;
inline constexpr OSErr paramErr = -50;
