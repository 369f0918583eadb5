// Looks all of a session's database through while its server is at work already, which takes time
// that grows with the session.
#pragma once

#include "apps/server/loop/SideProcess.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace Tarvane::Server
{

/// A process that has a connection of its own, and the right to change the session until it is
/// done. Main thread, in its run loop.
class CSessionCheck
{
public:
    /// On return nobody else can change the session; a flawed one not before done is called. Done
    /// is called once, with the flaw that was found, and may destroy the object. A check that could
    /// not be done finds none, and says why on the standard error stream. No connection may be open
    /// in this process. Throws std::system_error.
    CSessionCheck(const std::filesystem::path& file,
                  std::function<void(const std::optional<std::string>&)> done);

private:
    void Told(std::string_view bytes);
    void Conclude(const std::optional<std::string>& flaw);

    std::function<void(const std::optional<std::string>&)> m_done;
    std::string m_strFlaw;
    std::optional<CSideProcess> m_process;
};

} // namespace Tarvane::Server
