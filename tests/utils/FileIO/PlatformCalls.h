#pragma once

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#import <objc/runtime.h>

/// NSTemporaryDirectory answers with the given path, or nil, for the life of a scope.
class TemporaryDirectoryScope
{
  public:
    explicit TemporaryDirectoryScope(NSString* strPath);
    ~TemporaryDirectoryScope();
    TemporaryDirectoryScope(const TemporaryDirectoryScope&) = delete;
    TemporaryDirectoryScope& operator=(const TemporaryDirectoryScope&) = delete;
};

/// A method has another body for the life of a scope.
class MethodScope
{
  public:
    template <typename Body>
    MethodScope(Method method, Body* body)
        : m_method(method), m_original(method_setImplementation(
                                method, reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(body))))
    {
    }
    ~MethodScope() { method_setImplementation(m_method, m_original); }
    MethodScope(const MethodScope&) = delete;
    MethodScope& operator=(const MethodScope&) = delete;

  private:
    Method m_method;
    IMP m_original;
};

/// Each test runs inside an autorelease pool of its own.
class PoolTest : public testing::Test
{
  protected:
    PoolTest() : m_pool([[NSAutoreleasePool alloc] init]) {}
    ~PoolTest() override { [m_pool drain]; }

    /// How many objects the operation leaves in the caller's pool; -1 if it leaves a pool of its
    /// own open, which then catches the one that is added here.
    template <typename Operation> long ObjectsLeftBy(Operation operation)
    {
        const long nBefore = [m_pool autoreleaseCount];
        operation();
        [[[NSObject alloc] init] autorelease];
        return static_cast<long>([m_pool autoreleaseCount]) - nBefore - 1;
    }

    NSAutoreleasePool* m_pool;
};
