// The view's end of the connection to its plug-in.
#pragma once

#include "plugin/view/PacketSocket.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace Tarvane
{

class CPlugInConnection
{
public:
    /// What comes by itself, called on the reading thread.
    struct Hooks
    {
        std::function<void(std::uint32_t nPropertyId)> notified;
        std::function<void(std::uint32_t nWindow)> embed;
        std::function<void(std::uint32_t nWindow)> detach;
        /// Once, as the last: the plug-in is gone, or talks another protocol.
        std::function<void()> ended;
    };

    /// Takes over the socket, says Hello and begins to read.
    CPlugInConnection(int nSocket, Hooks hooks);
    /// Returns when no hook is under way, and ends the connection.
    ~CPlugInConnection();
    CPlugInConnection(const CPlugInConnection&) = delete;
    CPlugInConnection& operator=(const CPlugInConnection&) = delete;

    /// Sends a Get, Info or Set, and waits for its Reply. Any thread, but not inside a hook: the
    /// reply could not be read. Empty there, and when the connection has ended.
    std::optional<CFrame> Ask(CFrame question);

    /// Sends what nobody answers. Any thread. Lost when the connection has ended.
    void Tell(const CFrame& frame);
    /// A frame whose data is text, which is cut to what a frame holds.
    void Tell(CFrame frame, const std::string& strText);

private:
    void Read();
    bool Take(const CFrame& frame);
    void TakeReply(const CFrame& reply);
    void End();

    CPacketSocket m_socket;
    Hooks m_hooks;
    std::mutex m_sending;

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_changed;
    std::map<std::uint32_t, std::optional<CFrame>> m_asked; ///< by serial; empty until answered
    std::uint32_t m_nLastSerial = 0;
    bool m_fEnded = false;

    bool m_fGreeted = false; ///< reading thread
    std::thread m_reader;
};

} // namespace Tarvane
