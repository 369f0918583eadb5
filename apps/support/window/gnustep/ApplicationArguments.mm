#include "apps/support/window/ApplicationArguments.h"

#import <Foundation/Foundation.h>

#include <unistd.h>

namespace Tarvane
{

void HideArguments(char** argv)
{
    [NSProcessInfo initializeWithArguments:argv count:1 environment:environ];
}

} // namespace Tarvane
