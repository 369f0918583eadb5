#include "apps/support/window/ApplicationIcon.h"

#import <Foundation/Foundation.h>

namespace Tarvane
{

void ShowNoIconWindow()
{
    [[NSUserDefaults standardUserDefaults]
        registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
}

} // namespace Tarvane
