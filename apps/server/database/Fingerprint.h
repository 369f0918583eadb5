// What tells the audio of a stretch of a file from other audio, to be kept in a session so that the
// file need not be read again while it is what it was.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Tarvane::Server
{

/// A file as it was at some time, under any of its names. A change of its content is a change of
/// this, but for one within the second in which the file was changed before.
struct FileState
{
    std::uint64_t nDevice = 0;
    std::uint64_t nInode = 0;
    std::int64_t nSize = 0;    ///< in bytes
    std::int64_t nChanged = 0; ///< when it was last, content or attributes, in seconds since 1970

    bool operator==(const FileState&) const = default;
};

/// Empty when there is no such file.
std::optional<FileState> StateOf(const std::filesystem::path& file);

/// Frames and channels of a file, as in Region.
struct AudioStretch
{
    FileState file;
    std::int64_t nStart = 0;
    std::int64_t nEnd = 0;
    std::vector<std::int32_t> channels;
};

struct Fingerprint
{
    /// In which form the samples were taken: fingerprints of two forms say nothing of each other.
    std::int32_t nForm = 0;
    std::string strContent; ///< equal for equal samples only; 32 hexadecimal digits

    bool operator==(const Fingerprint&) const = default;
};

} // namespace Tarvane::Server
