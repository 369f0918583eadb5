#include "apps/editor/OpenFiles.h"

#include <algorithm>
#include <libproc.h>

namespace Tarvane::Editor
{

namespace
{

// The numbers that ask(buffer, bytes) writes; without a buffer it says how many bytes it takes.
template <typename Ask> std::vector<std::int64_t> Numbers(const Ask& ask)
{
    const int nBytes = ask(nullptr, 0);
    std::vector<int> numbers(nBytes > 0 ? static_cast<std::size_t>(nBytes) / sizeof(int) : 0);
    const int nWritten = ask(numbers.data(), static_cast<int>(numbers.size() * sizeof(int)));
    numbers.resize(nWritten > 0 ? static_cast<std::size_t>(nWritten) / sizeof(int) : 0);
    return {numbers.begin(), numbers.end()};
}

} // namespace

std::vector<std::int64_t> RunningProcesses()
{
    return Numbers([](void* pBuffer, int nBytes)
                   { return proc_listpids(PROC_ALL_PIDS, 0, pBuffer, nBytes); });
}

bool HasOneOpen(std::int64_t nProcess, const std::set<std::filesystem::path>& files)
{
    return std::any_of(
        files.begin(), files.end(),
        [nProcess](const std::filesystem::path& file)
        {
            const auto holders = Numbers(
                [&file](void* pBuffer, int nBytes)
                { return proc_listpidspath(PROC_ALL_PIDS, 0, file.c_str(), 0, pBuffer, nBytes); });
            return std::count(holders.begin(), holders.end(), nProcess) != 0;
        });
}

} // namespace Tarvane::Editor
