#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <objc/objc.h>
#include <stdarg.h>

typedef long NSInteger;
typedef unsigned long NSUInteger;
#define NSUIntegerMax (~0UL)
typedef double NSTimeInterval;
typedef unsigned short unichar;
typedef struct _NSZone NSZone;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
typedef NSUInteger NSStringEncoding;
typedef struct _NSRange
{
    NSUInteger location;
    NSUInteger length;
} NSRange;

enum : NSInteger
{
    NSNotFound = 0x7fffffffffffffff
};
enum : NSStringEncoding
{
    NSASCIIStringEncoding = 1,
    NSUTF8StringEncoding = 4,
    NSISOLatin1StringEncoding = 5,
    NSUnicodeStringEncoding = 10
};

extern "C" const NSPoint NSZeroPoint;
extern "C" const NSSize NSZeroSize;
extern "C" const NSRect NSZeroRect;

static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) { return CGPointMake(x, y); }
static inline NSSize NSMakeSize(CGFloat w, CGFloat h) { return CGSizeMake(w, h); }
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat w, CGFloat h)
{
    return CGRectMake(x, y, w, h);
}
static inline NSRange NSMakeRange(NSUInteger location, NSUInteger length)
{
    NSRange range = {location, length};
    return range;
}
static inline CGFloat NSMinX(NSRect r) { return r.origin.x; }
static inline CGFloat NSMinY(NSRect r) { return r.origin.y; }
static inline CGFloat NSMaxX(NSRect r) { return r.origin.x + r.size.width; }
static inline CGFloat NSMaxY(NSRect r) { return r.origin.y + r.size.height; }
static inline CGFloat NSMidX(NSRect r) { return r.origin.x + r.size.width * 0.5; }
static inline CGFloat NSMidY(NSRect r) { return r.origin.y + r.size.height * 0.5; }
static inline CGFloat NSWidth(NSRect r) { return r.size.width; }
static inline CGFloat NSHeight(NSRect r) { return r.size.height; }

@class NSString, NSArray, NSDate, NSData, NSDictionary, NSError, NSInvocation, NSMethodSignature;
@class NSURL, NSCoder, NSAttributedString, NSSet, Protocol, NSThread;

extern "C"
{
    void NSLog(NSString* format, ...) __attribute__((format(NSString, 1, 2)));
    BOOL NSPointInRect(NSPoint, NSRect);
    BOOL NSIsEmptyRect(NSRect);
    BOOL NSEqualRects(NSRect, NSRect);
    BOOL NSEqualSizes(NSSize, NSSize);
    BOOL NSEqualPoints(NSPoint, NSPoint);
    NSRect NSInsetRect(NSRect, CGFloat dx, CGFloat dy);
    NSRect NSOffsetRect(NSRect, CGFloat dx, CGFloat dy);
    NSRect NSIntersectionRect(NSRect, NSRect);
    NSRect NSIntegralRect(NSRect);
    NSString* NSTemporaryDirectory(void);
    NSString* NSStringFromClass(Class);
    NSString* NSStringFromSelector(SEL);
    Class NSClassFromString(NSString*);
    SEL NSSelectorFromString(NSString*);
    Protocol* NSProtocolFromString(NSString*);
}

@protocol NSObject
- (BOOL)isEqual:(id)object;
- (NSUInteger)hash;
- (Class)superclass;
- (Class)class;
- (instancetype)self;
- (id)performSelector:(SEL)selector;
- (id)performSelector:(SEL)selector withObject:(id)object;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)isMemberOfClass:(Class)aClass;
- (BOOL)conformsToProtocol:(Protocol*)protocol;
- (BOOL)respondsToSelector:(SEL)selector;
- (instancetype)retain;
- (oneway void)release;
- (instancetype)autorelease;
- (NSUInteger)retainCount;
- (NSString*)description;
@end

@protocol NSCopying
- (id)copyWithZone:(NSZone*)zone;
@end
@protocol NSCoding
- (void)encodeWithCoder:(NSCoder*)coder;
- (instancetype)initWithCoder:(NSCoder*)coder;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject>
{
    Class isa;
}
+ (void)load;
+ (void)initialize;
- (instancetype)init;
+ (instancetype)new;
+ (instancetype)alloc;
- (void)dealloc;
- (id)copy;
- (id)mutableCopy;
- (id)valueForKey:(NSString*)key;
+ (Class)class;
+ (Class)superclass;
+ (BOOL)instancesRespondToSelector:(SEL)selector;
+ (BOOL)conformsToProtocol:(Protocol*)protocol;
+ (BOOL)isSubclassOfClass:(Class)aClass;
+ (BOOL)resolveInstanceMethod:(SEL)selector;
- (IMP)methodForSelector:(SEL)selector;
+ (IMP)instanceMethodForSelector:(SEL)selector;
- (void)doesNotRecognizeSelector:(SEL)selector;
- (void)performSelectorOnMainThread:(SEL)selector withObject:(id)object waitUntilDone:(BOOL)wait;
- (void)performSelectorOnMainThread:(SEL)selector
                         withObject:(id)object
                      waitUntilDone:(BOOL)wait
                              modes:(NSArray*)modes;
- (void)performSelector:(SEL)selector withObject:(id)object afterDelay:(NSTimeInterval)delay;
+ (void)cancelPreviousPerformRequestsWithTarget:(id)target;
+ (void)cancelPreviousPerformRequestsWithTarget:(id)target selector:(SEL)selector object:(id)object;
@end

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(void*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)length;
@end

@interface NSAutoreleasePool : NSObject
- (void)drain;
@end

@interface NSString : NSObject <NSCopying, NSCoding>
- (NSUInteger)length;
- (unichar)characterAtIndex:(NSUInteger)index;
+ (instancetype)string;
+ (instancetype)stringWithUTF8String:(const char*)text;
+ (instancetype)stringWithCString:(const char*)text encoding:(NSStringEncoding)encoding;
+ (instancetype)stringWithString:(NSString*)string;
+ (instancetype)stringWithFormat:(NSString*)format, ... __attribute__((format(NSString, 1, 2)));
+ (instancetype)stringWithCharacters:(const unichar*)characters length:(NSUInteger)length;
- (instancetype)initWithUTF8String:(const char*)text;
- (instancetype)initWithFormat:(NSString*)format, ... __attribute__((format(NSString, 1, 2)));
- (instancetype)initWithFormat:(NSString*)format
                        locale:(id)locale, ... __attribute__((format(NSString, 1, 3)));
- (instancetype)initWithData:(NSData*)data encoding:(NSStringEncoding)encoding;
- (instancetype)initWithBytes:(const void*)bytes
                       length:(NSUInteger)length
                     encoding:(NSStringEncoding)encoding;
- (const char*)UTF8String __attribute__((objc_returns_inner_pointer));
- (const char*)fileSystemRepresentation __attribute__((objc_returns_inner_pointer));
- (NSData*)dataUsingEncoding:(NSStringEncoding)encoding;
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)encoding;
- (BOOL)isEqualToString:(NSString*)string;
- (BOOL)hasPrefix:(NSString*)string;
- (BOOL)hasSuffix:(NSString*)string;
- (NSString*)substringToIndex:(NSUInteger)to;
- (NSString*)substringFromIndex:(NSUInteger)from;
- (NSString*)substringWithRange:(NSRange)range;
- (NSRange)rangeOfString:(NSString*)string;
- (NSRange)rangeOfComposedCharacterSequenceAtIndex:(NSUInteger)index;
- (NSString*)stringByAppendingString:(NSString*)string;
- (NSString*)stringByAppendingFormat:(NSString*)format, ...;
- (NSString*)stringByAppendingPathComponent:(NSString*)string;
- (NSString*)stringByDeletingLastPathComponent;
- (NSString*)stringByReplacingOccurrencesOfString:(NSString*)target withString:(NSString*)string;
- (NSString*)pathExtension;
- (NSString*)lastPathComponent;
- (void)getCharacters:(unichar*)buffer range:(NSRange)range;
@end

@interface NSMutableString : NSString
- (void)appendString:(NSString*)string;
@end

/// What the compiler makes of a literal.
@interface NSSimpleCString : NSString
@end
@interface NSConstantString : NSSimpleCString
@end

@interface NSValue : NSObject <NSCopying>
+ (NSValue*)valueWithPointer:(const void*)pointer;
- (void*)pointerValue;
@end

@interface NSNumber : NSValue
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithInteger:(NSInteger)value;
+ (NSNumber*)numberWithUnsignedLong:(unsigned long)value;
+ (NSNumber*)numberWithDouble:(double)value;
+ (NSNumber*)numberWithFloat:(float)value;
+ (NSNumber*)numberWithBool:(BOOL)value;
- (int)intValue;
- (NSInteger)integerValue;
- (double)doubleValue;
@end

@interface NSData : NSObject <NSCopying>
- (NSUInteger)length;
- (const void*)bytes;
+ (instancetype)data;
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length;
+ (instancetype)dataWithContentsOfFile:(NSString*)path;
- (BOOL)writeToFile:(NSString*)path atomically:(BOOL)atomically;
@end
@interface NSMutableData : NSData
- (void)appendBytes:(const void*)bytes length:(NSUInteger)length;
- (void*)mutableBytes;
- (void)setLength:(NSUInteger)length;
@end

@interface NSArray : NSObject <NSCopying, NSFastEnumeration>
- (NSUInteger)count;
- (id)objectAtIndex:(NSUInteger)index;
- (id)firstObject;
- (id)lastObject;
- (BOOL)containsObject:(id)object;
- (NSUInteger)indexOfObject:(id)object;
+ (instancetype)array;
+ (instancetype)arrayWithObject:(id)object;
+ (instancetype)arrayWithObjects:(id)first, ... __attribute__((sentinel(0, 1)));
+ (instancetype)arrayWithArray:(NSArray*)array;
@end
@interface NSMutableArray : NSArray
- (void)addObject:(id)object;
- (void)removeObject:(id)object;
- (void)removeObjectAtIndex:(NSUInteger)index;
- (void)removeAllObjects;
@end

@interface NSSet : NSObject <NSCopying, NSFastEnumeration>
- (NSUInteger)count;
- (BOOL)containsObject:(id)object;
@end

@interface NSEnumerator : NSObject <NSFastEnumeration>
- (id)nextObject;
@end

@interface NSDictionary : NSObject <NSCopying, NSFastEnumeration>
- (NSUInteger)count;
- (id)objectForKey:(id)key;
- (NSEnumerator*)keyEnumerator;
+ (instancetype)dictionary;
+ (instancetype)dictionaryWithObject:(id)object forKey:(id<NSCopying>)key;
+ (instancetype)dictionaryWithObjectsAndKeys:(id)first, ... __attribute__((sentinel(0, 1)));
- (id)valueForKey:(NSString*)key;
@end
@interface NSMutableDictionary : NSDictionary
- (void)setObject:(id)object forKey:(id<NSCopying>)key;
- (void)removeObjectForKey:(id)key;
@end

@interface NSDate : NSObject <NSCopying>
+ (instancetype)date;
+ (instancetype)dateWithTimeIntervalSinceNow:(NSTimeInterval)seconds;
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds;
+ (NSDate*)distantFuture;
+ (NSDate*)distantPast;
- (NSTimeInterval)timeIntervalSince1970;
- (NSTimeInterval)timeIntervalSinceNow;
- (instancetype)initWithTimeIntervalSinceNow:(NSTimeInterval)seconds;
@end

@interface NSError : NSObject <NSCopying>
- (NSInteger)code;
- (NSString*)domain;
- (NSString*)localizedDescription;
@end

@interface NSException : NSObject <NSCopying>
+ (void)raise:(NSString*)name format:(NSString*)format, ...;
- (NSString*)name;
- (NSString*)reason;
@end
typedef void NSUncaughtExceptionHandler(NSException* exception);
extern "C" void NSSetUncaughtExceptionHandler(NSUncaughtExceptionHandler*);

@interface NSAssertionHandler : NSObject
+ (NSAssertionHandler*)currentHandler;
- (void)handleFailureInMethod:(SEL)selector
                       object:(id)object
                         file:(NSString*)file
                   lineNumber:(NSInteger)line
                  description:(NSString*)format, ...;
- (void)handleFailureInFunction:(NSString*)function
                           file:(NSString*)file
                     lineNumber:(NSInteger)line
                    description:(NSString*)format, ...;
@end

@interface NSBundle : NSObject
+ (NSBundle*)mainBundle;
+ (NSBundle*)bundleWithPath:(NSString*)path;
+ (NSBundle*)bundleWithURL:(NSURL*)url;
- (id)objectForInfoDictionaryKey:(NSString*)key;
+ (NSBundle*)bundleForClass:(Class)aClass;
- (instancetype)initWithPath:(NSString*)path;
- (BOOL)load;
- (BOOL)isLoaded;
- (Class)principalClass;
- (Class)classNamed:(NSString*)name;
- (NSString*)bundlePath;
- (NSString*)resourcePath;
- (NSString*)pathForResource:(NSString*)name ofType:(NSString*)extension;
- (NSDictionary*)infoDictionary;
@end

typedef NSString* NSNotificationName;
@interface NSNotification : NSObject <NSCopying>
- (NSNotificationName)name;
- (id)object;
- (NSDictionary*)userInfo;
+ (instancetype)notificationWithName:(NSNotificationName)name object:(id)object;
@end
@interface NSNotificationCenter : NSObject
+ (NSNotificationCenter*)defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(NSNotificationName)name
             object:(id)object;
- (void)postNotification:(NSNotification*)notification;
- (void)postNotificationName:(NSNotificationName)name object:(id)object;
- (void)postNotificationName:(NSNotificationName)name
                      object:(id)object
                    userInfo:(NSDictionary*)userInfo;
- (void)removeObserver:(id)observer;
- (void)removeObserver:(id)observer name:(NSNotificationName)name object:(id)object;
@end

typedef NSString* NSFileAttributeKey;
extern "C" NSFileAttributeKey const NSFileModificationDate;
extern "C" NSFileAttributeKey const NSFileHFSCreatorCode;
extern "C" NSFileAttributeKey const NSFileHFSTypeCode;
@interface NSDirectoryEnumerator : NSEnumerator
@end
@interface NSFileManager : NSObject
+ (NSFileManager*)defaultManager;
- (NSDictionary*)attributesOfItemAtPath:(NSString*)path error:(NSError**)error;
- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error;
- (BOOL)moveItemAtPath:(NSString*)from toPath:(NSString*)to error:(NSError**)error;
- (BOOL)fileExistsAtPath:(NSString*)path;
- (NSDirectoryEnumerator*)enumeratorAtPath:(NSString*)path;
@end
@interface NSDictionary (NSFileAttributes)
- (NSDate*)fileModificationDate;
@end

typedef NSString* NSRunLoopMode;
extern "C" NSRunLoopMode const NSDefaultRunLoopMode;
extern "C" NSRunLoopMode const NSRunLoopCommonModes;
@class NSTimer;
@interface NSRunLoop : NSObject
+ (NSRunLoop*)currentRunLoop;
+ (NSRunLoop*)mainRunLoop;
- (NSRunLoopMode)currentMode;
- (void)addTimer:(NSTimer*)timer forMode:(NSRunLoopMode)mode;
- (BOOL)runMode:(NSRunLoopMode)mode beforeDate:(NSDate*)date;
- (void)runUntilDate:(NSDate*)date;
- (void)performSelector:(SEL)selector
                 target:(id)target
               argument:(id)argument
                  order:(NSUInteger)order
                  modes:(NSArray*)modes;
@end
@interface NSTimer : NSObject
+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)seconds
                           target:(id)target
                         selector:(SEL)selector
                         userInfo:(id)userInfo
                          repeats:(BOOL)repeats;
+ (NSTimer*)scheduledTimerWithTimeInterval:(NSTimeInterval)seconds
                                    target:(id)target
                                  selector:(SEL)selector
                                  userInfo:(id)userInfo
                                   repeats:(BOOL)repeats;
- (void)invalidate;
- (void)setFireDate:(NSDate*)date;
- (id)userInfo;
@end
@interface NSThread : NSObject
+ (NSThread*)currentThread;
+ (BOOL)isMainThread;
+ (BOOL)isMultiThreaded;
+ (void)detachNewThreadSelector:(SEL)selector toTarget:(id)target withObject:(id)object;
@end

extern "C" NSNotificationName const NSFileHandleDataAvailableNotification;
@interface NSFileHandle : NSObject
- (instancetype)initWithFileDescriptor:(int)descriptor closeOnDealloc:(BOOL)close;
- (int)fileDescriptor;
- (NSData*)availableData;
- (void)waitForDataInBackgroundAndNotify;
- (void)waitForDataInBackgroundAndNotifyForModes:(NSArray*)modes;
@end

@interface NSUserDefaults : NSObject
+ (NSUserDefaults*)standardUserDefaults;
- (void)registerDefaults:(NSDictionary*)defaults;
- (void)setVolatileDomain:(NSDictionary*)domain forName:(NSString*)name;
- (id)objectForKey:(NSString*)name;
@end
@interface NSProcessInfo : NSObject
+ (NSProcessInfo*)processInfo;
- (NSString*)processName;
- (void)setProcessName:(NSString*)name;
- (NSTimeInterval)systemUptime;
@end
@interface NSLocale : NSObject <NSCopying>
+ (instancetype)localeWithLocaleIdentifier:(NSString*)identifier;
- (instancetype)initWithLocaleIdentifier:(NSString*)identifier;
+ (NSLocale*)systemLocale;
@end
@interface NSCoder : NSObject
- (BOOL)allowsKeyedCoding;
- (id)decodeObjectForKey:(NSString*)key;
- (BOOL)containsValueForKey:(NSString*)key;
@end
