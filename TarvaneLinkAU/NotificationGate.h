#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

/// Lets notifications into a view for as long as anybody owns it, and asks with nothing but the
/// view's address. A plug-in may call a listener that was removed a moment ago, on any thread,
/// while or after the view is destroyed. Such a call must not look behind the address, so whatever
/// it touches before it is let in stands here: in gates that belong to no view and are never freed.
///
/// Why nobody comes in too late: entering counts, in one word with what bars the way. The last
/// owner closes the gate by a compare-and-exchange of that word, which fails if anybody is inside
/// or has come in since the owner saw that no other owner is left. Whoever enters after that finds
/// the gate closed, and whoever entered before it was waited for.
///
/// Why nobody is turned away too early: only that exchange closes the gate. A notifier who was
/// inside and has queued a call, which owns the view, is seen before it.
///
/// A gate belongs to an address for good: it is closed while no view is there, and opened for the
/// next view that is. That one may hear a late call that was meant for the old one; it is alive,
/// and asks its plug-in. An address without a gate is none of a view, and is let in: whoever gave
/// it to the plug-in answers for it. Gates hang in lists by a hash of the address, the first of
/// each list static: there are as many as addresses at which views ever were, which memory that is
/// used again keeps few.
///
/// No operation takes a lock. Only OpenFor may allocate.
class alignas(64) CNotificationGate
{
public:
    enum class Kind
    {
        // Is turned away while the last owner lets go or the view changes its plug-in, so that
        // neither waits for a storm to pass.
        Progress,
        // A capture or a change of the armed state. Only a closed gate turns it away.
        Other,
    };

    // A stay in the view at an address, for the life of this value. The view is not destroyed
    // meanwhile. Any thread, real-time safe.
    class CPass
    {
    public:
        CPass(const void* pView, Kind kind)
            : m_nOne(kind == Kind::Progress ? kOneProgress : kOneOther), m_pGate(Find(pView)),
              m_fIn(m_pGate == nullptr || m_pGate->Enter(m_nOne))
        {
        }
        ~CPass()
        {
            if (m_pGate != nullptr && m_fIn)
                m_pGate->Leave(m_nOne);
        }
        CPass(const CPass&) = delete;
        CPass& operator=(const CPass&) = delete;

        // False when the view is not there any more: leave the address alone.
        explicit operator bool() const { return m_fIn; }

    private:
        std::uint64_t m_nOne;
        CNotificationGate* m_pGate; // null where no view ever was
        bool m_fIn;
    };

    // Keeps progress out for the life of this value. Begins when none is inside. For the thread
    // that owns the view, and not from inside.
    class CPause
    {
    public:
        explicit CPause(CNotificationGate& gate) : m_gate(gate)
        {
            m_gate.m_nState.fetch_or(kPaused);
            while ((m_gate.m_nState.load() & kAllProgress) != 0)
                std::this_thread::yield();
        }
        ~CPause() { m_gate.m_nState.fetch_and(~kPaused); }
        CPause(const CPause&) = delete;
        CPause& operator=(const CPause&) = delete;

    private:
        CNotificationGate& m_gate;
    };

    // An open gate for a new view.
    static CNotificationGate& OpenFor(const void* pView);

    // For an owner that is about to let go, and not from inside. isLast tells whether it is the
    // only owner. Returns when it is not, with the gate open, or when nobody is inside and the gate
    // is closed.
    template <typename IsLast> void CloseBehindTheLast(IsLast isLast)
    {
        m_nState.fetch_or(kPaused);
        for (;;)
        {
            std::uint64_t nSeen = m_nState.load();
            if (!isLast())
                break;
            if ((nSeen & (kAllProgress | kAllOthers)) == 0 &&
                m_nState.compare_exchange_strong(nSeen, nSeen | kClosed))
                return;
            std::this_thread::yield();
        }
        m_nState.fetch_and(~kPaused);
    }

    // Before the view's memory is given back, whichever way it came to that.
    void Abandon() { m_nState.fetch_or(kClosed); }

private:
    // The word: what bars the way, who is inside, and how often somebody came in.
    static constexpr std::uint64_t kClosed = 1;
    static constexpr std::uint64_t kPaused = 2;
    static constexpr std::uint64_t kOneProgress = std::uint64_t(1) << 2;
    static constexpr std::uint64_t kAllProgress = std::uint64_t(0xFFFF) << 2;
    static constexpr std::uint64_t kOneOther = std::uint64_t(1) << 18;
    static constexpr std::uint64_t kAllOthers = std::uint64_t(0xFFFF) << 18;
    static constexpr std::uint64_t kOneEntry = std::uint64_t(1) << 34; // and up; may run over

    static constexpr std::uint64_t kStaticGates = 256;
    static CNotificationGate s_gates[kStaticGates];

    static CNotificationGate& FirstFor(const void* pView)
    {
        const auto nAddress = reinterpret_cast<std::uintptr_t>(pView);
        return s_gates[(nAddress >> 4 ^ nAddress >> 12) % kStaticGates];
    }

    static CNotificationGate* Find(const void* pView)
    {
        CNotificationGate* pGate = &FirstFor(pView);
        while (pGate != nullptr && pGate->m_pView.load(std::memory_order_acquire) != pView)
            pGate = pGate->m_pNext.load(std::memory_order_acquire);
        return pGate;
    }

    bool Enter(std::uint64_t nOne)
    {
        const std::uint64_t nBars = kClosed | (nOne == kOneProgress ? kPaused : 0);
        // Looked at first, so that those who are turned away disturb nobody who waits.
        if ((m_nState.load(std::memory_order_relaxed) & nBars) != 0)
            return false;
        const std::uint64_t nBefore = m_nState.fetch_add(kOneEntry + nOne);
        if ((nBefore & nBars) == 0)
            return true;
        Leave(nOne);
        return false;
    }

    void Leave(std::uint64_t nOne) { m_nState.fetch_sub(nOne); }

    std::atomic<std::uint64_t> m_nState{kClosed};
    std::atomic<const void*> m_pView{nullptr}; // written once
    std::atomic<CNotificationGate*> m_pNext{nullptr};
};
