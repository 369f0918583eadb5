#include "bench/sessions/Measure.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <malloc.h>
#include <map>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Bench
{

namespace
{

struct Expectation
{
    std::string strName;
    std::string strBase;
    double dLimit;
};

std::vector<Expectation> expectations;

void RunOnce(benchmark::State& state, const Steps& steps)
{
    for (auto _ : state)
    {
        if (steps.prepare)
            steps.prepare();
        const auto start = std::chrono::steady_clock::now();
        steps.timed();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        if (steps.cleanUp)
            steps.cleanUp();
        state.SetIterationTime(taken.count());
    }
}

/// Keeps the times of each name, and stays silent until the end.
class CTimes : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
        {
            if (run.run_type == Run::RT_Iteration)
                times[run.run_name.function_name].push_back(run.real_accumulated_time * 1e3);
        }
    }

    std::map<std::string, std::vector<double>> times; // milliseconds
};

double MedianOf(std::vector<double> times)
{
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

double LowestOf(const std::vector<double>& times)
{
    return *std::min_element(times.begin(), times.end());
}

std::size_t KilobytesOf(const char* pField)
{
    std::ifstream status("/proc/self/status");
    for (std::string strName; status >> strName; status.ignore(1000, '\n'))
    {
        std::size_t n = 0;
        if (strName == pField && status >> n)
            return n;
    }
    return 0;
}

} // namespace

void Register(const std::string& strName, const Steps& steps)
{
    benchmark::RegisterBenchmark(strName.c_str(),
                                 [steps](benchmark::State& state) { RunOnce(state, steps); })
        ->UseManualTime()
        ->Iterations(1);
}

void Expect(const std::string& strName, const std::string& strBase, double dLimit)
{
    expectations.push_back({strName, strBase, dLimit});
}

std::size_t PeakOf(const std::function<void()>& body)
{
    int ends[2];
    if (pipe(ends) != 0)
        return 0;
    const pid_t nChild = fork();
    if (nChild == 0)
    {
        malloc_trim(0);                              // What is free is not there before.
        std::ofstream("/proc/self/clear_refs") << 5; // The peak starts anew from here.
        const std::size_t nBefore = KilobytesOf("VmRSS:");
        body();
        const std::size_t nPeak = KilobytesOf("VmHWM:") - nBefore;
        const ssize_t nWritten = write(ends[1], &nPeak, sizeof nPeak);
        _exit(nWritten == sizeof nPeak ? 0 : 1);
    }
    std::size_t nPeak = 0;
    const ssize_t nRead = read(ends[0], &nPeak, sizeof nPeak);
    waitpid(nChild, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    return nRead == sizeof nPeak ? nPeak * 1024 : 0;
}

int RunAll(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    CTimes all;
    benchmark::RunSpecifiedBenchmarks(&all);
    std::printf("%-40s %13s %13s\n", "", "median", "lowest");
    for (const auto& [strName, times] : all.times)
        std::printf("%-40s %10.2f ms %10.2f ms\n", strName.c_str(), MedianOf(times),
                    LowestOf(times));
    std::printf("\n%-64s %6s %7s\n", "", "median", "lowest");
    int nMissed = 0;
    for (const Expectation& expected : expectations)
    {
        const auto times = all.times.find(expected.strName);
        const auto base = all.times.find(expected.strBase);
        if (times == all.times.end() || base == all.times.end())
            continue;
        const double dRatio = MedianOf(times->second) / MedianOf(base->second);
        nMissed += dRatio > expected.dLimit;
        std::printf("%-34s / %-28s %6.2f %6.2f  (at most %.2f)%s\n", expected.strName.c_str(),
                    expected.strBase.c_str(), dRatio,
                    LowestOf(times->second) / LowestOf(base->second), expected.dLimit,
                    dRatio > expected.dLimit ? "  MISSED" : "");
    }
    return nMissed;
}

} // namespace Bench
