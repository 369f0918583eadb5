#include "apps/editor/OpenFiles.h"

#include <charconv>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace Tarvane::Editor
{

std::vector<std::int64_t> RunningProcesses()
{
    std::vector<std::int64_t> processes;
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error))
    {
        const std::string strName = entry->path().filename().string();
        std::int64_t nProcess = 0;
        const auto [pEnd, failure] =
            std::from_chars(strName.data(), strName.data() + strName.size(), nProcess);
        if (failure == std::errc() && pEnd == strName.data() + strName.size())
            processes.push_back(nProcess);
    }
    return processes;
}

std::set<fs::path> OpenFiles(std::int64_t nProcess)
{
    std::set<fs::path> files;
    std::error_code error;
    // A process may end, and a file be closed, while one looks.
    for (fs::directory_iterator entry("/proc/" + std::to_string(nProcess) + "/fd", error), end;
         !error && entry != end; entry.increment(error))
    {
        std::error_code closed;
        const fs::path file = fs::read_symlink(entry->path(), closed);
        if (!closed && file.is_absolute())
            files.insert(file);
    }
    return files;
}

} // namespace Tarvane::Editor
