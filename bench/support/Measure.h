// Times in one table, so that a ratio compares two figures of one run.
#pragma once

#include <functional>
#include <string>

namespace Bench
{

// What is timed, and what has to happen before and after without being timed.
struct Steps
{
    std::function<void()> prepare;
    std::function<void()> timed;
    std::function<void()> cleanUp;
};

void Register(const std::string& strName, const Steps& steps);

// strName takes at most dLimit times what strBase takes.
void Expect(const std::string& strName, const std::string& strBase, double dLimit);

// The most memory that the body has at any time beyond what was there before, in bytes. The body
// runs in a process of its own.
std::size_t PeakOf(const std::function<void()>& body);

// Runs everything and prints the times and the expected ratios, of the medians and of the lowest of
// all repetitions. What else the machine does can only add to a time: on a busy one the lowest tell
// more. Returns the number of ratios of medians that were missed.
int RunAll(int argc, char** argv);

} // namespace Bench
