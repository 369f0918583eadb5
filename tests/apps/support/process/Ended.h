// A program that has run to its end.
#pragma once

#include "apps/support/process/ChildProcess.h"

#include <chrono>
#include <string>
#include <vector>

namespace TarvaneTest
{

struct Ended
{
    int nExitCode; ///< -1 when it did not end
    std::string strOutput;
    std::string strError;
};

/// Waits longer than any program takes when all is well.
inline Ended ToItsEnd(Tarvane::CChildProcess& process)
{
    const int nExitCode = process.WaitForEnd(std::chrono::minutes(5)).value_or(-1);
    return {nExitCode, process.Output(), process.ErrorOutput()};
}

/// Nothing stands on its input.
inline Ended RunToEnd(const std::vector<std::string>& command)
{
    Tarvane::CChildProcess process(command);
    process.CloseInput();
    return ToItsEnd(process);
}

} // namespace TarvaneTest
