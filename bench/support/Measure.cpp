#include "bench/support/Measure.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
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
    double dLimit; // none: infinite
};

struct Derivation
{
    std::string strName;
    std::string strOf;
    std::string strWithout;
    int nThings;
};

// Nanoseconds.
struct Figure
{
    double dMedian;
    double dLowest;
};

struct Count
{
    std::string strWhat;
    std::size_t nCounted;
    std::size_t nMost;
};

std::vector<Expectation> expectations;
std::vector<Derivation> derivations;
std::vector<std::pair<std::string, double>> bounds; // nanoseconds
std::vector<Count> counts;

void RunOnce(benchmark::State& state, const Steps& steps, int nThings)
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
        state.SetIterationTime(taken.count() / nThings);
    }
}

// Keeps the times of each name, and stays silent until the end.
class CTimes : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
        {
            if (run.run_type == Run::RT_Iteration)
                times[run.run_name.function_name].push_back(run.real_accumulated_time * 1e9);
        }
    }

    std::map<std::string, std::vector<double>> times; // nanoseconds
};

CTimes all;

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

std::string TimeText(double dNanoseconds)
{
    const bool fMilli = dNanoseconds >= 1e5, fMicro = dNanoseconds >= 1e3;
    char sz[32];
    std::snprintf(sz, sizeof sz, "%10.2f %s",
                  dNanoseconds / (fMilli   ? 1e6
                                  : fMicro ? 1e3
                                           : 1),
                  fMilli   ? "ms"
                  : fMicro ? "us"
                           : "ns");
    return sz;
}

using Figures = std::map<std::string, Figure>;

// Without what was not run.
Figures AllFigures()
{
    Figures figures;
    for (const auto& [strName, times] : all.times)
        figures[strName] = {MedianOf(times), LowestOf(times)};
    for (const Derivation& derived : derivations)
    {
        const auto of = figures.find(derived.strOf), without = figures.find(derived.strWithout);
        if (of == figures.end() || without == figures.end())
            continue;
        figures[derived.strName] = {
            (of->second.dMedian - without->second.dMedian) / derived.nThings,
            (of->second.dLowest - without->second.dLowest) / derived.nThings};
    }
    return figures;
}

void PrintTimes(const Figures& figures)
{
    std::printf("%-44s %13s %13s\n", "", "median", "lowest");
    for (const auto& [strName, figure] : figures)
        std::printf("%-44s %s %s\n", strName.c_str(), TimeText(figure.dMedian).c_str(),
                    TimeText(figure.dLowest).c_str());
}

std::string Verdict(bool fMissed)
{
    return fMissed ? "  MISSED" : "  reached";
}

std::string Verdict(double dRatio, double dLimit)
{
    if (std::isinf(dLimit))
        return {};
    char sz[32];
    std::snprintf(sz, sizeof sz, "  (at most %.2f)", dLimit);
    return sz + Verdict(dRatio > dLimit);
}

int MissedRatios(const Figures& figures)
{
    int nMissed = 0;
    for (const Expectation& expected : expectations)
    {
        const auto of = figures.find(expected.strName), base = figures.find(expected.strBase);
        if (of == figures.end() || base == figures.end())
            continue;
        const double dRatio = of->second.dMedian / base->second.dMedian;
        nMissed += dRatio > expected.dLimit;
        std::printf("%-37s / %-30s %6.2f %6.2f%s\n", expected.strName.c_str(),
                    expected.strBase.c_str(), dRatio, of->second.dLowest / base->second.dLowest,
                    Verdict(dRatio, expected.dLimit).c_str());
    }
    return nMissed;
}

int MissedBounds(const Figures& figures)
{
    int nMissed = 0;
    for (const auto& [strName, dMost] : bounds)
    {
        const auto of = figures.find(strName);
        if (of == figures.end())
            continue;
        const auto [dMedian, dLowest] = of->second;
        nMissed += dMedian > dMost;
        std::printf("%-70s %6.2f %6.2f  (at most %.0f ns)%s\n", strName.c_str(), dMedian, dLowest,
                    dMost, Verdict(dMedian > dMost).c_str());
    }
    return nMissed;
}

int MissedCounts()
{
    int nMissed = 0;
    for (const Count& count : counts)
    {
        nMissed += count.nCounted > count.nMost;
        std::printf("%-70s %6zu         (at most %zu)%s\n", count.strWhat.c_str(), count.nCounted,
                    count.nMost, Verdict(count.nCounted > count.nMost).c_str());
    }
    return nMissed;
}

} // namespace

void Register(const std::string& strName, const Steps& steps, int nThings, int nRepetitions)
{
    auto* pBenchmark =
        benchmark::RegisterBenchmark(strName.c_str(), [steps, nThings](benchmark::State& state)
                                     { RunOnce(state, steps, nThings); });
    pBenchmark->UseManualTime()->Iterations(1);
    if (nRepetitions > 0)
        pBenchmark->Repetitions(nRepetitions);
}

void Expect(const std::string& strName, const std::string& strBase, double dLimit)
{
    expectations.push_back({strName, strBase, dLimit});
}

void Compare(const std::string& strName, const std::string& strBase)
{
    Expect(strName, strBase, std::numeric_limits<double>::infinity());
}

void Derive(const std::string& strName, const std::string& strOf, const std::string& strWithout,
            int nThings)
{
    derivations.push_back({strName, strOf, strWithout, nThings});
}

void ExpectWithin(const std::string& strName, double dNanoseconds)
{
    bounds.emplace_back(strName, dNanoseconds);
}

void ExpectCount(const std::string& strWhat, std::size_t nCounted, std::size_t nMost)
{
    counts.push_back({strWhat, nCounted, nMost});
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

void Run()
{
    benchmark::RunSpecifiedBenchmarks(&all);
    benchmark::ClearRegisteredBenchmarks();
}

int Report()
{
    const Figures figures = AllFigures();
    PrintTimes(figures);
    std::printf("\n%-70s %6s %7s\n", "", "median", "lowest");
    return MissedRatios(figures) + MissedBounds(figures) + MissedCounts();
}

int RunAll(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    Run();
    return Report();
}

} // namespace Bench
