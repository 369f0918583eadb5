// Times in one table, so that a ratio compares two figures of one run.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace Bench
{

/// What is timed, and what has to happen before and after without being timed.
struct Steps
{
    std::function<void()> prepare;
    std::function<void()> timed;
    std::function<void()> cleanUp;
};

/// The body does nThings of what the name says; times are of one. nRepetitions: 0 is what the
/// command line says.
void Register(const std::string& strName, const Steps& steps, int nThings = 1,
              int nRepetitions = 0);

/// strName takes at most dLimit times what strBase takes.
void Expect(const std::string& strName, const std::string& strBase, double dLimit);

/// What strName takes beside strBase is told, and nothing asked of it.
void Compare(const std::string& strName, const std::string& strBase);

/// A figure of its own, strName: what each of nThings adds to strOf beyond strWithout.
void Derive(const std::string& strName, const std::string& strOf, const std::string& strWithout,
            int nThings);

/// strName takes at most so many nanoseconds.
void ExpectWithin(const std::string& strName, double dNanoseconds);

/// What was counted, and the most that it may be.
void ExpectCount(const std::string& strWhat, std::size_t nCounted, std::size_t nMost);

/// The most memory that the body has at any time beyond what was there before, in bytes. The body
/// runs in a process of its own.
std::size_t PeakOf(const std::function<void()>& body);

/// Runs what is registered, and forgets it; times and expectations are kept.
void Run();

/// Prints the times and what was expected, of the medians and of the lowest of all repetitions.
/// What else the machine does can only add to a time: on a busy one the lowest tell more. Returns
/// the number of expectations that the medians and counts missed.
int Report();

/// Initialises the library, runs everything and reports.
int RunAll(int argc, char** argv);

} // namespace Bench
