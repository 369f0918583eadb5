#include "apps/support/recording/RecordedUnit.h"

#include "apps/support/UnitComponent.h"
#include "apps/support/recording/Recorder.h"
#include "apps/support/unit/FaultyUnit.h"
#include "apps/support/unit/SignalSide.h"

#include <cstdio>
#include <exception>

namespace Tarvane
{
namespace
{

using Kind = SeenProperty::Kind;

struct CRecordedSignalSide : CRecordedUnit
{
    CRecordedSignalSide() : CRecordedUnit(CSignalSide::Register()) {}
};

struct CRecordedFaultyUnit : CRecordedUnit
{
    CRecordedFaultyUnit() : CRecordedUnit(CFaultyUnit::Register()) {}
};

std::string BytesAt(const void* pData, UInt32 nSize)
{
    return pData != nullptr ? std::string(static_cast<const char*>(pData), nSize) : std::string();
}

} // namespace

AudioComponent CRecordedUnit::Register(bool fFaulty)
{
    static const AudioComponent pWhole =
        UnitComponent<CRecordedSignalSide>::Register('TnLr', "Tarvane: Recorded Link");
    static const AudioComponent pFaulty =
        UnitComponent<CRecordedFaultyUnit>::Register('TnLg', "Tarvane: Recorded Faulty Link");
    return fFaulty ? pFaulty : pWhole;
}

OSStatus CRecordedUnit::GetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                    AudioUnitElement nElement, void* pData, UInt32* pnSize)
{
    const OSStatus nStatus = CUnitInFront::GetProperty(nId, nScope, nElement, pData, pnSize);
    Record({Kind::Read, nId, nScope, nElement, false, nStatus,
            nStatus == noErr ? BytesAt(pData, *pnSize) : std::string()});
    return nStatus;
}

OSStatus CRecordedUnit::SetProperty(AudioUnitPropertyID nId, AudioUnitScope nScope,
                                    AudioUnitElement nElement, const void* pData, UInt32 nSize)
{
    if (nId == kRecordedUnitProperty_Recorder)
    {
        m_pRecorder = *static_cast<CRecorder* const*>(pData);
        return noErr;
    }
    const OSStatus nStatus = CUnitInFront::SetProperty(nId, nScope, nElement, pData, nSize);
    Record({Kind::Write, nId, nScope, nElement, false, nStatus, BytesAt(pData, nSize)});
    return nStatus;
}

void CRecordedUnit::PassOn(AudioUnitPropertyID nId)
{
    Record({Kind::Notification, nId, kAudioUnitScope_Global, 0, false, noErr, {}});
    Notify(nId);
}

// Nothing that a full memory throws may reach a notifying thread.
void CRecordedUnit::Record(SeenProperty seen)
try
{
    if (m_pRecorder == nullptr || seen.nId >= kSignalSideProperty_Self)
        return;
    seen.fMainThread = m_pRecorder->IsMainThread();
    m_pRecorder->Add(std::move(seen));
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "a property is missing in the recording: %s\n", error.what());
}

} // namespace Tarvane
