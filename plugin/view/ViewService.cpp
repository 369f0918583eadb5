#include "plugin/view/ViewService.h"

#include "signal/CaptureCore.h"
#include "signal/PropertyStatus.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace Tarvane
{

bool CViewService::Take(const CFrame& frame, std::optional<CFrame>& reply)
{
    if (!m_fGreeted)
    {
        m_fGreeted = frame.kind == FrameKind::Hello && frame.nId == kViewProtocolVersion;
        return m_fGreeted;
    }
    switch (frame.kind)
    {
    case FrameKind::Get:
    case FrameKind::Info:
    case FrameKind::Set:
        reply = Answer(frame);
        return true;
    case FrameKind::Ready:
        m_fReady = true;
        m_core.ViewJoined();
        return true;
    case FrameKind::Failed:
        m_strFailure.assign(frame.data.begin(), frame.data.end());
        return true;
    case FrameKind::Outcome:
        return TellOutcome(frame);
    case FrameKind::ServerAppeared:
        m_core.ServerAppeared();
        return true;
    default:
        return false;
    }
}

CFrame CViewService::Answer(const CFrame& question)
{
    CFrame reply{.kind = FrameKind::Reply, .nSerial = question.nSerial};
    if (question.kind == FrameKind::Get)
    {
        std::array<std::uint8_t, kMaxFrameData> value{};
        reply.nSize = std::min<std::uint32_t>(question.nSize, kMaxFrameData);
        reply.nStatus = m_core.GetProperty(question.nId, kPropertyScope_Global, question.nElement,
                                           value.data(), &reply.nSize);
        if (reply.nStatus == kPropertyDone)
            reply.data.assign(value.begin(), value.begin() + reply.nSize);
    }
    else if (question.kind == FrameKind::Info)
    {
        bool fWritable = false;
        reply.nStatus = m_core.GetPropertyInfo(question.nId, kPropertyScope_Global,
                                               question.nElement, &reply.nSize, &fWritable);
        reply.nId = fWritable ? 1 : 0;
    }
    else
    {
        reply.nStatus = m_core.SetProperty(question.nId, kPropertyScope_Global, question.nElement,
                                           question.data.data(),
                                           static_cast<std::uint32_t>(question.data.size()));
    }
    return reply;
}

bool CViewService::TellOutcome(const CFrame& frame)
{
    double dPosition = 0;
    if (frame.nId > 0xFF || frame.data.size() < sizeof dPosition)
        return false;
    const auto outcome = TakeOutcomeOf(static_cast<std::uint8_t>(frame.nId));
    if (!outcome)
        return false;
    std::memcpy(&dPosition, frame.data.data(), sizeof dPosition);
    const std::string strWords(frame.data.begin() + sizeof dPosition, frame.data.end());
    m_core.TellOutcome(static_cast<std::int32_t>(frame.nElement), *outcome, strWords, dPosition);
    return true;
}

} // namespace Tarvane
