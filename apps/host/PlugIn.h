// An instance of the plug-in, owned.
#pragma once

#include "apps/support/SignalSide.h"

#include <stdexcept>

namespace Tarvane
{

class CPlugIn
{
public:
    // Throws std::runtime_error when the component cannot be opened.
    CPlugIn()
    {
        if (AudioComponentInstanceNew(CSignalSide::Register(), &m_pUnit) != noErr)
        {
            throw std::runtime_error("the plug-in cannot be opened.");
        }
        m_pSide = CSignalSide::Of(m_pUnit);
    }
    ~CPlugIn() { AudioComponentInstanceDispose(m_pUnit); }
    CPlugIn(const CPlugIn&) = delete;
    CPlugIn& operator=(const CPlugIn&) = delete;

    AudioUnit Unit() const { return m_pUnit; }
    CSignalSide* operator->() const { return m_pSide; }

private:
    AudioUnit m_pUnit = nullptr;
    CSignalSide* m_pSide = nullptr;
};

} // namespace Tarvane
