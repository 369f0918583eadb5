// A descriptor of the Apple event interface, owned.
#pragma once

#include <Carbon/Carbon.h>

namespace Tarvane
{

/// Empty at first; given back at its end.
struct CEventDescriptor : AEDesc
{
    CEventDescriptor() : AEDesc{typeNull, nullptr} {}
    ~CEventDescriptor() { AEDisposeDesc(this); }
    CEventDescriptor(const CEventDescriptor&) = delete;
    CEventDescriptor& operator=(const CEventDescriptor&) = delete;
};

} // namespace Tarvane
