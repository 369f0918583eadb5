#pragma once

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

namespace platform
{

/// Puts `replacement` in the place of the method that `owner` has under `selector`, and the method
/// that was there into `original`; the latter first, as other threads may be in the midst of
/// calling. Both take the receiver and the selector before the method's own arguments.
template <typename Function>
void ReplaceMethod(Class owner, SEL selector, Function replacement, Function& original)
{
    // Methods have types of their own; between them and IMP the way is over the plainest one.
    using AnyFunction = void (*)();
    Method method = class_getInstanceMethod(owner, selector);
    original = (Function)(AnyFunction)method_getImplementation(method);
    method_setImplementation(method, (IMP)(AnyFunction)replacement);
}

/// The same for `owner` alone, where the method may be one that it inherits.
template <typename Function>
void OverrideMethod(Class owner, SEL selector, Function replacement, Function& original)
{
    using AnyFunction = void (*)();
    Method method = class_getInstanceMethod(owner, selector);
    original = (Function)(AnyFunction)method_getImplementation(method);
    class_replaceMethod(owner, selector, (IMP)(AnyFunction)replacement,
                        method_getTypeEncoding(method));
}

} // namespace platform
