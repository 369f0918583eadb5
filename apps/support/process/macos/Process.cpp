#include "apps/support/process/ChildProcess.h"
#include "apps/support/process/EndWithParent.h"

#include <libproc.h>
#include <mach-o/dyld.h>

#include <string>
#include <unistd.h>

namespace Tarvane
{

void EndWithParent(pid_t) {}

void CloseAllBut(int nKept)
{
    const int nMost = ::getdtablesize();
    for (int nFile = STDERR_FILENO + 1; nFile < nMost; ++nFile)
        if (nFile != nKept)
            ::close(nFile);
}

std::string ProgramOf(std::int64_t nProcess)
{
    char szPath[PROC_PIDPATHINFO_MAXSIZE];
    const int nLength = proc_pidpath(static_cast<pid_t>(nProcess), szPath, sizeof szPath);
    return nLength > 0 ? std::string(szPath, static_cast<std::size_t>(nLength)) : "unknown";
}

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
