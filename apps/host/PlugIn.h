// An instance of the plug-in, owned.
#pragma once

#include "apps/support/recording/RecordedUnit.h"
#include "apps/support/unit/FaultyUnit.h"
#include "apps/support/unit/SignalSide.h"

#include <stdexcept>

namespace Tarvane
{

class CPlugIn
{
public:
    /// With faults, one that has them. With a recorder, which must outlive the plug-in, one whose
    /// talk with its view is recorded. Throws std::runtime_error when the component cannot be
    /// opened.
    explicit CPlugIn(const SignalFaults& faults = {}, CRecorder* pRecorder = nullptr)
    {
        if (AudioComponentInstanceNew(Component(!faults.empty(), pRecorder != nullptr), &m_pUnit) !=
            noErr)
        {
            throw std::runtime_error("the plug-in cannot be opened.");
        }
        m_pSide = CSignalSide::Of(m_pUnit);
        if (pRecorder != nullptr)
        {
            AudioUnitSetProperty(m_pUnit, kRecordedUnitProperty_Recorder, kAudioUnitScope_Global, 0,
                                 &pRecorder, sizeof pRecorder);
        }
        if (!faults.empty())
        {
            AudioUnitSetProperty(m_pUnit, kFaultyUnitProperty_Faults, kAudioUnitScope_Global, 0,
                                 &faults, sizeof faults);
        }
    }
    ~CPlugIn() { Dispose(); }
    CPlugIn(const CPlugIn&) = delete;
    CPlugIn& operator=(const CPlugIn&) = delete;

    /// Nothing else may be called afterwards.
    void Dispose()
    {
        AudioComponentInstanceDispose(m_pUnit);
        m_pUnit = nullptr;
    }

    AudioUnit Unit() const { return m_pUnit; }
    CSignalSide* operator->() const { return m_pSide; }

private:
    static AudioComponent Component(bool fFaulty, bool fRecorded)
    {
        if (fRecorded)
        {
            return CRecordedUnit::Register(fFaulty);
        }
        return fFaulty ? CFaultyUnit::Register() : CSignalSide::Register();
    }

    AudioUnit m_pUnit = nullptr;
    CSignalSide* m_pSide = nullptr;
};

} // namespace Tarvane
