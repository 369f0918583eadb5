#include "apps/support/TemporaryFolder.h"

#include "apps/support/CommandLine.h"

#import <Foundation/Foundation.h>

#include <cstdlib>
#include <filesystem>

namespace Tarvane
{
namespace
{

bool IsThere()
{
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    const bool fThere = [NSTemporaryDirectory() length] > 0;
    [pool drain];
    return fThere;
}

bool IsThereIn(const char* szVariable, const char* szBelow)
{
    const char* const szFolder = std::getenv(szVariable);
    if (szFolder == nullptr || szFolder[0] != '/')
        return false;
    const std::filesystem::path folder = std::filesystem::path(szFolder) / szBelow;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    setenv("TEMP", folder.c_str(), 1);
    return IsThere();
}

} // namespace

// GNUstep goes on without the folder until it needs it, and then waits in a panel for a user.
void RequireTemporaryFolder()
{
    if (IsThere() || IsThereIn("XDG_RUNTIME_DIR", "") || IsThereIn("HOME", ".cache/tarvane-link"))
        return;
    throw CUsageError("no folder for temporary files can be used: it is full, or the name "
                      "GNUstepSecure there belongs to another user. Set TEMP to a folder of your "
                      "own.");
}

} // namespace Tarvane
