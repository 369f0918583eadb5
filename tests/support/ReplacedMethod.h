// Another function in the place of a platform class's method, for the life of this object.
#pragma once

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

#include <stdexcept>

namespace TarvaneTests
{

class ReplacedMethod
{
public:
    /// An instance method of the class, or, with object_getClass, one of the class's own. The
    /// function, a lambda without captures, takes the receiver and the selector first.
    template <typename Function>
    ReplacedMethod(Class owner, SEL selector, Function function)
        : m_method(class_getInstanceMethod(owner, selector))
    {
        if (!m_method)
            throw std::logic_error("a method to be replaced is missing");
        // Methods have types of their own; between them and IMP the way is over the plainest one.
        m_original = method_setImplementation(m_method, (IMP)(void (*)())(+function));
    }
    ~ReplacedMethod() { method_setImplementation(m_method, m_original); }
    ReplacedMethod(const ReplacedMethod&) = delete;
    ReplacedMethod& operator=(const ReplacedMethod&) = delete;

private:
    Method m_method;
    IMP m_original;
};

} // namespace TarvaneTests
