#include "apps/support/process/Pipe.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <system_error>
#include <unistd.h>

namespace Tarvane
{

void IgnoreBrokenPipes()
{
    static std::once_flag ignored;
    std::call_once(ignored, [] { ::signal(SIGPIPE, SIG_IGN); });
}

CPipe::CPipe()
{
    IgnoreBrokenPipes();
    if (::pipe(m_nFiles) != 0)
    {
        throw std::system_error(errno, std::generic_category(), "cannot open a pipe");
    }
    for (int nFile : m_nFiles)
    {
        ::fcntl(nFile, F_SETFD, FD_CLOEXEC);
    }
}

CPipe::~CPipe()
{
    CloseRead();
    CloseWrite();
}

void CPipe::Close(int nEnd)
{
    if (m_nFiles[nEnd] >= 0)
    {
        ::close(m_nFiles[nEnd]);
        m_nFiles[nEnd] = -1;
    }
}

bool CPipe::Write(std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t nWritten = ::write(WriteEnd(), bytes.data(), bytes.size());
        if (nWritten < 0 && errno != EINTR)
        {
            return false;
        }
        bytes.remove_prefix(nWritten > 0 ? static_cast<size_t>(nWritten) : 0);
    }
    return true;
}

} // namespace Tarvane
