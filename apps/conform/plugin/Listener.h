#pragma once

#include <AudioUnit/AudioUnit.h>

#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace Tarvane::Conform
{

/// Who listens to the four properties that the view listens to, as the view does. Counts, and calls
/// nobody: a plug-in may hold its locks meanwhile.
class CListener
{
public:
    /// Begins to listen. The object is never destroyed: a plug-in that breaks its rules may call it
    /// at any time. Throws CBroken when the plug-in takes no listeners.
    static CListener& Add(AudioUnit pUnit);

    explicit CListener(AudioUnit pUnit) : m_pUnit(pUnit) {}

    void Remove();

    /// Notifications so far: of one property, and of all.
    std::size_t Count(AudioUnitPropertyID nId) const;
    std::size_t Count() const;
    /// How many threads have raised this one.
    std::size_t Threads(AudioUnitPropertyID nId) const;

private:
    static void Hear(void* pUserData, AudioUnit, AudioUnitPropertyID nId, AudioUnitScope,
                     AudioUnitElement);

    AudioUnit m_pUnit;
    mutable std::mutex m_mutex; ///< guards all below
    std::map<AudioUnitPropertyID, std::size_t> m_counts;
    std::map<AudioUnitPropertyID, std::set<std::thread::id>> m_threads;
};

} // namespace Tarvane::Conform
