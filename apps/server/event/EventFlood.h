// Events that the server sends to itself, without end.
#pragma once

#include <Carbon/Carbon.h>

namespace Tarvane::Server
{

/// Main thread. Its events have an id of their own, so that they are none of the clients'.
class CEventFlood
{
public:
    CEventFlood() = default;
    ~CEventFlood();
    CEventFlood(const CEventFlood&) = delete;
    CEventFlood& operator=(const CEventFlood&) = delete;

    /// From now on a number of events is always under way: whichever arrives sends the next. Once
    /// begun, it does not grow by being begun again. The process must be a receiver already. Throws
    /// std::runtime_error when nothing can be received or sent.
    void Begin(OSType nSignature);

private:
    static OSErr Receive(const AppleEvent* pEvent, AppleEvent* pReply, void* pFlood);

    AppleEvent m_event{typeNull, nullptr};
};

} // namespace Tarvane::Server
