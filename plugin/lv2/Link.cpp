// The plug-in as LV2 hosts know it: audio passes through, and what the transport plays goes to the
// capture core, with its position.
#include "plugin/lv2/Position.h"
#include "plugin/lv2/ViewAccess.h"
#include "plugin/view/ViewSupervisor.h"
#include "signal/CaptureCore.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <optional>

#include <lv2/atom/util.h>
#include <lv2/core/lv2.h>
#include <lv2/core/lv2_util.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>

namespace Tarvane
{
namespace
{

constexpr std::uint32_t kMaxChannels = 8;

// As link.ttl has them.
enum Port : std::uint32_t
{
    kPort_Control,
    kPort_Arm,
    kPort_FreeWheeling,
    kPort_Latency,
    kPort_FirstAudio, // the inputs, then the outputs
};

constexpr const char* kStateUuid = "https://tarvane.org/lv2/link#uuid";
constexpr const char* kStateTrack = "https://tarvane.org/lv2/link#track";

void Log(const std::string& strLine)
{
    std::fprintf(stderr, "tarvane-link: %s\n", strLine.c_str());
}

CCaptureSettings Settings(std::uint32_t nChannels, double dRate)
{
    CCaptureSettings settings;
    settings.format.nChannels = nChannels;
    settings.format.nRate = static_cast<std::uint32_t>(dRate + 0.5);
    return settings;
}

class CLink
{
public:
    CLink(std::uint32_t nChannels, double dRate, const std::filesystem::path& bundle,
          const LV2_URID_Map& map)
        : m_nChannels(nChannels), m_position(map),
          m_nControlSequence(map.map(map.handle, LV2_ATOM__Sequence)),
          m_nString(map.map(map.handle, LV2_ATOM__String)),
          m_nInt(map.map(map.handle, LV2_ATOM__Int)), m_nUuid(map.map(map.handle, kStateUuid)),
          m_nTrack(map.map(map.handle, kStateTrack)), m_core(Settings(nChannels, dRate)),
          m_view(m_core, bundle / "tarvane-link-view", &Log)
    {
        m_core.SetLog(&Log);
    }

    void Connect(std::uint32_t nPort, void* pData);
    void Run(std::uint32_t nFrames);
    void Deactivate() { m_core.EndTake(); }

    LV2_State_Status Save(LV2_State_Store_Function fnStore, LV2_State_Handle handle);
    LV2_State_Status Restore(LV2_State_Retrieve_Function fnRetrieve, LV2_State_Handle handle);

    CViewSupervisor& View() { return m_view; }
    // Why there is no view, and how the captures stand.
    std::string Describe() const
    {
        const std::string strTrouble = m_view.Trouble();
        return strTrouble.empty() ? m_core.StatusText() : strTrouble + " " + m_core.StatusText();
    }

private:
    void Process(std::uint32_t nFrom, std::uint32_t nTo);
    void ObeyArmPort();
    void PassThrough(std::uint32_t nFrames) const;

    const std::uint32_t m_nChannels;
    const CPositionReader m_position;
    const LV2_URID m_nControlSequence, m_nString, m_nInt, m_nUuid, m_nTrack;

    const LV2_Atom_Sequence* m_pControl = nullptr;
    const float* m_pfArm = nullptr;
    const float* m_pfFreeWheeling = nullptr;
    float* m_pfLatency = nullptr;
    std::array<const float*, kMaxChannels> m_inputs{};
    std::array<float*, kMaxChannels> m_outputs{};

    CTransport m_transport; // of the next frame to be processed
    // What the port said last. The first value is where the host's session left it: a plug-in is
    // never armed by being loaded.
    std::optional<bool> m_armPort;

    CCaptureCore m_core;
    CViewSupervisor m_view;
};

void CLink::Connect(std::uint32_t nPort, void* pData)
{
    switch (nPort)
    {
    case kPort_Control:
        m_pControl = static_cast<const LV2_Atom_Sequence*>(pData);
        return;
    case kPort_Arm:
        m_pfArm = static_cast<const float*>(pData);
        return;
    case kPort_FreeWheeling:
        m_pfFreeWheeling = static_cast<const float*>(pData);
        return;
    case kPort_Latency:
        m_pfLatency = static_cast<float*>(pData);
        return;
    default:
        break;
    }
    const std::uint32_t nAudio = nPort - kPort_FirstAudio;
    if (nAudio < m_nChannels)
        m_inputs[nAudio] = static_cast<const float*>(pData);
    else if (nAudio < 2 * m_nChannels)
        m_outputs[nAudio - m_nChannels] = static_cast<float*>(pData);
}

void CLink::Run(std::uint32_t nFrames)
{
    if (m_pfLatency != nullptr)
        *m_pfLatency = 0;
    m_transport.fFreewheeling = m_pfFreeWheeling != nullptr && *m_pfFreeWheeling > 0.5F;
    ObeyArmPort();

    // An event holds from its own frame on.
    std::uint32_t nDone = 0;
    if (m_pControl != nullptr && m_pControl->atom.type == m_nControlSequence)
    {
        LV2_ATOM_SEQUENCE_FOREACH(m_pControl, pEvent)
        {
            if (!m_position.IsPosition(pEvent->body))
                continue;
            const auto nAt = static_cast<std::uint32_t>(
                std::clamp<std::int64_t>(pEvent->time.frames, nDone, nFrames));
            Process(nDone, nAt);
            nDone = nAt;
            m_position.Read(pEvent->body, m_transport);
        }
    }
    Process(nDone, nFrames);
    PassThrough(nFrames);
}

void CLink::ObeyArmPort()
{
    if (m_pfArm == nullptr)
        return;
    const bool fArm = *m_pfArm > 0.5F;
    if (m_armPort && *m_armPort != fArm)
        m_core.ArmFromPort(fArm);
    m_armPort = fArm;
}

void CLink::Process(std::uint32_t nFrom, std::uint32_t nTo)
{
    if (nFrom == nTo)
        return;
    std::array<const float*, kMaxChannels> channels{};
    for (std::uint32_t n = 0; n < m_nChannels; ++n)
        channels[n] = m_inputs[n] + nFrom;
    m_core.Process(m_transport, channels.data(), nTo - nFrom);
    // Hosts tell a position when it changes otherwise than by playing on.
    m_transport.dPosition += (nTo - nFrom) * m_transport.dSpeed;
}

void CLink::PassThrough(std::uint32_t nFrames) const
{
    for (std::uint32_t n = 0; n < m_nChannels; ++n)
    {
        if (m_inputs[n] != m_outputs[n])
            std::memmove(m_outputs[n], m_inputs[n], nFrames * sizeof(float));
    }
}

LV2_State_Status CLink::Save(LV2_State_Store_Function fnStore, LV2_State_Handle handle)
{
    constexpr std::uint32_t nFlags = LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE;
    const std::string strUuid = m_core.Uuid();
    const std::int32_t nTrack = m_core.Track();
    const LV2_State_Status status =
        fnStore(handle, m_nUuid, strUuid.c_str(), strUuid.size() + 1, m_nString, nFlags);
    if (status != LV2_STATE_SUCCESS)
        return status;
    return fnStore(handle, m_nTrack, &nTrack, sizeof nTrack, m_nInt, nFlags);
}

LV2_State_Status CLink::Restore(LV2_State_Retrieve_Function fnRetrieve, LV2_State_Handle handle)
{
    std::size_t nSize = 0;
    std::uint32_t nType = 0;
    std::uint32_t nFlags = 0;
    std::string strUuid;
    std::int32_t nTrack = m_core.Track();
    const void* pUuid = fnRetrieve(handle, m_nUuid, &nSize, &nType, &nFlags);
    if (pUuid != nullptr && nType == m_nString)
    {
        const auto* szUuid = static_cast<const char*>(pUuid);
        strUuid.assign(szUuid, ::strnlen(szUuid, nSize));
    }
    const void* pTrack = fnRetrieve(handle, m_nTrack, &nSize, &nType, &nFlags);
    if (pTrack != nullptr && nType == m_nInt && nSize == sizeof nTrack)
        std::memcpy(&nTrack, pTrack, sizeof nTrack);
    m_core.Restore(strUuid, nTrack);
    return LV2_STATE_SUCCESS;
}

CLink& LinkOf(LV2_Handle instance)
{
    return *static_cast<CLink*>(instance);
}

// One for each number of channels.
template <std::uint32_t nChannels>
LV2_Handle Instantiate(const LV2_Descriptor*, double dRate, const char* szBundle,
                       const LV2_Feature* const* ppFeatures)
try
{
    auto* pMap = static_cast<LV2_URID_Map*>(lv2_features_data(ppFeatures, LV2_URID__map));
    if (pMap == nullptr)
    {
        Log("the host gives the plug-in no urid:map.");
        return nullptr;
    }
    return new CLink(nChannels, dRate, szBundle, *pMap);
}
catch (const std::exception& error)
{
    Log(error.what());
    return nullptr;
}

void ConnectPort(LV2_Handle instance, std::uint32_t nPort, void* pData)
{
    LinkOf(instance).Connect(nPort, pData);
}

void Run(LV2_Handle instance, std::uint32_t nFrames)
{
    LinkOf(instance).Run(nFrames);
}

void Deactivate(LV2_Handle instance)
{
    LinkOf(instance).Deactivate();
}

void Cleanup(LV2_Handle instance)
{
    delete &LinkOf(instance);
}

LV2_State_Status Save(LV2_Handle instance, LV2_State_Store_Function fnStore,
                      LV2_State_Handle handle, std::uint32_t, const LV2_Feature* const*)
{
    return LinkOf(instance).Save(fnStore, handle);
}

LV2_State_Status Restore(LV2_Handle instance, LV2_State_Retrieve_Function fnRetrieve,
                         LV2_State_Handle handle, std::uint32_t, const LV2_Feature* const*)
{
    return LinkOf(instance).Restore(fnRetrieve, handle);
}

void Open(LV2_Handle instance, std::uint32_t nWindow)
{
    LinkOf(instance).View().Open(nWindow);
}

void Close(LV2_Handle instance, std::uint32_t nWindow)
{
    LinkOf(instance).View().Close(nWindow);
}

void Describe(LV2_Handle instance, char* szText, std::size_t nSize)
{
    std::snprintf(szText, nSize, "%s", LinkOf(instance).Describe().c_str());
}

const void* ExtensionData(const char* szUri)
{
    static constexpr LV2_State_Interface state{&Save, &Restore};
    static constexpr TarvaneViewAccess view{&Open, &Close, &Describe};
    if (std::strcmp(szUri, LV2_STATE__interface) == 0)
        return &state;
    if (std::strcmp(szUri, TARVANE_VIEW_ACCESS_URI) == 0)
        return &view;
    return nullptr;
}

template <std::uint32_t nChannels> constexpr LV2_Descriptor Describes(const char* szUri)
{
    return {szUri,    &Instantiate<nChannels>, &ConnectPort, nullptr, &Run, &Deactivate,
            &Cleanup, &ExtensionData};
}

// As manifest.ttl has them.
constexpr LV2_Descriptor kDescriptors[] = {
    Describes<1>("https://tarvane.org/lv2/link#mono"),
    Describes<2>("https://tarvane.org/lv2/link#stereo"),
    Describes<kMaxChannels>("https://tarvane.org/lv2/link#eight"),
};

} // namespace
} // namespace Tarvane

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t nIndex)
{
    return nIndex < std::size(Tarvane::kDescriptors) ? &Tarvane::kDescriptors[nIndex] : nullptr;
}
