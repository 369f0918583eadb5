#pragma once

#include <AudioUnit/AudioUnit.h>

#include <string>

namespace Tarvane
{

/// A shared library with a signal side in it (PlugInEntry.h), loaded until the process ends.
class CPlugInLibrary
{
public:
    /// Throws CUsageError when it cannot be loaded, or exports no factory.
    explicit CPlugInLibrary(const std::string& strPath);

    /// The component, known to the process.
    AudioComponent Component() const { return m_pComponent; }

    /// Whether it exports TarvaneConformPlay.
    bool CanPlay() const { return m_pPlay != nullptr; }
    OSStatus Play(AudioUnit pUnit) const { return m_pPlay(pUnit); }

private:
    AudioComponent m_pComponent = nullptr;
    OSStatus (*m_pPlay)(AudioUnit pUnit) = nullptr;
};

} // namespace Tarvane
