#include "platform/gnustep/AudioUnit/Instances.h"

namespace platform
{

Instances& Instances::Shared()
{
    // Never destroyed: views may still ask while the process ends.
    static Instances& instances = *new Instances;
    return instances;
}

AudioComponentInstance Instances::Add(const Instance& instance)
{
    std::lock_guard lock(m_mutex);
    const auto handle = reinterpret_cast<AudioComponentInstance>(++m_nLastHandle);
    m_instances.emplace(handle, instance);
    return handle;
}

Instance Instances::Find(AudioComponentInstance handle) const
{
    std::lock_guard lock(m_mutex);
    const auto found = m_instances.find(handle);
    return found == m_instances.end() ? Instance() : found->second;
}

Instance Instances::Remove(AudioComponentInstance handle)
{
    std::lock_guard lock(m_mutex);
    const auto node = m_instances.extract(handle);
    return node.empty() ? Instance() : node.mapped();
}

} // namespace platform
