// Sound files that no track holds yet.
#pragma once

#include "apps/conform/shared/WorkFolder.h"

#include <sndfile.h>
#include <string>

namespace Tarvane::Conform
{

/// What a file of sound is like.
struct SoundKind
{
    const char* szName; ///< for people
    int nRate = 48000;
    int nChannels = 1;
    int nFormat = SF_FORMAT_WAV | SF_FORMAT_PCM_16; ///< of the library
};

/// Noise in a work folder.
class CTestSound
{
public:
    static constexpr int kFrames = 4800;
    static constexpr int kRate = 48000;

    /// Throws std::runtime_error, in words for the user, when they cannot be written; so does New.
    CTestSound();

    std::string Take() const { return PathOf("take.wav"); }
    /// The same samples under another name.
    std::string SameTake() const { return PathOf("same.wav"); }
    /// The same samples as the take, behind kFrames of others.
    std::string LongTake() const { return PathOf("long.wav"); }
    std::string OtherTake() const { return PathOf("other.wav"); }
    /// There is no such file.
    std::string Missing() const { return PathOf("missing.wav"); }
    /// A file without sound.
    std::string NoSound() const { return PathOf("text.wav"); }

    /// Writes kFrames of new noise. The name may begin with folders. Returns the path.
    std::string New(const std::string& strName, const SoundKind& kind = {""}) const;

private:
    std::string PathOf(const std::string& strName) const
    {
        return (m_folder.Path() / strName).string();
    }

    CWorkFolder m_folder;
};

} // namespace Tarvane::Conform
