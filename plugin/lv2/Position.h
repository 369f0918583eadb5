// What hosts tell of their transport.
#pragma once

#include "signal/Transport.h"

#include <cstdint>

#include <lv2/atom/atom.h>
#include <lv2/urid/urid.h>

namespace Tarvane
{

/// Audio thread, but for the constructor.
class CPositionReader
{
public:
    explicit CPositionReader(const LV2_URID_Map& map);

    /// Whether an event is a time:Position. Looks at no byte behind the event's atom.
    bool IsPosition(const LV2_Atom& event) const;
    /// Takes over what a time:Position says of the transport. What it leaves out stays as it is;
    /// what it says in another type than a number counts as left out.
    void Read(const LV2_Atom& position, CTransport& transport) const;

private:
    bool Number(const LV2_Atom* pAtom, double& dNumber) const;

    LV2_URID m_nObject, m_nBlank, m_nPosition, m_nFrame, m_nSpeed;
    LV2_URID m_nInt, m_nLong, m_nFloat, m_nDouble;
};

} // namespace Tarvane
