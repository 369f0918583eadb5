// A record of every event that comes in and of every answer that goes out.
//
//     2026-03-01T12:34:56.789Z event 1 in
//         print(GetUpdateCount())
//     2026-03-01T12:34:56.790Z event 1 faults late-reply
//     2026-03-01T12:34:56.790Z event 1 out
//       result
//         0
//       error
//     2026-03-01T12:34:56.790Z event 1 changed the session, sent by 4711 /usr/bin/tarvane-link
//
// The last line is that of an event that changed anything. Control characters are points.
// "no result" stands there for a change that was asked for and not made. Lines of scripts, results
// and errors are indented by four spaces, so that none can pass for a line of the log itself. Each
// record is written out before the next thing happens.
#pragma once

#include "apps/server/command/CommandProcessor.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvane::Server
{

class CEventLog
{
public:
    /// An empty name keeps no log; "-" is the standard output; a file is appended to. Throws
    /// std::runtime_error when it cannot be opened.
    explicit CEventLog(const std::string& strFile);

    void In(std::int64_t nEvent, std::string_view strScript);
    /// What is planned to go wrong with the event.
    void Faults(std::int64_t nEvent, const std::vector<std::string>& names);
    void Out(std::int64_t nEvent, const CommandReply& reply);
    /// Who has changed the session by it.
    void Change(std::int64_t nEvent, std::int64_t nProcess, const std::string& strProgram);

private:
    void Begin(std::int64_t nEvent, const char* szWhat);
    void End();

    std::unique_ptr<std::ostream> m_pFile;
    std::ostream* m_pStream = nullptr; ///< null for no log
    bool m_fTroubleTold = false;
};

} // namespace Tarvane::Server
