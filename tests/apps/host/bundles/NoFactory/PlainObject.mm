#import <Foundation/Foundation.h>

// A principal class that makes no views.
@interface NoFactoryPlainObject : NSObject
@end

@implementation NoFactoryPlainObject
@end
