// What is recorded between a view and its plug-in, whole or faulty.

#include "apps/support/recording/RecordedUnit.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/host/PlugIn.h"
#include "apps/support/recording/Recorder.h"
#include "tests/apps/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <fstream>

using namespace Tarvane;
using namespace TarvaneTest;
using nlohmann::json;

namespace
{

class RecordedUnit : public testing::Test
{
protected:
    static void Hear(void* pTest, AudioUnit pUnit, AudioUnitPropertyID, AudioUnitScope,
                     AudioUnitElement)
    {
        auto* const pThis = static_cast<RecordedUnit*>(pTest);
        pThis->m_pHeardFrom = pUnit;
        ++pThis->m_nHeard;
    }

    static OSStatus Arm(AudioUnit pUnit)
    {
        const TNArmRequest request{1, 0};
        return AudioUnitSetProperty(pUnit, TNProperty_SetArmCapture, kAudioUnitScope_Global, 0,
                                    &request, sizeof request);
    }

    // The lines of the recording without the first.
    std::vector<json> Lines() const
    {
        std::ifstream file(m_strFile);
        std::string strLine;
        std::getline(file, strLine);
        std::vector<json> lines;
        while (std::getline(file, strLine))
            lines.push_back(json::parse(strLine));
        return lines;
    }

    CTemporaryFolder m_folder;
    const std::string m_strFile = m_folder / "recording";
    std::atomic<int> m_nHeard = 0;
    std::atomic<AudioUnit> m_pHeardFrom = nullptr;
};

} // namespace

TEST_F(RecordedUnit, PassesEverythingOnAndRecordsIt)
{
    {
        CRecorder recorder(m_strFile, "test");
        CPlugIn plugIn({}, &recorder);
        AudioUnitAddPropertyListener(plugIn.Unit(), TNProperty_ArmCapture, &Hear, this);
        EXPECT_EQ(Arm(plugIn.Unit()), noErr);
        EXPECT_EQ(m_nHeard, 1);
        EXPECT_EQ(m_pHeardFrom, plugIn.Unit());
        UInt8 fArmed = 0;
        UInt32 nSize = sizeof fArmed;
        EXPECT_EQ(AudioUnitGetProperty(plugIn.Unit(), TNProperty_ArmCapture, kAudioUnitScope_Global,
                                       0, &fArmed, &nSize),
                  noErr);
        EXPECT_EQ(fArmed, 1);
        EXPECT_TRUE(plugIn->IsArmed());
        TNCaptureElement record;
        nSize = sizeof record;
        EXPECT_NE(AudioUnitGetProperty(plugIn.Unit(), TNProperty_ElementInfo,
                                       kAudioUnitScope_Global, 3, &record, &nSize),
                  noErr);
    }
    const std::vector<json> lines = Lines();
    ASSERT_EQ(lines.size(), 4U);
    // The plug-in notifies from within the write.
    EXPECT_EQ(lines[0]["kind"], "notification");
    EXPECT_EQ(lines[0]["property"], 64004);
    EXPECT_EQ(lines[0]["thread"], "main");
    EXPECT_EQ(lines[1]["kind"], "write");
    EXPECT_EQ(lines[1]["fields"]["fArm"], 1);
    EXPECT_EQ(lines[2]["kind"], "read");
    EXPECT_EQ(lines[2]["fields"]["fArmed"], 1);
    EXPECT_EQ(lines[3]["element"], 3);
    EXPECT_NE(lines[3]["status"], 0);
    // What stood in the room before is none of the plug-in's.
    EXPECT_FALSE(lines[3].contains("hex"));
    EXPECT_FALSE(lines[3].contains("fields"));
}

TEST_F(RecordedUnit, RecordsWhatTheViewOfAFaultyPlugInSees)
{
    {
        CRecorder recorder(m_strFile, "test");
        CPlugIn plugIn({SignalFault::ArmIgnored}, &recorder);
        EXPECT_EQ(Arm(plugIn.Unit()), noErr);
        EXPECT_FALSE(plugIn->IsArmed());
    }
    const std::vector<json> lines = Lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0]["kind"], "write");
}

TEST_F(RecordedUnit, StormFromManyThreadsMakesAShortRecording)
{
    {
        CRecorder recorder(m_strFile, "test");
        CPlugIn plugIn({SignalFault::Storm, SignalFault::SixteenThreads}, &recorder);
        AudioUnitAddPropertyListener(plugIn.Unit(), kTNProperty_CurrentCaptureLength, &Hear, this);
        while (m_nHeard < 5000)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    int nCounted = 0;
    for (const json& line : Lines())
    {
        EXPECT_EQ(line["thread"], "other");
        nCounted += line.value("count", 1);
    }
    EXPECT_GE(nCounted, 5000);
    EXPECT_LT(Lines().size(), 100U);
}
