// Listeners whose removal can go wrong.
#pragma once

#include "apps/support/PropertyListeners.h"
#include "apps/support/unit/SignalFaults.h"

namespace Tarvane
{

class CFaultyListeners : public CPropertyListeners
{
public:
    /// Once, before anybody listens.
    void Begin(const SignalFaults& faults)
    {
        m_fKept = faults.count(SignalFault::ListenersKept) != 0;
        m_fConfused = faults.count(SignalFault::ListenersConfused) != 0;
    }

    bool Remove(AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc, void* pUserData)
    {
        if (m_fConfused)
        {
            return Remove(nId, pProc);
        }
        return m_fKept || CPropertyListeners::Remove(nId, pProc, pUserData);
    }

    bool Remove(AudioUnitPropertyID nId, AudioUnitPropertyListenerProc pProc)
    {
        return m_fKept || CPropertyListeners::Remove(nId, pProc);
    }

private:
    bool m_fKept = false;
    bool m_fConfused = false;
};

} // namespace Tarvane
