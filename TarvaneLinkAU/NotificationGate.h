#pragma once

#include <atomic>
#include <thread>

// Lets other threads into an object that the main thread is about to give up. Who is inside has
// the object for as long; once the gate is closed nobody comes in any more, and it stays closed.
class CNotificationGate
{
public:
    // A stay inside, for the life of this value. Any thread; never blocks.
    class CPass
    {
    public:
        explicit CPass(CNotificationGate& gate) : m_gate(gate)
        {
            m_gate.m_nInside.fetch_add(1);
            m_fInside = !m_gate.m_fClosed.load();
        }
        // The gate may be gone as soon as the count has fallen.
        ~CPass() { m_gate.m_nInside.fetch_sub(1); }
        CPass(const CPass&) = delete;
        CPass& operator=(const CPass&) = delete;

        // False when the gate was closed already: leave the object alone.
        explicit operator bool() const { return m_fInside; }

    private:
        CNotificationGate& m_gate;
        bool m_fInside;
    };

    // Returns when nobody is inside. Not to be called by somebody inside.
    void Close()
    {
        m_fClosed.store(true);
        while (m_nInside.load() != 0)
            std::this_thread::yield();
    }

private:
    std::atomic<int> m_nInside{0};
    std::atomic<bool> m_fClosed{false};
};
