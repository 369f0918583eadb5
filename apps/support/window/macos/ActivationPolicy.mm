#include "apps/support/window/ActivationPolicy.h"

#import <AppKit/AppKit.h>

namespace Tarvane
{

void StandInFront() { [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular]; }

} // namespace Tarvane
