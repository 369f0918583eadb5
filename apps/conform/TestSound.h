/// Sound files that no track holds yet.
#pragma once

#include <filesystem>
#include <string>

namespace Tarvane::Conform
{

/// Noise in a folder of its own under the temporary folder; removed with the object.
class CTestSound
{
public:
    static constexpr int kFrames = 4800;
    static constexpr int kRate = 48000;

    /// Throws std::runtime_error, in words for the user, when they cannot be written.
    CTestSound();
    ~CTestSound();
    CTestSound(const CTestSound&) = delete;
    CTestSound& operator=(const CTestSound&) = delete;

    std::string Take() const { return (m_folder / "take.wav").string(); }
    /// The same samples under another name.
    std::string SameTake() const { return (m_folder / "same.wav").string(); }
    std::string OtherTake() const { return (m_folder / "other.wav").string(); }
    /// There is no such file.
    std::string Missing() const { return (m_folder / "missing.wav").string(); }
    /// A file without sound.
    std::string NoSound() const { return (m_folder / "text.wav").string(); }

private:
    std::filesystem::path m_folder;
};

} // namespace Tarvane::Conform
