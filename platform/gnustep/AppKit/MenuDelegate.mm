#import <AppKit/AppKit.h>

#include "platform/gnustep/AppKit/MethodReplacement.h"

#include <vector>

#include <pthread.h>

// A menu's delegate is a weak reference: once it is gone the menu has none. GNUstep keeps the
// bare pointer, and uses it even while the menu's pop-up button is destroyed; a view that is the
// delegate of a menu inside it may well go first, when the button still waits in an autorelease
// pool.
//
// The runtime has no weak references, so this takes note of every menu with a delegate and looks
// each object up that is destroyed. Main thread, as all of AppKit: a delegate that another thread
// destroys is not noticed.
@interface PlatformMenuDelegate : NSObject
@end

namespace
{

using SetDelegateMethod = void (*)(id, SEL, id);
using DeallocMethod = void (*)(id, SEL);

SetDelegateMethod g_setDelegate;
DeallocMethod g_dealloc;

struct Entry
{
    NSMenu* menu;
    id delegate;
};

// Neither is retained. Few, so that looking through them costs less than any order would.
std::vector<Entry>& Entries()
{
    static auto& entries = *new std::vector<Entry>;
    return entries;
}

pthread_t g_mainThread;

bool IsMainThread() { return pthread_equal(pthread_self(), g_mainThread); }

void Forget(id menu)
{
    std::erase_if(Entries(), [menu](const Entry& entry) { return entry.menu == menu; });
}

std::vector<NSMenu*> MenusOf(id delegate)
{
    std::vector<NSMenu*> menus;
    for (const Entry& entry : Entries())
    {
        if (entry.delegate == delegate)
            menus.push_back(entry.menu);
    }
    return menus;
}

void SetDelegate(id self, SEL selector, id delegate)
{
    g_setDelegate(self, selector, delegate);
    if (!IsMainThread())
        return;
    Forget(self);
    if (delegate != nil)
        Entries().push_back({self, delegate});
}

// -[NSObject dealloc], the last that every object runs.
void Dealloc(id self, SEL selector)
{
    if (IsMainThread() && !Entries().empty())
    {
        Forget(self);
        for (NSMenu* menu : MenusOf(self))
            [menu setDelegate:nil];
    }
    g_dealloc(self, selector);
}

} // namespace

@implementation PlatformMenuDelegate

+ (void)load
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    g_mainThread = pthread_self();
    platform::ReplaceMethod([NSMenu class], @selector(setDelegate:), SetDelegate, g_setDelegate);
    platform::ReplaceMethod([NSObject class], @selector(dealloc), Dealloc, g_dealloc);
    [pool drain];
}

@end
