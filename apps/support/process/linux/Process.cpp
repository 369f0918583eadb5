#include "apps/support/process/ChildProcess.h"
#include "apps/support/process/EndWithParent.h"

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

void CloseAllBut(int nKept)
{
    if (nKept > STDERR_FILENO + 1)
        ::close_range(STDERR_FILENO + 1, static_cast<unsigned>(nKept) - 1, 0);
    ::close_range(static_cast<unsigned>(nKept) + 1, ~0U, 0);
}

std::string ProgramOf(std::int64_t nProcess)
{
    std::error_code error;
    const auto program =
        std::filesystem::read_symlink("/proc/" + std::to_string(nProcess) + "/exe", error);
    return error ? "unknown" : program.string();
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
