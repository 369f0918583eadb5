// The file that a take is written to.
#pragma once

#include "signal/TakeFormat.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

struct sf_private_tag;

namespace Tarvane
{

/// Written under a hidden temporary name; it gets its own only once every sample is on the disk.
/// Its header is that of the samples so far at every moment, where the container has such a header.
/// What was written is never removed: not when the disk is full, and not without Publish; a file
/// without samples goes.
///
/// One thread at a time.
class CTakeFile
{
public:
    /// The position is kept in the file, where the container has room for it. Throws
    /// CTakeFolderError when the folder cannot be written or the path could not be published, and
    /// std::runtime_error when the disk takes no file.
    CTakeFile(const std::filesystem::path& folder, const CTakeFormat& format, double dPosition);
    ~CTakeFile();
    CTakeFile(const CTakeFile&) = delete;
    CTakeFile& operator=(const CTakeFile&) = delete;

    /// Frames of interleaved samples of the format's type. Answers how many of them are in the
    /// file: fewer than asked for when the disk takes no more, always whole ones; Failure() then
    /// says why and nothing may be written any more.
    std::uint64_t Write(const void* pSamples, std::uint64_t nFrames);

    std::uint64_t Frames() const { return m_nFrames; }
    /// Empty while all is well.
    const std::string& Failure() const { return m_strFailure; }
    /// Absolute; the temporary name until Publish has given another.
    const std::filesystem::path& Path() const { return m_path; }
    ino_t Inode() const { return m_nInode; }

    /// Closes the file, has it written to the disk and gives it its name. When one of these goes
    /// wrong Failure() says so, and Path() where the file is all the same. False when the disk has
    /// not taken the header that counts the frames: the file is then a leftover (MendTakeFile).
    bool Publish();

private:
    const void* Converted(const void* pSamples, std::uint64_t nFrames);
    void Fail(const std::string& strWhat);
    void Close();
    bool IsCounted() const;

    std::string m_strStem;
    std::string m_strExtension;
    std::filesystem::path m_path;
    std::uint32_t m_nChannels;
    SampleType m_samples;
    int m_nBits = 0; ///< of whole-number samples that floats are rounded to; 0 where they are kept
    std::vector<std::int32_t> m_converted;
    int m_nFile = -1;
    ino_t m_nInode = 0;
    sf_private_tag* m_pFile = nullptr;
    std::uint64_t m_nFrames = 0;
    std::string m_strFailure;
};

struct CMendedFile
{
    std::filesystem::path path;
    std::uint64_t nFrames = 0;
};

/// Looks at a file, and changes nothing. Throws std::runtime_error when it cannot be read. A header
/// that does not count its frames has none.
CMendedFile ExamineTakeFile(const std::filesystem::path& file);

/// A file that was left unfinished by a process that is gone: brings its header into line with what
/// it holds, and gives it its name. Answers its path, and how many frames it holds. Where that
/// takes another file in the leftover's place, fnReplacing is told its inode first. A process that
/// is killed meanwhile leaves the leftover, the file under its name, or both. Throws
/// std::runtime_error when it holds nothing that can be read, or cannot be mended, and what
/// fnReplacing throws; it then stays as it is.
CMendedFile MendTakeFile(const std::filesystem::path& leftover, const std::string& strStem,
                         const std::function<void(ino_t)>& fnReplacing);

} // namespace Tarvane
