// Fingerprints of what has been added, made while nothing is asked of the server: the question
// whether a take of ten hours is there already then reads one file and not two.
#pragma once

#include "apps/server/command/ScriptWorker.h"
#include "apps/server/loop/LoopWatch.h"
#include "apps/server/loop/SideProcess.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Tarvane::Server
{

/// The regions of a session that are added from the construction on are read one after the other,
/// in a process of the lowest priority. What it cannot save, or has no process or descriptor for,
/// is read when it is asked for. Main thread, in its run loop.
class CReadAhead
{
public:
    /// No connection may be open in this process when pause is over.
    explicit CReadAhead(const WorkerSettings& settings,
                        std::chrono::milliseconds pause = std::chrono::seconds(2));

    /// The session has been changed. Reading begins when that was the last time for the length of
    /// the pause.
    void Changed(const FileIdentity& identity);

private:
    void Begin();
    void Told(std::string_view bytes);

    WorkerSettings m_settings;
    std::chrono::milliseconds m_pause;
    std::int64_t m_nLastRegion; ///< of those that have been read, or begun with
    std::string m_strTold;
    std::optional<CLoopTimer> m_timer; ///< since the first change: it needs a descriptor
    std::optional<CSideProcess> m_process;
};

} // namespace Tarvane::Server
