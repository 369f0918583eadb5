// Measures what a view does on the main thread whenever somebody asks it to.
#pragma once

#include "apps/host/Stalls.h"

#import <Foundation/Foundation.h>

namespace Tarvane
{

/// Main thread. One at a time; the stalls must outlive it.
class CStallWatch
{
public:
    /// From here on every call that keeps the main thread is measured, for all views of this class.
    /// What the class does not do is not looked for.
    CStallWatch(Class viewClass, CStalls& stalls);
    ~CStallWatch();
    CStallWatch(const CStallWatch&) = delete;
    CStallWatch& operator=(const CStallWatch&) = delete;
};

} // namespace Tarvane
