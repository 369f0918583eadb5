// A record of what this process sends and of what comes back, on the standard error stream, when
// TARVANE_AE_TRACE is 1:
//
//     2026-03-01T12:34:56.789Z event 1 out to 'TkNe', 'TKNE' 'LCmd', 48 bytes
//       '----' 'utxt' 48 bytes
//         print(GetUpdateCount())
//     2026-03-01T12:34:56.790Z event 1 in status 0, 4 bytes, after 0.412 ms
//       'Rslt' 'utxt' 4 bytes
//         7
//
// Text is indented, so that none can pass for a line of the record itself.
#pragma once

#include "platform/gnustep/AppleEvents/Storage.h"

#include <cstdint>

namespace AppleEvents
{

// One event under way. Any thread; a record is written whole.
class SendTrace
{
public:
    // Records the event, if anything is recorded.
    explicit SendTrace(const EventStorage& event);

    // Records what became of it. The reply is null when there is none.
    void Ended(OSErr status, const EventStorage* reply) const;

private:
    bool m_fOn;
    unsigned m_nEvent = 0;
    std::uint64_t m_nStart = 0; // microseconds
};

} // namespace AppleEvents
