#include "soak/ProcessSample.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <thread>

namespace fs = std::filesystem;

namespace Tarvane::Soak
{

namespace
{

long Entries(const fs::path& folder)
{
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

// One that has ended, and that nobody has collected yet, is still listed.
bool IsRunning(pid_t nProcess)
{
    std::ifstream status("/proc/" + std::to_string(nProcess) + "/status");
    for (std::string strLine; std::getline(status, strLine);)
    {
        if (strLine.rfind("State:", 0) == 0)
            return strLine.find("zombie") == std::string::npos;
    }
    return false;
}

void SetFileLimit(pid_t nProcess, rlim_t nBytes)
{
    rlimit limit{};
    if (::prlimit(nProcess, RLIMIT_FSIZE, nullptr, &limit) != 0)
        return;
    limit.rlim_cur = nBytes;
    (void)::prlimit(nProcess, RLIMIT_FSIZE, &limit, nullptr);
}

} // namespace

ProcessSample SampleProcess(pid_t nProcess)
{
    const fs::path folder = "/proc/" + std::to_string(nProcess);
    ProcessSample sample;
    std::ifstream status(folder / "status");
    for (std::string strLine; std::getline(status, strLine);)
    {
        if (strLine.rfind("RssAnon:", 0) == 0)
            sample.nMemory = std::stol(strLine.substr(8));
    }
    if (sample.nMemory == 0)
        throw std::runtime_error("process " + std::to_string(nProcess) + " has ended");
    sample.nDescriptors = Entries(folder / "fd");
    sample.nThreads = Entries(folder / "task");
    return sample;
}

ProcessSample SampleAtRest(pid_t nProcess)
{
    constexpr int kMost = 100, kAlike = 4;
    constexpr std::chrono::milliseconds kBetween{50};
    ProcessSample sample = SampleProcess(nProcess);
    for (int nTaken = 1, nAlike = 1; nTaken < kMost && nAlike < kAlike; ++nTaken)
    {
        std::this_thread::sleep_for(kBetween);
        const ProcessSample next = SampleProcess(nProcess);
        const bool fAlike =
            next.nDescriptors == sample.nDescriptors && next.nThreads == sample.nThreads;
        nAlike = fAlike ? nAlike + 1 : 1;
        sample = next;
    }
    return sample;
}

std::vector<pid_t> ChildrenOf(pid_t nProcess)
{
    std::vector<pid_t> children;
    std::error_code error;
    const fs::path threads = "/proc/" + std::to_string(nProcess) + "/task";
    for (fs::directory_iterator at(threads, error), end; !error && at != end; at.increment(error))
    {
        std::ifstream list(at->path() / "children");
        for (pid_t nChild = 0; list >> nChild;)
        {
            if (IsRunning(nChild))
                children.push_back(nChild);
        }
    }
    return children;
}

void LimitFiles(pid_t nProcess, std::uint64_t nBytes)
{
    SetFileLimit(nProcess, nBytes);
}

void UnlimitFiles(pid_t nProcess)
{
    SetFileLimit(nProcess, RLIM_INFINITY);
}

} // namespace Tarvane::Soak
