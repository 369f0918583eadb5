#pragma once

#include <MacTypes.h>

typedef const void* CFTypeRef;
typedef signed long CFIndex;
typedef unsigned long CFOptionFlags;
typedef unsigned long CFTypeID;
typedef double CFTimeInterval;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef struct __CFString* CFMutableStringRef;
typedef const struct __CFData* CFDataRef;
typedef struct __CFData* CFMutableDataRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFURL* CFURLRef;
typedef struct __CFBundle* CFBundleRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef struct __CFRunLoopTimer* CFRunLoopTimerRef;
typedef struct __CFMachPort* CFMachPortRef;
typedef UInt32 CFStringEncoding;
typedef CFStringRef CFRunLoopMode;
typedef CFTimeInterval CFAbsoluteTime;

typedef struct
{
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length)
{
    CFRange range = {location, length};
    return range;
}

enum
{
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16 = 0x0100
};

enum
{
    kCFUserNotificationStopAlertLevel = 0,
    kCFUserNotificationNoteAlertLevel = 1,
    kCFUserNotificationCautionAlertLevel = 2,
    kCFUserNotificationPlainAlertLevel = 3
};

typedef enum CFRunLoopRunResult : SInt32 CFRunLoopRunResult;
enum CFRunLoopRunResult : SInt32
{
    kCFRunLoopRunFinished = 1,
    kCFRunLoopRunStopped = 2,
    kCFRunLoopRunTimedOut = 3,
    kCFRunLoopRunHandledSource = 4
};

typedef struct
{
    CFIndex version;
    void* info;
    const void* (*retain)(const void*);
    void (*release)(const void*);
    CFStringRef (*copyDescription)(const void*);
} CFMachPortContext;
typedef void (*CFMachPortCallBack)(CFMachPortRef, void*, CFIndex, void*);

typedef struct
{
    CFIndex version;
    void* info;
    const void* (*retain)(const void*);
    void (*release)(const void*);
    CFStringRef (*copyDescription)(const void*);
} CFRunLoopTimerContext;
typedef void (*CFRunLoopTimerCallBack)(CFRunLoopTimerRef, void*);

typedef struct
{
    CFIndex version;
    const void* (*retain)(CFAllocatorRef, const void*);
    void (*release)(CFAllocatorRef, const void*);
    CFStringRef (*copyDescription)(const void*);
    Boolean (*equal)(const void*, const void*);
} CFArrayCallBacks;

extern "C"
{
    extern const CFAllocatorRef kCFAllocatorDefault;
    extern const CFRunLoopMode kCFRunLoopDefaultMode;
    extern const CFRunLoopMode kCFRunLoopCommonModes;
    extern const CFArrayCallBacks kCFTypeArrayCallBacks;

    CFTypeRef CFRetain(CFTypeRef);
    void CFRelease(CFTypeRef);
    CFIndex CFGetRetainCount(CFTypeRef);

    CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char*, CFStringEncoding);
    CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar*, CFIndex);
    CFIndex CFStringGetLength(CFStringRef);
    void CFStringGetCharacters(CFStringRef, CFRange, UniChar*);
    Boolean CFStringGetCString(CFStringRef, char*, CFIndex, CFStringEncoding);
    CFIndex CFStringGetMaximumSizeForEncoding(CFIndex, CFStringEncoding);

    CFDataRef CFDataCreate(CFAllocatorRef, const UInt8*, CFIndex);
    CFMutableDataRef CFDataCreateMutable(CFAllocatorRef, CFIndex);
    CFIndex CFDataGetLength(CFDataRef);
    const UInt8* CFDataGetBytePtr(CFDataRef);
    UInt8* CFDataGetMutableBytePtr(CFMutableDataRef);
    void CFDataSetLength(CFMutableDataRef, CFIndex);
    void CFDataAppendBytes(CFMutableDataRef, const UInt8*, CFIndex);

    CFArrayRef CFArrayCreate(CFAllocatorRef, const void**, CFIndex, const CFArrayCallBacks*);
    CFIndex CFArrayGetCount(CFArrayRef);
    const void* CFArrayGetValueAtIndex(CFArrayRef, CFIndex);

    CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const UInt8*, CFIndex,
                                                     Boolean);
    Boolean CFURLGetFileSystemRepresentation(CFURLRef, Boolean, UInt8*, CFIndex);

    CFBundleRef CFBundleGetMainBundle(void);
    void CFBundleGetPackageInfo(CFBundleRef, UInt32* packageType, UInt32* packageCreator);

    CFRunLoopRef CFRunLoopGetCurrent(void);
    CFRunLoopRef CFRunLoopGetMain(void);
    CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode, CFTimeInterval, Boolean);
    void CFRunLoopAddSource(CFRunLoopRef, CFRunLoopSourceRef, CFRunLoopMode);
    void CFRunLoopAddTimer(CFRunLoopRef, CFRunLoopTimerRef, CFRunLoopMode);
    CFRunLoopTimerRef CFRunLoopTimerCreate(CFAllocatorRef, CFAbsoluteTime fireDate, CFTimeInterval,
                                           CFOptionFlags, CFIndex order, CFRunLoopTimerCallBack,
                                           CFRunLoopTimerContext*);
    void CFRunLoopTimerInvalidate(CFRunLoopTimerRef);
    CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);

    CFMachPortRef CFMachPortCreateWithPort(CFAllocatorRef, unsigned int port, CFMachPortCallBack,
                                           CFMachPortContext*, Boolean* shouldFreeInfo);
    CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef, CFMachPortRef, CFIndex order);

    SInt32 CFUserNotificationDisplayAlert(CFTimeInterval, CFOptionFlags, CFURLRef, CFURLRef,
                                          CFURLRef, CFStringRef, CFStringRef, CFStringRef,
                                          CFStringRef, CFStringRef, CFOptionFlags*);
}
