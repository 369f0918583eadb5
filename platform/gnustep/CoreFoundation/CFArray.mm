#include <CoreFoundation/CFArray.h>

#include "platform/gnustep/CoreFoundation/Pool.h"

#include <vector>

// Values of any kind behind the two methods that every NSArray is built on.
@interface PlatformValueArray : NSArray
{
    std::vector<const void*> m_values;
    CFArrayReleaseCallBack m_release;
}
- (id)initWithValues:(const void**)values
               count:(NSUInteger)count
           callBacks:(const CFArrayCallBacks*)callBacks;
@end

@implementation PlatformValueArray

- (id)initWithValues:(const void**)values
               count:(NSUInteger)count
           callBacks:(const CFArrayCallBacks*)callBacks
{
    self = [super init];
    if (self == nil)
        return nil;
    m_values.assign(values, values + count);
    if (callBacks == nullptr)
        return self;
    m_release = callBacks->release;
    if (callBacks->retain == nullptr)
        return self;
    for (const void*& value : m_values)
        value = callBacks->retain(kCFAllocatorDefault, value);
    return self;
}

- (void)dealloc
{
    if (m_release != nullptr)
    {
        for (const void* value : m_values)
            m_release(kCFAllocatorDefault, value);
    }
    [super dealloc];
}

- (NSUInteger)count
{
    return m_values.size();
}

- (id)objectAtIndex:(NSUInteger)index
{
    return index < m_values.size() ? (id)m_values[index] : nil;
}

@end

namespace
{

const void* RetainObject(CFAllocatorRef, const void* value) { return CFRetain(value); }

void ReleaseObject(CFAllocatorRef, const void* value) { CFRelease(value); }

} // namespace

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, RetainObject, ReleaseObject, nullptr, nullptr};

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex count,
                         const CFArrayCallBacks* callBacks)
{
    if (count < 0 || (values == nullptr && count > 0))
        return nullptr;
    platform::Pool pool;
    return (CFArrayRef)[[PlatformValueArray alloc] initWithValues:values
                                                            count:count
                                                        callBacks:callBacks];
}

CFIndex CFArrayGetCount(CFArrayRef array) { return [(NSArray*)array count]; }

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index)
{
    if (index < 0 || index >= CFArrayGetCount(array))
        return nullptr;
    return [(NSArray*)array objectAtIndex:index];
}
