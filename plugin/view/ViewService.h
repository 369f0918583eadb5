// What a plug-in does about the frames of its view's process.
#pragma once

#include "plugin/view/Protocol.h"

#include <optional>
#include <string>

namespace Tarvane
{

class CCaptureCore;

/// For one connection; one thread. The core must outlive it.
class CViewService
{
public:
    explicit CViewService(CCaptureCore& core) : m_core(core) {}

    /// Takes a frame in; the reply is there when there is one to be sent. False when the frame is
    /// out of turn or says what cannot be: the connection is to be ended.
    bool Take(const CFrame& frame, std::optional<CFrame>& reply);

    /// The view has joined.
    bool IsReady() const { return m_fReady; }
    /// Why there will be no view, as the process says; empty when it has not.
    const std::string& Failure() const { return m_strFailure; }

private:
    CFrame Answer(const CFrame& question);
    bool TellOutcome(const CFrame& frame);

    CCaptureCore& m_core;
    bool m_fGreeted = false;
    bool m_fReady = false;
    std::string m_strFailure;
};

} // namespace Tarvane
