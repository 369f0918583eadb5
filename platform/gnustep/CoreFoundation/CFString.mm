#import <Foundation/Foundation.h>
#include <CoreFoundation/CoreFoundation.h>
