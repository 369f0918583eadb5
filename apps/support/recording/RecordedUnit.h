// A plug-in between a view and a signal side that records what the two say to each other.
#pragma once

#include "apps/support/recording/PropertyLines.h"
#include "apps/support/unit/UnitInFront.h"

namespace Tarvane
{

class CRecorder;

/// Write only, global scope, element 0; the data is a CRecorder*, which must outlive the unit. To
/// be written once, before anybody listens; nothing is recorded without it. The properties by which
/// a host sets its units up, from 65000 on, reach the unit behind and are not recorded.
constexpr AudioUnitPropertyID kRecordedUnitProperty_Recorder = 65002;

class CRecordedUnit : public CUnitInFront
{
public:
    /// Makes the component known to the process, once: one in front of a CSignalSide, or of a
    /// CFaultyUnit.
    static AudioComponent Register(bool fFaulty);

    explicit CRecordedUnit(AudioComponent pBehind) : CUnitInFront(pBehind) {}
    ~CRecordedUnit() override { CloseBehind(); }

    OSStatus GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         void* pData, UInt32* pnSize) override;
    OSStatus SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope, AudioUnitElement nElement,
                         const void* pData, UInt32 nSize) override;

private:
    void PassOn(AudioUnitPropertyID nId) override;
    void Record(SeenProperty seen);

    CRecorder* m_pRecorder = nullptr;
};

} // namespace Tarvane
