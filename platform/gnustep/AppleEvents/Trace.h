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

#include <TarvanePlatform/EventObserver.h>

namespace AppleEvents
{

/// Whether the variable asks for a trace now.
bool IsTraceOn();

/// An observer that writes down what it is shown. Any thread; a record is written whole.
void TraceEvent(const TarvaneSeenEvent* event, void* refcon);

} // namespace AppleEvents
