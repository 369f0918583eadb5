#pragma once

#include <AudioUnit/AudioComponent.h>

#include <cstdint>
#include <map>
#include <mutex>

namespace platform
{

struct Instance
{
    AudioComponent component = nullptr;
    AudioComponentPlugInInterface* plugIn = nullptr;
};

/// The instances that are alive, by handle. A handle is a number that is never used twice: a view
/// that outlives its unit is told so and never reaches another unit. Any thread.
class Instances
{
public:
    static Instances& Shared();

    AudioComponentInstance Add(const Instance& instance);

    /// Both answer with an empty instance when there is none under the handle.
    Instance Find(AudioComponentInstance handle) const;
    Instance Remove(AudioComponentInstance handle);

private:
    mutable std::mutex m_mutex;
    std::map<AudioComponentInstance, Instance> m_instances;
    std::uintptr_t m_nLastHandle = 0;
};

} // namespace platform
