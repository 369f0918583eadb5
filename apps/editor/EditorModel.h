// What an editor's session is to hold, whatever keeps it on our side.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tarvane::Editor
{

/// A stretch of a sound file on a track. All counts are in samples of the file's rate.
struct Region
{
    std::int64_t nId = 0; ///< stays the same as long as the region is there
    std::string strFile;  ///< full path, UTF-8
    std::string strName;
    std::int64_t nPosition = 0; ///< on the timeline, of the stretch's first sample
    std::int64_t nStart = 0;    ///< in the file, of the same sample
    std::int64_t nLength = 0;
    std::int32_t nRate = 0;             ///< samples per second
    std::vector<std::int32_t> channels; ///< of the file, from 0 and rising; empty for all
    bool fMuted = false;
};

struct Track
{
    std::string strName;
    std::vector<Region> regions;
};

struct Model
{
    std::vector<Track> tracks; ///< in their order

    bool HasRegions() const
    {
        for (const Track& track : tracks)
        {
            if (!track.regions.empty())
                return true;
        }
        return false;
    }
};

} // namespace Tarvane::Editor
