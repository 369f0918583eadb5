// A plug-in's unit as one in front of it has it: opened, and heard as a view hears it.
#pragma once

#include <AudioUnit/AudioUnit.h>

#include <functional>

namespace Tarvane
{

class CUnitBehind
{
public:
    /// fnHeard is told, on the threads that notify, each of the ids that a view listens to, from
    /// before this returns. Throws std::runtime_error when the unit is not to be had.
    CUnitBehind(AudioComponent pComponent, std::function<void(AudioUnitPropertyID)> fnHeard);
    ~CUnitBehind() { Close(); }
    CUnitBehind(const CUnitBehind&) = delete;
    CUnitBehind& operator=(const CUnitBehind&) = delete;

    /// Null once it is closed.
    AudioUnit Unit() const { return m_pUnit; }
    /// Disposes of the unit: no notification comes from it any more.
    void Close();

private:
    static void Hear(void* pUserData, AudioUnit, AudioUnitPropertyID nId, AudioUnitScope,
                     AudioUnitElement);

    const std::function<void(AudioUnitPropertyID)> m_fnHeard;
    AudioUnit m_pUnit = nullptr;
};

} // namespace Tarvane
