// A signal side, opened and driven as a host and a view would: through the AudioUnit interface.
#pragma once

#include "apps/support/unit/SignalSide.h"
#include "tests/apps/support/TemporaryFolder.h"
#include "tests/apps/support/sound/SoundFixture.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace TarvaneTest
{

struct Notification
{
    AudioUnitPropertyID nId;
    std::thread::id thread;
    SInt32 nNext;   ///< 64007 at that moment
    UInt8 fArmed;   ///< 64004
    double dLength; ///< 64010
};

class CPlugInUnderTest
{
public:
    CPlugInUnderTest()
    {
        EXPECT_EQ(AudioComponentInstanceNew(Tarvane::CSignalSide::Register(), &m_pUnit), noErr);
        m_settings.captureFolder = captures.Path();
        m_settings.dSpeed = 0;
        Side().Configure(m_settings);
        for (AudioUnitPropertyID nId = 64000; nId <= 64010; ++nId)
        {
            AudioUnitAddPropertyListener(m_pUnit, nId, &Hear, this);
        }
        Side().SetObserver([this](const Tarvane::CCaptureReport& report) { Note(report); });
    }
    ~CPlugInUnderTest() { Dispose(); }

    void Dispose()
    {
        {
            std::lock_guard lock(m_reading);
            m_fReads = false;
        }
        if (m_pUnit != nullptr)
        {
            EXPECT_EQ(AudioComponentInstanceDispose(m_pUnit), noErr);
            m_pUnit = nullptr;
        }
    }

    AudioUnit Unit() const { return m_pUnit; }
    Tarvane::CSignalSide& Side() const { return *Tarvane::CSignalSide::Of(m_pUnit); }

    void SetSpeed(double dSpeed)
    {
        m_settings.dSpeed = dSpeed;
        m_settings.captureFolder = captureFolder;
        Side().Configure(m_settings);
    }

    template <typename Value>
    Value Get(AudioUnitPropertyID nId, AudioUnitElement nElement = 0) const
    {
        Value value{};
        UInt32 nSize = sizeof value;
        EXPECT_EQ(
            AudioUnitGetProperty(m_pUnit, nId, kAudioUnitScope_Global, nElement, &value, &nSize),
            noErr)
            << nId;
        EXPECT_EQ(nSize, sizeof value);
        return value;
    }

    template <typename Value> OSStatus Set(AudioUnitPropertyID nId, const Value& value) const
    {
        return AudioUnitSetProperty(m_pUnit, nId, kAudioUnitScope_Global, 0, &value, sizeof value);
    }

    OSStatus Arm(bool fArm) const
    {
        return Set(TNProperty_SetArmCapture, TNArmRequest{static_cast<UInt8>(fArm), 0});
    }

    OSStatus Acknowledge(SInt32 nElement, UInt8 fNotDelivered = 0) const
    {
        return Set(TNProperty_ElementDone, TNElementAck{nElement, 1, fNotDelivered, 1});
    }

    std::filesystem::path MakeSource(const std::string& strName, size_t nFrames, int nRate = 48000)
    {
        WriteSound(sources / strName, SF_FORMAT_WAV | SF_FORMAT_PCM_16, nFrames, 1, nRate);
        return sources / strName;
    }

    /// Arms with the file and waits until it is published.
    void Capture(const std::filesystem::path& file, double dPosition = 0)
    {
        const size_t nBefore = Count(TNProperty_Elements);
        Side().SetSource({file, dPosition});
        EXPECT_EQ(Arm(true), noErr);
        WaitFor([&] { return CountLocked(TNProperty_Elements) > nBefore; });
    }

    /// Waits, woken by every notification, for a state that is sure to come.
    void WaitFor(const std::function<bool()>& fReached)
    {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_heard.wait_for(lock, std::chrono::seconds(60), fReached));
    }
    void WaitForFirst(AudioUnitPropertyID nId)
    {
        WaitFor([this, nId] { return CountLocked(nId) > 0; });
    }

    std::vector<Notification> Heard() const
    {
        std::lock_guard lock(m_mutex);
        return m_notifications;
    }
    /// The ids in order, each run of progress notifications as one.
    std::vector<AudioUnitPropertyID> HeardIds() const
    {
        std::vector<AudioUnitPropertyID> ids;
        for (const Notification& notification : Heard())
        {
            if (ids.empty() || ids.back() != notification.nId ||
                notification.nId != kTNProperty_CurrentCaptureLength)
            {
                ids.push_back(notification.nId);
            }
        }
        return ids;
    }
    size_t Count(AudioUnitPropertyID nId) const
    {
        std::lock_guard lock(m_mutex);
        return CountLocked(nId);
    }
    size_t CountLocked(AudioUnitPropertyID nId) const
    {
        size_t nCount = 0;
        for (const Notification& notification : m_notifications)
        {
            nCount += notification.nId == nId;
        }
        return nCount;
    }

    /// What the observer was told last of the capture of this number; waits for the first word.
    Tarvane::CCaptureReport Report(size_t nNumber)
    {
        WaitFor([&] { return m_reports.count(nNumber) != 0; });
        std::lock_guard lock(m_mutex);
        return m_reports[nNumber];
    }

    /// Called on the notifying thread, after the notification has been noted.
    std::function<void(AudioUnitPropertyID)> onNotification;
    /// Called on the observed thread, before the report is noted.
    std::function<void(const Tarvane::CCaptureReport&)> onReport;

    CTemporaryFolder sources, captures;
    /// Where captures go from the next SetSpeed on.
    std::filesystem::path captureFolder = captures.Path();

private:
    void Note(const Tarvane::CCaptureReport& report)
    {
        if (onReport)
        {
            onReport(report);
        }
        std::lock_guard lock(m_mutex);
        m_reports[report.nNumber] = report;
        m_heard.notify_all();
    }

    static void Hear(void* pUserData, AudioUnit pUnit, AudioUnitPropertyID nId,
                     AudioUnitScope nScope, AudioUnitElement nElement)
    {
        auto& self = *static_cast<CPlugInUnderTest*>(pUserData);
        EXPECT_EQ(pUnit, self.m_pUnit);
        EXPECT_EQ(nScope, static_cast<AudioUnitScope>(kAudioUnitScope_Global));
        EXPECT_EQ(nElement, 0U);
        Notification notification{nId, std::this_thread::get_id(), -1, 0, 0};
        if (std::lock_guard lock(self.m_reading); self.m_fReads)
        {
            notification.nNext = self.Get<SInt32>(TNProperty_NextElement);
            notification.fArmed = self.Get<UInt8>(TNProperty_ArmCapture);
            notification.dLength = self.Get<Float64>(kTNProperty_CurrentCaptureLength);
        }
        {
            std::lock_guard lock(self.m_mutex);
            self.m_notifications.push_back(notification);
            self.m_heard.notify_all();
        }
        if (self.onNotification)
        {
            self.onNotification(nId);
        }
    }

    AudioUnit m_pUnit = nullptr;
    /// Whether a notification reads what it may have changed: a unit that is being disposed of
    /// answers nothing. Held while one reads, so that none reads across the disposal.
    std::mutex m_reading;
    bool m_fReads = true;
    Tarvane::CSignalSettings m_settings;
    mutable std::mutex m_mutex;
    std::condition_variable m_heard;
    std::vector<Notification> m_notifications;
    std::map<size_t, Tarvane::CCaptureReport> m_reports;
};

} // namespace TarvaneTest
