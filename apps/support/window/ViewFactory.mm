#import "apps/support/window/ViewFactory.h"

#include "apps/support/program/CommandLine.h"

#import <Foundation/Foundation.h>

namespace Tarvane
{

id MakeViewFactory(const std::filesystem::path& path)
{
    NSBundle* bundle = [NSBundle bundleWithPath:[NSString stringWithUTF8String:path.c_str()]];
    Class factoryClass = [bundle principalClass];
    if (factoryClass == Nil)
    {
        throw CUsageError("the bundle " + path.string() +
                          " cannot be loaded or names no principal class - build it again, or name "
                          "another with --bundle.");
    }
    // By name: clang makes no usable object of a protocol that no class of the file adopts.
    if (![factoryClass conformsToProtocol:NSProtocolFromString(@"AUCocoaUIBase")])
    {
        throw CUsageError("the principal class " +
                          std::string([NSStringFromClass(factoryClass) UTF8String]) + " of " +
                          path.string() +
                          " makes no plug-in views - name another bundle with --bundle.");
    }
    return [[[factoryClass alloc] init] autorelease];
}

} // namespace Tarvane
