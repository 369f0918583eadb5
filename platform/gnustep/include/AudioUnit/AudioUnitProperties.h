#pragma once

#include <AudioUnit/AUComponent.h>

enum : AudioUnitScope
{
    kAudioUnitScope_Global = 0,
    kAudioUnitScope_Input = 1,
    kAudioUnitScope_Output = 2,
    kAudioUnitScope_Group = 3,
    kAudioUnitScope_Part = 4,
    kAudioUnitScope_Note = 5,
};

enum : AudioUnitPropertyID
{
    /// An AudioUnitCocoaViewInfo, global scope. The reader releases what is in it.
    kAudioUnitProperty_CocoaUI = 31,
};

/// The bundle that holds the view's factory, and the names of factory classes (AUCocoaUIBase);
/// the property's size tells how many there are.
struct AudioUnitCocoaViewInfo
{
    CFURLRef mCocoaAUViewBundleLocation;
    CFStringRef mCocoaAUViewClass[1];
};
