// The events that this process sends, as they are recorded; one source file a system.
#pragma once

namespace Tarvane
{

class CRecorder;

// From now on every event is recorded, until null is given; when that returns, the recorder is no
// longer in use. False on a system that shows its events to nobody.
bool RecordEvents(CRecorder* pRecorder);

} // namespace Tarvane
