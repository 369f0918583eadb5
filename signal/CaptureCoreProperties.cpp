#include "signal/CaptureCoreParts.h"

#include <algorithm>
#include <cstring>

namespace Tarvane
{
namespace
{

struct Property
{
    std::uint32_t nId;
    std::uint32_t nSize;
    bool fReadable;
    bool fWritable;
    bool fAnyElement;
};

constexpr Property kProperties[] = {
    {TNProperty_ElementInfo, sizeof(TNCaptureElement), true, false, true},
    {TNProperty_ArmCapture, sizeof(std::uint8_t), true, false, false},
    {TNProperty_SetArmCapture, sizeof(TNArmRequest), false, true, false},
    {TNProperty_CurrentSampleInTimeLine, sizeof(double), true, false, false},
    {TNProperty_NextElement, sizeof(std::int32_t), true, false, false},
    {TNProperty_ElementDone, sizeof(TNElementAck), false, true, false},
    {TNProperty_SelectedTrack, sizeof(std::int32_t), true, true, false},
    {kTNProperty_CurrentCaptureLength, sizeof(double), true, false, false},
};

std::int32_t Find(std::uint32_t nId, std::uint32_t nScope, std::uint32_t nElement,
                  const Property** ppProperty)
{
    const auto* pFound =
        std::find_if(std::begin(kProperties), std::end(kProperties),
                     [nId](const Property& property) { return property.nId == nId; });
    if (pFound == std::end(kProperties))
    {
        return kPropertyErr_InvalidProperty;
    }
    if (nScope != kPropertyScope_Global)
    {
        return kPropertyErr_InvalidScope;
    }
    if (nElement != 0 && !pFound->fAnyElement)
    {
        return kPropertyErr_InvalidElement;
    }
    *ppProperty = pFound;
    return kPropertyDone;
}

template <typename Value> std::int32_t Put(void* pData, const Value& value)
{
    std::memcpy(pData, &value, sizeof value);
    return kPropertyDone;
}

// The caller has compared the size; the data may lie on any boundary.
template <typename Value> Value Take(const void* pData)
{
    Value value;
    std::memcpy(&value, pData, sizeof value);
    return value;
}

} // namespace

std::int32_t CCaptureCore::GetPropertyInfo(std::uint32_t nId, std::uint32_t nScope,
                                           std::uint32_t nElement, std::uint32_t* pnSize,
                                           bool* pfWritable) const
{
    const Property* pProperty = nullptr;
    const std::int32_t nStatus = Find(nId, nScope, nElement, &pProperty);
    if (nStatus != kPropertyDone)
    {
        return nStatus;
    }
    if (pnSize != nullptr)
    {
        *pnSize = pProperty->nSize;
    }
    if (pfWritable != nullptr)
    {
        *pfWritable = pProperty->fWritable;
    }
    return kPropertyDone;
}

std::int32_t CCaptureCore::GetProperty(std::uint32_t nId, std::uint32_t nScope,
                                       std::uint32_t nElement, void* pData,
                                       std::uint32_t* pnSize) const
{
    const Property* pProperty = nullptr;
    const std::int32_t nStatus = Find(nId, nScope, nElement, &pProperty);
    if (nStatus != kPropertyDone)
    {
        return nStatus;
    }
    if (!pProperty->fReadable)
    {
        return kPropertyErr_InvalidProperty;
    }
    if (pData == nullptr || pnSize == nullptr || *pnSize < pProperty->nSize)
    {
        return kPropertyErr_InvalidParameter;
    }
    *pnSize = pProperty->nSize;
    const Parts& parts = *m_pParts;
    switch (nId)
    {
    case TNProperty_ElementInfo:
    {
        const std::optional<TNCaptureElement> record = m_pParts->m_queue.Record(nElement);
        return record ? Put(pData, *record) : kPropertyErr_InvalidElement;
    }
    case TNProperty_ArmCapture:
        return Put(pData, static_cast<std::uint8_t>(IsArmed() ? 1 : 0));
    case TNProperty_CurrentSampleInTimeLine:
        return Put(pData, parts.m_dPosition + static_cast<double>(parts.m_nFrames));
    case TNProperty_NextElement:
        return Put(pData, parts.m_queue.Next());
    case TNProperty_SelectedTrack:
        return Put(pData, parts.m_nTrack.load());
    case kTNProperty_CurrentCaptureLength:
    {
        const double dRate = parts.m_dRate;
        return Put(pData, dRate > 0 ? static_cast<double>(parts.m_nFrames) / dRate : 0.0);
    }
    default:
        return kPropertyErr_InvalidProperty;
    }
}

std::int32_t CCaptureCore::SetProperty(std::uint32_t nId, std::uint32_t nScope,
                                       std::uint32_t nElement, const void* pData,
                                       std::uint32_t nSize)
{
    const Property* pProperty = nullptr;
    const std::int32_t nStatus = Find(nId, nScope, nElement, &pProperty);
    if (nStatus != kPropertyDone)
    {
        return nStatus;
    }
    if (!pProperty->fWritable)
    {
        return kPropertyErr_NotWritable;
    }
    if (pData == nullptr || nSize != pProperty->nSize)
    {
        return kPropertyErr_InvalidPropertyValue;
    }
    switch (nId)
    {
    case TNProperty_SetArmCapture:
        // Shift changes nothing: there is one way to arm.
        SetArmed(Take<TNArmRequest>(pData).fArm != 0);
        return kPropertyDone;
    case TNProperty_ElementDone:
        return m_pParts->TakeAck(Take<TNElementAck>(pData));
    case TNProperty_SelectedTrack:
        m_pParts->m_nTrack = Take<std::int32_t>(pData);
        return kPropertyDone;
    default:
        return kPropertyErr_NotWritable;
    }
}

std::int32_t CCaptureCore::Parts::TakeAck(const TNElementAck& ack)
{
    const std::optional<CQueuedTake> queued = m_queue.Acknowledge(ack, m_nTrack);
    if (!queued)
    {
        return kPropertyErr_InvalidPropertyValue;
    }
    // The disk is the writer's: a view never waits for it.
    Post([this, queued = *queued] { m_writer.Settle(queued); });
    Notify(TNProperty_ArmCapture);
    Observe(queued->take);
    if (m_queue.IsWaiting(queued->take.nNumber))
    {
        Notify(TNProperty_Elements);
    }
    return kPropertyDone;
}

} // namespace Tarvane
