#include "platform/gnustep/CoreFoundation/UnitString.h"

#include <algorithm>

@implementation PlatformUnitString

- (id)initWithUnits:(const unichar*)units count:(NSUInteger)count
{
    self = [super init];
    if (self != nil)
        m_units.assign(units, units + count);
    return self;
}

- (id)copyWithZone:(NSZone*)zone
{
    // Never changes, so it is its own copy; a copy by GNUstep would lose what this class is for.
    (void)zone;
    return [self retain];
}

- (NSUInteger)length
{
    return m_units.size();
}

- (unichar)characterAtIndex:(NSUInteger)index
{
    if (index >= m_units.size())
        [NSException raise:NSRangeException format:@"no unit at the index"];
    return m_units[index];
}

- (void)getCharacters:(unichar*)buffer range:(NSRange)range
{
    if (range.location > m_units.size() || range.length > m_units.size() - range.location)
        [NSException raise:NSRangeException format:@"the range is not inside the string"];
    std::copy_n(m_units.begin() + range.location, range.length, buffer);
}

@end
