#import <AppKit/AppKit.h>

#include "platform/gnustep/AppKit/MethodReplacement.h"

// What GNUstep loses each time that it loads a nib: the document that it reads the whole source
// into to see which of its two readers is the right one, more than 100 KB, and the class name of
// each view of a class of one's own. The question is answered here by a look at the source's
// beginning, and the name is given up with what has held it.
@interface PlatformNibLoading : NSObject
@end

namespace
{

using CheckMethod = BOOL (*)(id, SEL, NSData*);
using DeallocMethod = void (*)(id, SEL);

constexpr char kVersion3[] = "com.apple.InterfaceBuilder3.";
constexpr NSUInteger kBeginning = 1024; // bytes; the type is said in the first element

CheckMethod g_check;
DeallocMethod g_dealloc; // of the placeholder's superclass, or its own

BOOL IsOfVersion3(id, SEL, NSData* source)
{
    NSData* mark = [NSData dataWithBytesNoCopy:(void*)kVersion3
                                        length:sizeof kVersion3 - 1
                                  freeWhenDone:NO];
    const NSRange beginning = {0, MIN(kBeginning, [source length])};
    return [source rangeOfData:mark options:0 range:beginning].length > 0;
}

void DeallocPlaceholder(id self, SEL selector)
{
    [object_getIvar(self, class_getInstanceVariable([self class], "_className")) release];
    g_dealloc(self, selector);
}

} // namespace

@implementation PlatformNibLoading

// Called once, when the library is loaded, with the program or later with a bundle.
+ (void)load
{
    Class reader = object_getClass(objc_getClass("GSXibKeyedUnarchiver"));
    platform::ReplaceMethod(reader, sel_registerName("checkXib5:"), IsOfVersion3, g_check);
    platform::OverrideMethod(objc_getClass("NSCustomView"), @selector(dealloc), DeallocPlaceholder,
                             g_dealloc);
}

@end
