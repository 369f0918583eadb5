#include "apps/support/UnitComponent.h"
#include "apps/support/unit/SignalSide.h"

namespace Tarvane
{

AudioComponent CSignalSide::Register()
{
    static const AudioComponent pComponent =
        UnitComponent<CSignalSide>::Register('TnLk', "Tarvane: Link");
    return pComponent;
}

CSignalSide* CSignalSide::Of(AudioUnit pUnit)
{
    CSignalSide* pSide = nullptr;
    UInt32 nSize = sizeof pSide;
    const OSStatus nStatus = AudioUnitGetProperty(pUnit, kSignalSideProperty_Self,
                                                  kAudioUnitScope_Global, 0, &pSide, &nSize);
    return nStatus == noErr ? pSide : nullptr;
}

} // namespace Tarvane
