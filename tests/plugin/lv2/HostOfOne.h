// The plug-in's library with one instance in it, driven cycle by cycle as a host does.
#pragma once

#include "tests/signal/CoreUnderTest.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/resource.h>
#include <vector>

#include <lv2/atom/forge.h>
#include <lv2/core/lv2.h>
#include <lv2/state/state.h>
#include <lv2/time/time.h>
#include <lv2/urid/urid.h>

namespace TarvaneTest
{

constexpr std::uint32_t kCycle = 256;

class CUrids
{
public:
    LV2_URID_Map Map() { return {this, &MapUri}; }
    LV2_URID operator()(const char* szUri)
    {
        return m_ids.try_emplace(szUri, static_cast<LV2_URID>(m_ids.size() + 1)).first->second;
    }

private:
    static LV2_URID MapUri(LV2_URID_Map_Handle handle, const char* szUri)
    {
        return (*static_cast<CUrids*>(handle))(szUri);
    }
    std::map<std::string, LV2_URID> m_ids;
};

struct StateValue
{
    std::string bytes;
    std::uint32_t nType = 0;
    bool operator==(const StateValue&) const = default;
};
using State = std::map<LV2_URID, StateValue>;

inline LV2_State_Status Store(LV2_State_Handle handle, std::uint32_t nKey, const void* pValue,
                              std::size_t nSize, std::uint32_t nType, std::uint32_t)
{
    (*static_cast<State*>(handle))[nKey] = {{static_cast<const char*>(pValue), nSize}, nType};
    return LV2_STATE_SUCCESS;
}

inline const void* Retrieve(LV2_State_Handle handle, std::uint32_t nKey, std::size_t* pnSize,
                            std::uint32_t* pnType, std::uint32_t* pnFlags)
{
    auto& state = *static_cast<State*>(handle);
    if (state.count(nKey) == 0)
        return nullptr;
    *pnSize = state[nKey].bytes.size();
    *pnType = state[nKey].nType;
    *pnFlags = 0;
    return state[nKey].bytes.data();
}

/// A host with one instance.
class CHostOfOne
{
public:
    CHostOfOne(CUrids& urids, const std::string& strVariant, std::uint32_t nChannels,
               double dRate = 48000, const std::string& strBundle = LV2_BUNDLE)
        : m_urids(urids), m_map(urids.Map()), m_nChannels(nChannels),
          m_inputs(nChannels, std::vector<float>(kCycle)),
          m_outputs(nChannels, std::vector<float>(kCycle))
    {
        m_pLibrary = ::dlopen(LV2_BUNDLE "/link.so", RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(m_pLibrary, nullptr) << ::dlerror();
        const auto pEntry =
            reinterpret_cast<LV2_Descriptor_Function>(::dlsym(m_pLibrary, "lv2_descriptor"));
        for (std::uint32_t n = 0; (m_pDescriptor = pEntry(n)) != nullptr; ++n)
        {
            if (m_pDescriptor->URI == "https://tarvane.org/lv2/link#" + strVariant)
                break;
        }
        const LV2_Feature map{LV2_URID__map, &m_map};
        const LV2_Feature* features[] = {&map, nullptr};
        m_handle =
            m_pDescriptor->instantiate(m_pDescriptor, dRate, (strBundle + "/").c_str(), features);
        EXPECT_NE(m_handle, nullptr);
        m_pDescriptor->connect_port(m_handle, 0, m_control.data());
        m_pDescriptor->connect_port(m_handle, 1, &m_fArm);
        m_pDescriptor->connect_port(m_handle, 2, &m_fFreeWheeling);
        m_pDescriptor->connect_port(m_handle, 3, &m_fLatency);
        for (std::uint32_t n = 0; n < nChannels; ++n)
        {
            m_pDescriptor->connect_port(m_handle, 4 + n, m_inputs[n].data());
            m_pDescriptor->connect_port(m_handle, 4 + nChannels + n, m_outputs[n].data());
        }
        BeginEvents();
    }
    ~CHostOfOne()
    {
        m_pDescriptor->deactivate(m_handle);
        m_pDescriptor->cleanup(m_handle);
        ::dlclose(m_pLibrary);
    }

    LV2_Atom_Forge& Forge() { return m_forge; }
    CUrids& Urids() { return m_urids; }
    LV2_Handle Instance() const { return m_handle; }
    const LV2_Descriptor& Descriptor() const { return *m_pDescriptor; }

    /// An event of the coming cycle: the transport stands there, with numbers of these types.
    template <typename Frame, typename Speed>
    void TellTyped(std::uint32_t nAt, Frame&& fnFrame, Speed&& fnSpeed, bool fBlank = false)
    {
        LV2_Atom_Forge_Frame frame;
        lv2_atom_forge_frame_time(&m_forge, nAt);
        lv2_atom_forge_object(&m_forge, &frame, 0, m_urids(LV2_TIME__Position));
        if (fBlank)
            lv2_atom_forge_deref(&m_forge, frame.ref)->type = m_urids(LV2_ATOM__Blank);
        lv2_atom_forge_key(&m_forge, m_urids(LV2_TIME__frame));
        fnFrame();
        lv2_atom_forge_key(&m_forge, m_urids(LV2_TIME__speed));
        fnSpeed();
        lv2_atom_forge_pop(&m_forge, &frame);
    }
    void Tell(std::uint32_t nAt, std::int64_t nFrame, float fSpeed)
    {
        TellTyped(
            nAt, [&] { lv2_atom_forge_long(&m_forge, nFrame); },
            [&] { lv2_atom_forge_float(&m_forge, fSpeed); });
    }

    /// One cycle of the audio of the timeline from the position on; from the place nJumpAt on that
    /// of another.
    void Run(std::int64_t nPosition, std::uint32_t nJumpAt = kCycle, std::int64_t nThere = 0)
    {
        for (std::uint32_t nChannel = 0; nChannel < m_nChannels; ++nChannel)
        {
            for (std::uint32_t n = 0; n < kCycle; ++n)
                m_inputs[nChannel][n] =
                    SampleAt(n < nJumpAt ? nPosition + n : nThere + n - nJumpAt, nChannel);
        }
        lv2_atom_forge_pop(&m_forge, &m_sequence);
        const long nBefore = TimesWaited();
        m_pDescriptor->run(m_handle, kCycle);
        m_nWaits += TimesWaited() - nBefore;
        EXPECT_EQ(m_inputs, m_outputs) << "audio passes through";
        BeginEvents();
    }
    /// So many cycles of the timeline from its beginning on, as fast as the plug-in takes them.
    /// Counts those that are done.
    void RunThrough(std::uint32_t nCycles, std::atomic<std::uint32_t>& nDone)
    {
        std::vector<std::vector<float>> timeline(m_nChannels);
        for (std::uint32_t nChannel = 0; nChannel < m_nChannels; ++nChannel)
        {
            for (std::uint32_t n = 0; n < nCycles * kCycle; ++n)
                timeline[nChannel].push_back(SampleAt(n, nChannel));
        }
        for (std::uint32_t nCycle = 0; nCycle < nCycles; ++nCycle)
        {
            for (std::uint32_t nChannel = 0; nChannel < m_nChannels; ++nChannel)
                m_pDescriptor->connect_port(m_handle, 4 + nChannel,
                                            timeline[nChannel].data() + nCycle * kCycle);
            lv2_atom_forge_pop(&m_forge, &m_sequence);
            m_pDescriptor->run(m_handle, kCycle);
            BeginEvents();
            ++nDone;
        }
        for (std::uint32_t nChannel = 0; nChannel < m_nChannels; ++nChannel)
            m_pDescriptor->connect_port(m_handle, 4 + nChannel, m_inputs[nChannel].data());
    }
    void Arm(bool fArm) { m_fArm = fArm ? 1 : 0; }
    void SetFreeWheeling() { m_fFreeWheeling = 1; }
    float Latency() const { return m_fLatency; }
    /// How often the thread that ran the plug-in has given up the processor to wait for something.
    /// The processor being taken from it by others does not count.
    long Waits() const { return m_nWaits; }

    State Save()
    {
        State state;
        StateInterface().save(m_handle, &Store, &state, LV2_STATE_IS_POD, nullptr);
        return state;
    }
    void Restore(State state) { StateInterface().restore(m_handle, &Retrieve, &state, 0, nullptr); }

private:
    static long TimesWaited()
    {
        rusage usage{};
        ::getrusage(RUSAGE_THREAD, &usage);
        return usage.ru_nvcsw;
    }
    const LV2_State_Interface& StateInterface() const
    {
        return *static_cast<const LV2_State_Interface*>(
            m_pDescriptor->extension_data(LV2_STATE__interface));
    }
    void BeginEvents()
    {
        lv2_atom_forge_init(&m_forge, &m_map);
        lv2_atom_forge_set_buffer(&m_forge, m_control.data(), m_control.size());
        lv2_atom_forge_sequence_head(&m_forge, &m_sequence, 0);
    }

    CUrids& m_urids;
    LV2_URID_Map m_map;
    const std::uint32_t m_nChannels;
    alignas(8) std::array<std::uint8_t, 4096> m_control{};
    float m_fArm = 0, m_fFreeWheeling = 0, m_fLatency = -1;
    std::vector<std::vector<float>> m_inputs, m_outputs;
    LV2_Atom_Forge m_forge{};
    LV2_Atom_Forge_Frame m_sequence{};
    void* m_pLibrary = nullptr;
    const LV2_Descriptor* m_pDescriptor = nullptr;
    LV2_Handle m_handle = nullptr;
    long m_nWaits = 0;
};

} // namespace TarvaneTest
