#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

typedef unsigned char UInt8;
typedef signed char SInt8;
typedef unsigned short UInt16;
typedef signed short SInt16;
typedef unsigned int UInt32;
typedef signed int SInt32;
typedef unsigned long long UInt64;
typedef signed long long SInt64;
typedef float Float32;
typedef double Float64;
typedef unsigned char Boolean;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef FourCharCode ResType;
typedef SInt16 OSErr;
typedef SInt32 OSStatus;
typedef long Size;
typedef char* Ptr;
typedef Ptr* Handle;
typedef UInt16 UniChar;
typedef unsigned long UniCharCount;

enum
{
    noErr = 0
};

#ifndef nil
#define nil NULL
#endif
