// A sound file that is there to be read once.
#pragma once

#include <filesystem>
#include <string>

namespace Tarvane::Link
{

/// Noise, so that no track holds the same. Removed with the object.
class CProbeSound
{
public:
    static constexpr int kFrames = 100;

    /// Under a name in the folder that nobody has. Throws std::runtime_error, in words for the
    /// user, when it cannot be written.
    explicit CProbeSound(const std::filesystem::path& folder);
    ~CProbeSound() { Remove(); }
    CProbeSound(const CProbeSound&) = delete;
    CProbeSound& operator=(const CProbeSound&) = delete;

    const std::string& Path() const { return m_strPath; }
    void Remove();

private:
    std::string m_strPath;
};

} // namespace Tarvane::Link
