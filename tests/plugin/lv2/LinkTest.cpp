// The plug-in as a host loads it, driven cycle by cycle.
#include "tests/signal/CoreUnderTest.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <vector>

#include <lv2/atom/forge.h>
#include <lv2/core/lv2.h>
#include <lv2/state/state.h>
#include <lv2/time/time.h>
#include <lv2/urid/urid.h>

using namespace TarvaneTest;
using namespace testing;

namespace
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

LV2_State_Status Store(LV2_State_Handle handle, std::uint32_t nKey, const void* pValue,
                       std::size_t nSize, std::uint32_t nType, std::uint32_t)
{
    (*static_cast<State*>(handle))[nKey] = {{static_cast<const char*>(pValue), nSize}, nType};
    return LV2_STATE_SUCCESS;
}

const void* Retrieve(LV2_State_Handle handle, std::uint32_t nKey, std::size_t* pnSize,
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

// A host with one instance.
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
        m_handle = m_pDescriptor->instantiate(m_pDescriptor, dRate, (strBundle + "/").c_str(), features);
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

    // An event of the coming cycle: the transport stands there, with numbers of these types.
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

    // One cycle of the audio of the timeline from the position on; from the place nJumpAt on that
    // of another.
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
    void Arm(bool fArm) { m_fArm = fArm ? 1 : 0; }
    void SetFreeWheeling() { m_fFreeWheeling = 1; }
    float Latency() const { return m_fLatency; }
    // How often the thread that ran the plug-in has given up the processor to wait for something.
    // The processor being taken from it by others does not count.
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

class Lv2Link : public Test
{
protected:
    Lv2Link()
    {
        ::setenv("TARVANE_LINK_CAPTURES", captures.Path().c_str(), 1);
        // No view is wanted here; one that is started says so and ends.
        ::unsetenv("DISPLAY");
    }
    void Open(const std::string& strVariant = "stereo", std::uint32_t nChannels = 2,
              double dRate = 48000)
    {
        host.emplace(urids, strVariant, nChannels, dRate);
    }
    // The port is looked at once before it changes.
    void OpenArmed(const std::string& strVariant = "stereo", std::uint32_t nChannels = 2)
    {
        Open(strVariant, nChannels);
        host->Run(0);
        host->Arm(true);
    }
    // The takes, once the host is gone: position, and how many frames are right and in order.
    std::vector<std::pair<std::int64_t, std::int64_t>> Takes()
    {
        host.reset();
        std::vector<std::pair<std::int64_t, std::int64_t>> takes;
        for (const std::string& strFile : captures.Files())
        {
            if (!strFile.ends_with(".wav"))
                continue;
            SF_INFO info{};
            SF_BROADCAST_INFO broadcast{};
            SNDFILE* pFile = sf_open((captures / strFile).c_str(), SFM_READ, &info);
            EXPECT_NE(pFile, nullptr);
            EXPECT_TRUE(sf_command(pFile, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast));
            sf_close(pFile);
            const std::int64_t nPosition =
                broadcast.time_reference_low | std::int64_t{broadcast.time_reference_high} << 32;
            EXPECT_EQ(SamplesThatAreRight(captures / strFile, static_cast<double>(nPosition)),
                      static_cast<std::size_t>(info.frames * info.channels));
            takes.emplace_back(nPosition, info.frames);
            nRate = info.samplerate;
        }
        std::sort(takes.begin(), takes.end());
        return takes;
    }

    CTemporaryFolder captures;
    CUrids urids;
    std::optional<CHostOfOne> host;
    int nRate = 0;
};

using TakeList = std::vector<std::pair<std::int64_t, std::int64_t>>;

} // namespace

TEST_F(Lv2Link, ATakeLiesWhereTheTransportWas)
{
    OpenArmed();
    host->Tell(0, 123457, 1);
    for (int n = 0; n < 10; ++n)
        host->Run(123457 + n * kCycle);
    EXPECT_EQ(Takes(), (TakeList{{123457, 10 * kCycle}}));
}

TEST_F(Lv2Link, AnEventHoldsFromItsOwnFrameOn)
{
    OpenArmed();
    host->Tell(0, 1000, 1);
    host->Run(1000);
    host->Tell(100, 50000, 1);
    host->Run(1000 + kCycle, 100, 50000);
    host->Tell(77, 0, 0);
    host->Run(50000 + kCycle - 100);
    EXPECT_EQ(Takes(), (TakeList{{1000, kCycle + 100}, {50000, kCycle - 100 + 77}}));
}

TEST_F(Lv2Link, SeveralEventsOfACycleAreTakenOneAfterAnother)
{
    OpenArmed();
    host->Tell(0, 300, 0);
    host->Tell(10, 300, 1);
    host->Tell(200, 700, 0);
    host->Run(290);
    EXPECT_EQ(Takes(), (TakeList{{300, 190}}));
}

TEST_F(Lv2Link, PositionsComeInEveryTypeOfNumber)
{
    OpenArmed();
    LV2_Atom_Forge& forge = host->Forge();
    const auto fnFloat = [&] { lv2_atom_forge_float(&forge, 1); };
    host->TellTyped(
        0, [&] { lv2_atom_forge_int(&forge, 10000); }, fnFloat);
    host->Run(10000);
    host->TellTyped(
        0, [&] { lv2_atom_forge_double(&forge, 20000); },
        [&] { lv2_atom_forge_double(&forge, 1); });
    host->Run(20000);
    host->TellTyped(
        0, [&] { lv2_atom_forge_float(&forge, 30000); }, [&] { lv2_atom_forge_int(&forge, 1); });
    host->Run(30000);
    host->TellTyped(
        0, [&] { lv2_atom_forge_long(&forge, 40000); }, fnFloat, true);
    host->Run(40000);
    EXPECT_EQ(Takes(),
              (TakeList{{10000, kCycle}, {20000, kCycle}, {30000, kCycle}, {40000, kCycle}}));
}

TEST_F(Lv2Link, APositionThatIsNoNumberCountsAsLeftOut)
{
    OpenArmed();
    LV2_Atom_Forge& forge = host->Forge();
    host->TellTyped(
        0, [&] { lv2_atom_forge_string(&forge, "1000", 4); },
        [&] { lv2_atom_forge_float(&forge, 1); });
    host->Run(0);
    EXPECT_EQ(Takes(), TakeList{}) << "no position is known";
}

TEST_F(Lv2Link, ShuttleAndVarispeedAreNoTake)
{
    OpenArmed();
    for (const float fSpeed : {2.F, 0.5F, -1.F})
    {
        host->Tell(0, 5000, fSpeed);
        host->Run(5000);
    }
    host->Tell(0, 9000, 1);
    host->Run(9000);
    EXPECT_EQ(Takes(), (TakeList{{9000, kCycle}}));
}

TEST_F(Lv2Link, WithoutAPositionNothingIsCaptured)
{
    OpenArmed();
    for (int n = 0; n < 10; ++n)
        host->Run(0);
    EXPECT_EQ(Takes(), TakeList{});
}

TEST_F(Lv2Link, ThePortArmsWhenItChangesAndNotByWhereItStandsAtFirst)
{
    Open();
    host->Arm(true); // as the host's session left it
    host->Tell(0, 0, 1);
    host->Run(0);
    host->Run(kCycle);
    host->Arm(false);
    host->Run(2 * kCycle);
    host->Arm(true);
    host->Run(3 * kCycle);
    host->Arm(false);
    host->Run(4 * kCycle);
    EXPECT_EQ(Takes(), (TakeList{{3 * kCycle, kCycle}}));
}

TEST_F(Lv2Link, LatencyIsNone)
{
    Open();
    host->Run(0);
    EXPECT_EQ(host->Latency(), 0);
}

TEST_F(Lv2Link, OneChannelAndEightAreCapturedAsTheyAre)
{
    for (const auto& [strVariant, nChannels] :
         std::vector<std::pair<std::string, std::uint32_t>>{{"mono", 1}, {"eight", 8}})
    {
        OpenArmed(strVariant, nChannels);
        host->Tell(0, 640 * nChannels, 1);
        host->Run(640 * nChannels);
        host.reset();
    }
    EXPECT_EQ(Takes(), (TakeList{{640, kCycle}, {640 * 8, kCycle}}));
}

TEST_F(Lv2Link, ATakesRateIsTheHosts)
{
    Open("stereo", 2, 96000);
    host->Run(0);
    host->Arm(true);
    host->Tell(0, 1, 1);
    host->Run(1);
    EXPECT_EQ(Takes().size(), 1U);
    EXPECT_EQ(nRate, 96000);
}

TEST_F(Lv2Link, FreewheelingIsCapturedWholeHoweverFast)
{
    OpenArmed();
    host->SetFreeWheeling();
    host->Tell(0, 0, 1);
    // Far more than fits between the audio thread and the disk.
    constexpr int kCycles = 8000;
    for (int n = 0; n < kCycles; ++n)
        host->Run(std::int64_t{n} * kCycle);
    EXPECT_EQ(Takes(), (TakeList{{0, std::int64_t{kCycles} * kCycle}}));
}

TEST_F(Lv2Link, TheAudioThreadWaitsForNobodyThoughTheViewStandsStill)
{
    CTemporaryFolder bundle;
    std::filesystem::create_symlink(FAKE_VIEW_PROGRAM, bundle / "tarvane-link-view");
    ::setenv("FAKE_VIEW", "mute", 1);
    ::setenv("FAKE_VIEW_LOG", (bundle / "log").c_str(), 1);
    host.emplace(urids, "stereo", 2, 48000, bundle.Path());
    host->Run(0);
    // Armed and not, from jump to jump: takes begin and end, and the view is told of each.
    constexpr int kStretches = 100;
    constexpr int kCycles = 10;
    for (int n = 0; n < kStretches; ++n)
    {
        host->Arm(n % 4 != 3);
        host->Tell(0, n * 100000, 1);
        for (int nCycle = 0; nCycle < kCycles; ++nCycle)
            host->Run(n * 100000 + nCycle * kCycle);
    }
    // The system may let it wait for a page of memory, now and then.
    EXPECT_LT(host->Waits(), kStretches / 10);
    EXPECT_EQ(Takes().size(), static_cast<std::size_t>(kStretches * 3 / 4));
    ::unsetenv("FAKE_VIEW");
    ::unsetenv("FAKE_VIEW_LOG");
}

TEST_F(Lv2Link, TheStateKeepsUuidAndTrackAndNeverThatItWasArmed)
{
    OpenArmed();
    host->Run(0);
    State state = host->Save();
    ASSERT_EQ(state.size(), 2U);
    const LV2_URID nTrack = urids("https://tarvane.org/lv2/link#track");
    const std::int32_t nChosen = 3;
    state[nTrack].bytes.assign(reinterpret_cast<const char*>(&nChosen), sizeof nChosen);
    host.reset();

    Open();
    EXPECT_NE(host->Save(), state) << "an instance of its own";
    host->Restore(state);
    const State restored = host->Save();
    for (const auto& [nKey, value] : state)
    {
        ASSERT_EQ(restored.count(nKey), 1U);
        EXPECT_EQ(restored.at(nKey).bytes, value.bytes);
    }
    host->Tell(0, 100, 1);
    host->Run(100);
    EXPECT_EQ(Takes(), TakeList{});
}

TEST_F(Lv2Link, AStateOfAnotherShapeIsIgnored)
{
    Open();
    const State before = host->Save();
    State flawed;
    flawed[urids("https://tarvane.org/lv2/link#uuid")] = {"x", urids(LV2_ATOM__Int)};
    flawed[urids("https://tarvane.org/lv2/link#track")] = {"x", urids(LV2_ATOM__Int)};
    host->Restore(flawed);
    for (const auto& [nKey, value] : host->Save())
        EXPECT_EQ(value.bytes, before.at(nKey).bytes);
}

TEST_F(Lv2Link, TwoInstancesHaveAStateOfTheirOwn)
{
    OpenArmed();
    CHostOfOne other(urids, "stereo", 2);
    other.Run(0);
    host->Tell(0, 700, 1);
    other.Tell(0, 900, 1);
    host->Run(700);
    other.Run(900);
    EXPECT_EQ(Takes(), (TakeList{{700, kCycle}}));
}
