#include "plugin/view/PlugInConnection.h"

#include <algorithm>
#include <sys/socket.h>

namespace Tarvane
{

CPlugInConnection::CPlugInConnection(int nSocket, Hooks hooks)
    : m_socket(nSocket, FrameSender::PlugIn), m_hooks(std::move(hooks))
{
    Tell({.kind = FrameKind::Hello, .nId = kViewProtocolVersion});
    m_reader = std::thread([this] { Read(); });
}

CPlugInConnection::~CPlugInConnection()
{
    ::shutdown(m_socket.Descriptor(), SHUT_RDWR);
    m_reader.join();
}

void CPlugInConnection::Tell(const CFrame& frame)
{
    std::lock_guard lock(m_sending);
    m_socket.Send(frame, true);
}

void CPlugInConnection::Tell(CFrame frame, const std::string& strText)
{
    const std::size_t nRoom = kMaxFrameData - frame.data.size();
    frame.data.insert(frame.data.end(), strText.begin(),
                      strText.begin() + std::min(strText.size(), nRoom));
    Tell(frame);
}

std::optional<CFrame> CPlugInConnection::Ask(CFrame question)
{
    if (std::this_thread::get_id() == m_reader.get_id())
        return std::nullopt;
    std::unique_lock lock(m_mutex);
    if (m_fEnded)
        return std::nullopt;
    question.nSerial = ++m_nLastSerial;
    m_asked[question.nSerial];
    lock.unlock();
    Tell(question);
    lock.lock();
    m_changed.wait(lock, [&] { return m_fEnded || m_asked[question.nSerial]; });
    return m_asked.extract(question.nSerial).mapped();
}

void CPlugInConnection::Read()
{
    CFrame frame;
    while (m_socket.Receive(frame, true) == CPacketSocket::Result::Done && Take(frame))
    {
    }
    End();
    m_hooks.ended();
}

bool CPlugInConnection::Take(const CFrame& frame)
{
    if (!m_fGreeted)
    {
        m_fGreeted = true;
        return frame.kind == FrameKind::Hello && frame.nId == kViewProtocolVersion;
    }
    switch (frame.kind)
    {
    case FrameKind::Reply:
        TakeReply(frame);
        return true;
    case FrameKind::Notify:
        m_hooks.notified(frame.nId);
        return true;
    case FrameKind::Embed:
        m_hooks.embed(frame.nId);
        return true;
    case FrameKind::Detach:
        m_hooks.detach(frame.nId);
        return true;
    default:
        return false;
    }
}

// A reply that nobody waits for is dropped.
void CPlugInConnection::TakeReply(const CFrame& reply)
{
    std::lock_guard lock(m_mutex);
    const auto asked = m_asked.find(reply.nSerial);
    if (asked == m_asked.end())
        return;
    asked->second = reply;
    m_changed.notify_all();
}

void CPlugInConnection::End()
{
    std::lock_guard lock(m_mutex);
    m_fEnded = true;
    m_changed.notify_all();
}

} // namespace Tarvane
