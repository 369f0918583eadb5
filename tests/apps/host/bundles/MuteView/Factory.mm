#import <AppKit/AppKit.h>
#import <AudioUnit/AUCocoaUIView.h>

#include "TarvaneLinkAU/TarvaneLinkProperties.h"

#include <AudioUnit/AudioUnit.h>

// A factory of plain views: no toggle, no menu, and no acknowledge of an element before the next
// one is announced.
@interface MuteViewFactory : NSObject <AUCocoaUIBase>
@end

namespace
{

// On the capture thread. One view a process is all that the tests open.
void Announced(void*, AudioUnit audioUnit, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement)
{
    static bool fFirst = true;
    if (!fFirst)
    {
        TNElementAck ack = {0, 1, 0, 1};
        UInt32 nSize = sizeof ack.nElement;
        AudioUnitGetProperty(audioUnit, TNProperty_NextElement, kAudioUnitScope_Global, 0,
                             &ack.nElement, &nSize);
        AudioUnitSetProperty(audioUnit, TNProperty_ElementDone, kAudioUnitScope_Global, 0, &ack,
                             sizeof ack);
    }
    fFirst = false;
}

} // namespace

@implementation MuteViewFactory

- (unsigned)interfaceVersion
{
    return 0;
}

- (NSView*)uiViewForAudioUnit:(AudioUnit)audioUnit withSize:(NSSize)preferredSize
{
    (void)preferredSize;
    AudioUnitAddPropertyListener(audioUnit, TNProperty_Elements, &Announced, nullptr);
    return [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 100, 50)] autorelease];
}

@end
