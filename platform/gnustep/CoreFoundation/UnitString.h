#pragma once

#import <Foundation/Foundation.h>

#include <vector>

/// A string of any UTF-16 units. GNUstep's own strings drop a byte order mark at their start and
/// cannot be made at all from a surrogate without its partner.
@interface PlatformUnitString : NSString
{
    std::vector<unichar> m_units;
}
- (id)initWithUnits:(const unichar*)units count:(NSUInteger)count;
@end
