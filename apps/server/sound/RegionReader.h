// The audio of a region, read piece by piece.
#pragma once

#include "apps/server/session/Session.h"
#include "apps/server/sound/SoundFiles.h"

#include <cstdint>
#include <vector>

namespace Tarvane::Server
{

/// Any one thread. Throws CSoundFileError when the region's file cannot be read, or has fewer
/// channels than the region takes.
class CRegionReader
{
public:
    explicit CRegionReader(const Region& region);

    std::int32_t SampleRate() const { return m_file.SampleRate(); }
    std::int32_t Channels() const { return static_cast<std::int32_t>(m_channels.size()); }
    /// The form of the file's samples, SF_FORMAT_SUBMASK of the library.
    int SampleForm() const { return m_file.SampleForm(); }
    bool AtEnd() const { return m_nLeft == 0; }

    /// The next frames of the region's channels, side by side; valid until the next call. Fewer
    /// than asked for at the end of the region; none before it when the file has become too short.
    const std::vector<double>& Next(std::int64_t nFrames);

    /// A good number of frames to ask for at once.
    std::int64_t PieceFrames() const;

private:
    CSoundFile m_file;
    std::vector<std::int32_t> m_channels;
    std::int64_t m_nLeft;
    std::vector<double> m_all;
    std::vector<double> m_piece;
};

} // namespace Tarvane::Server
