#include "apps/support/window/ApplicationArguments.h"

#import <Foundation/Foundation.h>

namespace Tarvane
{

void HideArguments(char**)
{
    [[NSUserDefaults standardUserDefaults]
        registerDefaults:[NSDictionary dictionaryWithObject:@"NO"
                                                     forKey:@"NSTreatUnknownArgumentsAsOpen"]];
}

} // namespace Tarvane
