#include "plugin/lv2/Position.h"

#include <cstring>

#include <lv2/atom/util.h>
#include <lv2/time/time.h>

namespace Tarvane
{
namespace
{

template <typename Value> double ValueOf(const LV2_Atom* pAtom)
{
    Value value;
    std::memcpy(&value, pAtom + 1, sizeof value);
    return static_cast<double>(value);
}

} // namespace

CPositionReader::CPositionReader(const LV2_URID_Map& map)
{
    const auto fnMap = [&](const char* szUri) { return map.map(map.handle, szUri); };
    m_nObject = fnMap(LV2_ATOM__Object);
    m_nBlank = fnMap(LV2_ATOM__Blank);
    m_nPosition = fnMap(LV2_TIME__Position);
    m_nFrame = fnMap(LV2_TIME__frame);
    m_nSpeed = fnMap(LV2_TIME__speed);
    m_nInt = fnMap(LV2_ATOM__Int);
    m_nLong = fnMap(LV2_ATOM__Long);
    m_nFloat = fnMap(LV2_ATOM__Float);
    m_nDouble = fnMap(LV2_ATOM__Double);
}

bool CPositionReader::IsPosition(const LV2_Atom& event) const
{
    // Blank is what objects without a name were called once; there are hosts that still do.
    if ((event.type != m_nObject && event.type != m_nBlank) ||
        event.size < sizeof(LV2_Atom_Object_Body))
        return false;
    return reinterpret_cast<const LV2_Atom_Object&>(event).body.otype == m_nPosition;
}

void CPositionReader::Read(const LV2_Atom& position, CTransport& transport) const
{
    const LV2_Atom* pFrame = nullptr;
    const LV2_Atom* pSpeed = nullptr;
    lv2_atom_object_get(&reinterpret_cast<const LV2_Atom_Object&>(position), m_nFrame, &pFrame,
                        m_nSpeed, &pSpeed, 0);
    if (Number(pFrame, transport.dPosition))
        transport.fKnown = true;
    Number(pSpeed, transport.dSpeed);
}

bool CPositionReader::Number(const LV2_Atom* pAtom, double& dNumber) const
{
    if (pAtom == nullptr)
        return false;
    if (pAtom->type == m_nInt && pAtom->size == sizeof(std::int32_t))
        dNumber = ValueOf<std::int32_t>(pAtom);
    else if (pAtom->type == m_nLong && pAtom->size == sizeof(std::int64_t))
        dNumber = ValueOf<std::int64_t>(pAtom);
    else if (pAtom->type == m_nFloat && pAtom->size == sizeof(float))
        dNumber = ValueOf<float>(pAtom);
    else if (pAtom->type == m_nDouble && pAtom->size == sizeof(double))
        dNumber = ValueOf<double>(pAtom);
    else
        return false;
    return true;
}

} // namespace Tarvane
