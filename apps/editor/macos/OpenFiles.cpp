#include "apps/editor/OpenFiles.h"

#include <libproc.h>

namespace Tarvane::Editor
{

namespace
{

// What ask(buffer, bytes) writes; without a buffer it says how many bytes it takes.
template <typename T, typename Ask> std::vector<T> ListOf(const Ask& ask)
{
    const int nBytes = ask(nullptr, 0);
    std::vector<T> list(nBytes > 0 ? static_cast<std::size_t>(nBytes) / sizeof(T) : 0);
    const int nWritten = ask(list.data(), static_cast<int>(list.size() * sizeof(T)));
    list.resize(nWritten > 0 ? static_cast<std::size_t>(nWritten) / sizeof(T) : 0);
    return list;
}

} // namespace

std::vector<std::int64_t> RunningProcesses()
{
    const auto processes = ListOf<int>(
        [](void* pBuffer, int nBytes) { return proc_listpids(PROC_ALL_PIDS, 0, pBuffer, nBytes); });
    return {processes.begin(), processes.end()};
}

std::set<std::filesystem::path> OpenFiles(std::int64_t nProcess)
{
    const int nId = static_cast<int>(nProcess);
    std::set<std::filesystem::path> files;
    for (const proc_fdinfo& open :
         ListOf<proc_fdinfo>([nId](void*pBuffer, int nBytes)
                             { return proc_pidinfo(nId, PROC_PIDLISTFDS, 0, pBuffer, nBytes); }))
    {
        vnode_fdinfowithpath file{};
        if (open.proc_fdtype == PROX_FDTYPE_VNODE &&
            proc_pidfdinfo(nId, open.proc_fd, PROC_PIDFDVNODEPATHINFO, &file, sizeof file) > 0)
            files.insert(file.pvip.vip_path);
    }
    return files;
}

} // namespace Tarvane::Editor
