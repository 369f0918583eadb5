// What a shared library exports so that `tarvane-conform plugin` can examine the signal side in
// it. Both functions are called on the main thread, and have C linkage.
#pragma once

#include <AudioUnit/AudioUnit.h>

#define TARVANE_CONFORM_EXPORT __attribute__((visibility("default")))

extern "C"
{
    /// Required. Makes an instance, as the factory function of any audio component does: it is
    /// given to AudioComponentRegister. Answers null when none can be made.
    TARVANE_CONFORM_EXPORT AudioComponentPlugInInterface*
    TarvaneLinkSignalSideFactory(const AudioComponentDescription* pDescription);

    /// Optional; without it no rule about captures is examined. Makes the unit capture for a
    /// moment, as if the host played and stopped again. The unit is armed, by 64005, and captures
    /// nothing at the time; captures of before may still wait for their acknowledge. What it
    /// captures is never to be empty.
    ///
    /// Files may go to the temporary folder, which is removed in the end. Answers noErr,
    /// or why nothing can be captured.
    TARVANE_CONFORM_EXPORT OSStatus TarvaneConformPlay(AudioUnit pUnit);
}
