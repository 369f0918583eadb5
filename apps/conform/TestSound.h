/// Sound files that no track holds yet.
#pragma once

#include "apps/conform/WorkFolder.h"

#include <string>

namespace Tarvane::Conform
{

/// Noise in a work folder.
class CTestSound
{
public:
    static constexpr int kFrames = 4800;
    static constexpr int kRate = 48000;

    /// Throws std::runtime_error, in words for the user, when they cannot be written.
    CTestSound();

    std::string Take() const { return (m_folder.Path() / "take.wav").string(); }
    /// The same samples under another name.
    std::string SameTake() const { return (m_folder.Path() / "same.wav").string(); }
    std::string OtherTake() const { return (m_folder.Path() / "other.wav").string(); }
    /// There is no such file.
    std::string Missing() const { return (m_folder.Path() / "missing.wav").string(); }
    /// A file without sound.
    std::string NoSound() const { return (m_folder.Path() / "text.wav").string(); }

private:
    CWorkFolder m_folder;
};

} // namespace Tarvane::Conform
