#pragma once

#import <Foundation/Foundation.h>

namespace platform
{

// An autorelease pool for one scope, so that a C function leaves nothing behind on threads that
// have no pool of their own.
class Pool
{
  public:
    Pool() : m_pool([[NSAutoreleasePool alloc] init]) {}
    ~Pool() { [m_pool drain]; }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

  private:
    NSAutoreleasePool* m_pool;
};

} // namespace platform
