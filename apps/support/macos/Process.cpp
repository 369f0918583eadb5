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
    const auto folder = std::filesystem::canonical(strPath.c_str()).parent_path();
    // NAME.app/Contents/MacOS
    const auto application = folder.parent_path().parent_path();
    return application.extension() == ".app" ? application.parent_path() : folder;
}

std::filesystem::path ProgramNamed(const std::string& strName)
{
    const auto application = ProgramFolder() / (strName + ".app");
    return std::filesystem::exists(application) ? application / "Contents" / "MacOS" / strName
                                                : ProgramFolder() / strName;
}

} // namespace Tarvane
