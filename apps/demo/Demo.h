// The demonstration: a server and a host of its own, real recordings through the whole link, and a
// look at what came of them.
#pragma once

#include "apps/demo/HostClient.h"
#include "apps/demo/Verdict.h"
#include "apps/support/file/ResultFolder.h"
#include "apps/support/program/CommandLine.h"
#include "apps/support/sound/CaptureSource.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace Tarvane
{

struct DemoOptions
{
    std::vector<std::string> files; ///< empty: recordings that come with the system
    std::string strOut = "out";
    std::string strSpeed = "1";
    bool fHeadless = false;
};

void DeclareOptions(CLI::App& app, DemoOptions& options);

/// Main thread. Both children end with the object.
class CDemo
{
public:
    /// Throws CUsageError, with nothing started, when a file or the results folder cannot be used.
    explicit CDemo(const DemoOptions& options);

    /// Tells its story on the standard output. Returns the program's exit code. Throws
    /// std::runtime_error when a child does not do its part.
    int Run();

private:
    void StartServer();
    void StartHost();
    void CaptureAll();
    void Capture(size_t nFile, bool fDuplicate);
    void SaveResults();
    bool Judge();
    void StayOpen();
    void AdoptCaptures();
    Server::CSession Session() const;

    const DemoOptions m_options;
    std::vector<CCaptureSource> m_sources;
    CResultFolder m_out;
    std::filesystem::path m_session;
    std::optional<CChildProcess> m_server;
    std::optional<CHostClient> m_host;
    std::vector<DemoCapture> m_captures;
};

} // namespace Tarvane
