#include "apps/support/unit/FaultyUnit.h"

#include "apps/support/UnitComponent.h"
#include "apps/support/unit/SignalSide.h"

#include <filesystem>

namespace Tarvane
{
namespace
{

constexpr int kManyThreads = 16;
constexpr int kStormAMillisecond = 100;
constexpr std::uintmax_t kHeaderAlone = 44; // bytes of the plainest sound file
constexpr std::chrono::milliseconds kLate{50};
constexpr int kNotificationsFromBeyond = 200; // a millisecond apart

} // namespace

AudioComponent CFaultyUnit::Register()
{
    static const AudioComponent pComponent =
        UnitComponent<CFaultyUnit>::Register('TnLf', "Tarvane: Faulty Link");
    return pComponent;
}

CFaultyUnit::CFaultyUnit()
    : m_inner(CSignalSide::Register(), [this](AudioUnitPropertyID nId) { PassOn(nId); })
{
}

CFaultyUnit::~CFaultyUnit()
{
    Stop();
    for (std::thread& thread : m_threads)
    {
        thread.join();
    }
    m_inner.Close();
    if (Has(SignalFault::NotifiesAfterDisposal))
    {
        NotifyFromBeyond();
    }
}

void CFaultyUnit::NotifyFromBeyond() const
{
    // Nobody is left to wait for it.
    std::thread(
        [pListeners = m_pListeners, pUnit = m_pUnit]
        {
            for (int n = 0; n < kNotificationsFromBeyond; ++n)
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                pListeners->Notify(pUnit, kTNProperty_CurrentCaptureLength, kAudioUnitScope_Global,
                                   0);
            }
        })
        .detach();
}

void CFaultyUnit::Begin(const SignalFaults& faults)
{
    m_faults = faults;
    m_pListeners->Begin(faults);
    const int nThreads =
        Has(SignalFault::SixteenThreads) || Has(SignalFault::DisposedWhileNotifying) ? kManyThreads
                                                                                     : 0;
    for (int n = 0; n < nThreads; ++n)
    {
        m_threads.emplace_back([this] { Storm(1); });
    }
    if (Has(SignalFault::Storm))
    {
        m_threads.emplace_back([this] { Storm(kStormAMillisecond); });
    }
}

void CFaultyUnit::Storm(int nTimesAMillisecond)
{
    auto next = Clock::now();
    while (!m_fEnding)
    {
        for (int n = 0; n < nTimesAMillisecond; ++n)
        {
            Notify(kTNProperty_CurrentCaptureLength);
        }
        next += std::chrono::milliseconds(1);
        std::this_thread::sleep_until(next);
    }
}

bool CFaultyUnit::IsDropped(AudioUnitPropertyID nId)
{
    return (nId == TNProperty_Elements && Has(SignalFault::ElementsUnannounced)) ||
           (nId == TNProperty_ArmCapture &&
            (Has(SignalFault::ArmUnreported) ||
             (Has(SignalFault::DisarmUnreported) && IsFirstDisarming())));
}

// Of its own accord, since the arming that was reported last.
bool CFaultyUnit::IsFirstDisarming()
{
    UInt8 nArmed = 0;
    UInt32 nSize = sizeof nArmed;
    AudioUnitGetProperty(m_inner.Unit(), TNProperty_ArmCapture, kAudioUnitScope_Global, 0, &nArmed,
                         &nSize);
    return m_fArmReported.exchange(nArmed != 0) && nArmed == 0;
}

void CFaultyUnit::PassOn(AudioUnitPropertyID nId)
{
    if (IsDropped(nId))
    {
        return;
    }
    if (nId == TNProperty_Elements)
    {
        PassOnElement();
        return;
    }
    Notify(nId);
    if (nId == kTNProperty_CurrentCaptureLength && Has(SignalFault::PositionRaised))
    {
        Notify(TNProperty_CurrentSampleInTimeLine);
    }
}

void CFaultyUnit::PassOnElement()
{
    const SInt32 nElement = m_nAnnounced++;
    TNCaptureElement record;
    if (RecordOfInner(nElement, record) == noErr)
    {
        std::error_code ignored;
        if (Has(SignalFault::FileDiscarded))
        {
            std::filesystem::remove(record.szDubPath, ignored);
        }
        if (Has(SignalFault::PathUncarried))
        {
            std::filesystem::create_hard_link(record.szDubPath, UncarriedPath(record.szDubPath),
                                              ignored);
        }
        if (Has(SignalFault::FileUnfinished))
        {
            std::filesystem::resize_file(record.szDubPath, kHeaderAlone, ignored);
        }
    }
    if (Has(SignalFault::ElementReplaced))
    {
        ForgetEarlier(nElement);
    }
    if (Has(SignalFault::LastFirst))
    {
        PutFirst(nElement);
    }
    if (Has(SignalFault::ElementLate))
    {
        m_hiddenUntil = Clock::now() + kLate;
    }
    Notify(TNProperty_Elements);
    if (Has(SignalFault::IndexNeverNegative) || Has(SignalFault::AnnouncedTwice))
    {
        Notify(TNProperty_Elements);
    }
}

void CFaultyUnit::ForgetEarlier(SInt32 nElement)
{
    for (SInt32 nNext; (nNext = NextOfInner()) >= 0 && nNext < nElement;)
    {
        const TNElementAck ack{nNext, 1, 1, 1};
        AudioUnitSetProperty(m_inner.Unit(), TNProperty_ElementDone, kAudioUnitScope_Global, 0,
                             &ack, sizeof ack);
    }
}

void CFaultyUnit::PutFirst(SInt32 nElement)
{
    const SInt32 nNext = NextOfInner();
    TNCaptureElement record;
    RecordOfInner(nElement, record);
    std::lock_guard lock(m_mutex);
    m_records.push_back(record);
    // Whoever looks without having been told may have taken it already: then there is none before
    // it.
    if (nNext >= 0 && static_cast<size_t>(nNext) < m_records.size())
    {
        std::swap(m_records.back(), m_records[static_cast<size_t>(nNext)]);
    }
}

void CFaultyUnit::Notify(AudioUnitPropertyID nId)
{
    m_pListeners->Notify(m_pUnit, nId, kAudioUnitScope_Global, 0);
}

} // namespace Tarvane
