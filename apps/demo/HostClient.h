// A host process that is told what to do line by line.
#pragma once

#include "apps/support/process/ChildProcess.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tarvane
{

/// The host did not do what it was asked for; the text is its own reason.
class CHostRefusal : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// One thread. Every call waits for the host's answer, and throws std::runtime_error when the host
/// has ended, when the time is over, or when the wait is broken off.
class CHostClient
{
public:
    /// arguments: the program and its options, without --commands. fnBrokenOff, asked while
    /// waiting, ends a wait by answering true. Returns once the host has opened its window.
    CHostClient(std::vector<std::string> arguments, std::function<bool()> fnBrokenOff = {});

    /// The answer to one command line. Throws CHostRefusal for an answer that says no.
    nlohmann::json Ask(const std::string& strCommand, std::chrono::milliseconds timeout);

    /// "capture", with the file in quotes.
    nlohmann::json Capture(const std::string& strFile, double dPosition,
                           std::chrono::milliseconds timeout);

    /// What the host has said when it opened: tracks, messages, armed state.
    const nlohmann::json& Ready() const { return m_ready; }

    /// Everything that came as JSON until now, captures that were made by hand among it.
    std::vector<nlohmann::json> Everything() const;

    CChildProcess& Process() { return m_process; }

private:
    nlohmann::json NextAnswer(std::chrono::milliseconds timeout);

    CChildProcess m_process;
    std::function<bool()> m_fnBrokenOff;
    nlohmann::json m_ready;
};

} // namespace Tarvane
