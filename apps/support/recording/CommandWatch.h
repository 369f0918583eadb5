// What the server answered to the commands of this process, beyond what the script link tells.
#pragma once

#include "apps/support/recording/EventWatch.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Tarvane
{

/// A script and what came of it.
struct SeenCommand
{
    std::string strScript; ///< UTF-8, as the next two
    std::string strResult; ///< the first kMostResult bytes of it
    std::string strError;  ///< the server's words
    OSErr nStatus = 0;     ///< of the event; with 0 a reply came
    bool fHasResult = false;

    /// The server said why it did not do as it was asked.
    bool IsRefused() const { return nStatus == 0 && !fHasResult && !strError.empty(); }
};

struct CommandUnderWay
{
    std::string strScript;
    std::chrono::steady_clock::time_point since;
};

/// In words: "GetTrackCount, since 04:05:12, for 31 s".
std::string TextOf(const CommandUnderWay& command);

/// Any thread.
class CCommandWatch : public CEventWatcher
{
public:
    void Add(const SeenEvent& event) override;
    void Add(const SeenReply& reply) override;

    /// What has ended since this was asked last, in order: the last kMostKept of it.
    std::vector<SeenCommand> Take();
    /// The command for which somebody waits now, if anybody does.
    std::optional<CommandUnderWay> UnderWay() const;

    static constexpr std::size_t kMostKept = 64;
    static constexpr std::size_t kMostResult = 4096;

private:
    struct Sent
    {
        UInt32 nNumber;
        CommandUnderWay command;
    };

    mutable std::mutex m_mutex;
    std::vector<Sent> m_sent;
    std::vector<SeenCommand> m_ended;
};

} // namespace Tarvane
