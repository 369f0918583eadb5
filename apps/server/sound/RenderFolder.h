// Where the server puts the sound files that it makes.
#pragma once

#include "apps/server/session/Session.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace Tarvane::Server
{

/// A folder that is made when the first file goes into it. Any one thread.
class CRenderFolder
{
public:
    /// A full path.
    explicit CRenderFolder(std::filesystem::path folder);

    const std::filesystem::path& Path() const { return m_folder; }

    /// Writes the region's audio, the channels that it takes and nothing else, to a new WAV file
    /// (RF64 beyond 4 GiB) of the region's rate, and returns its full path. Samples are those of
    /// the region's file, bit for bit where WAV has a form for them, as floats otherwise. The file
    /// appears under its name when it is whole and on disk, and no file is ever replaced. Throws
    /// CSoundFileError.
    std::string Write(const Region& region);

    /// Removes what a process that has ended was writing, if it did; 0: what any such process was.
    void RemoveUnfinished(std::int64_t nProcess = 0) const;

private:
    std::filesystem::path m_folder;
};

} // namespace Tarvane::Server
