#include "apps/support/ChildProcess.h"
#include "apps/support/EndWithParent.h"

#include <mach-o/dyld.h>

#include <string>

namespace Tarvane
{

void EndWithParent(pid_t) {}

std::filesystem::path ProgramFolder()
{
    uint32_t nSize = 0;
    _NSGetExecutablePath(nullptr, &nSize);
    std::string strPath(nSize, '\0');
    _NSGetExecutablePath(strPath.data(), &nSize);
    return std::filesystem::canonical(strPath.c_str()).parent_path();
}

} // namespace Tarvane
