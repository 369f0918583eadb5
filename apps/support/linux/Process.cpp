#include "apps/support/ChildProcess.h"
#include "apps/support/EndWithParent.h"

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace Tarvane
{

void EndWithParent(pid_t nParent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != nParent)
    {
        // The parent went before the request was made.
        ::_exit(127);
    }
}

std::filesystem::path ProgramFolder()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

std::filesystem::path ProgramNamed(const std::string& strName)
{
    return ProgramFolder() / strName;
}

} // namespace Tarvane
