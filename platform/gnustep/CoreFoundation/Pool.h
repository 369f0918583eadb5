#pragma once

#import <Foundation/Foundation.h>

namespace platform
{

/// An autorelease pool for one scope, so that a C function leaves nothing behind on threads that
/// have no pool of their own.
class Pool
{
  public:
    Pool() : m_pool([[PoolClass() alloc] init]) {}
    ~Pool() { [m_pool drain]; }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

  private:
    /// Looked up once: the runtime searches for a class by its name, each time it is named.
    static Class PoolClass()
    {
        static const Class poolClass = [NSAutoreleasePool class];
        return poolClass;
    }

    NSAutoreleasePool* m_pool;
};

} // namespace platform
