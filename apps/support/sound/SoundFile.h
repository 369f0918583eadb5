// Reading a sound file so that its samples can be written again unchanged.
#pragma once

#include "signal/TakeFormat.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <sndfile.h>
#include <string>
#include <vector>

namespace Tarvane
{

/// The number type in which a file's samples pass through us without a change: Integer for
/// whole-number and lossless forms, A-law and mu-law; Float also for what a lossy form decodes to.
SampleType SampleTypeOf(int nFormat);

/// Room for some frames of one sample type.
class CSampleBlock
{
public:
    CSampleBlock(SampleType type, int nChannels, size_t nFrames)
        : m_type(type), m_nFrames(nFrames),
          m_bytes(nFrames * static_cast<size_t>(nChannels) * sizeof(double))
    {
    }
    SampleType Type() const { return m_type; }
    size_t Frames() const { return m_nFrames; }
    void* Data() { return m_bytes.data(); }
    const void* Data() const { return m_bytes.data(); }

private:
    SampleType m_type;
    size_t m_nFrames;
    std::vector<std::byte> m_bytes;
};

struct SoundFileCloser
{
    void operator()(SNDFILE* pFile) const { sf_close(pFile); }
};
using SoundFileHandle = std::unique_ptr<SNDFILE, SoundFileCloser>;

class CSoundReader
{
public:
    /// Throws CUsageError, in words for the user, for a file that is missing, is no sound file,
    /// holds no sound, or cannot be read.
    explicit CSoundReader(const std::filesystem::path& path);

    const SF_INFO& Info() const { return m_info; }
    const std::filesystem::path& Path() const { return m_path; }

    /// Reads the next frames, at most as many as the block has room for. 0 at the end.
    size_t Read(CSampleBlock& block);

private:
    std::filesystem::path m_path;
    SF_INFO m_info{};
    SoundFileHandle m_pFile;
};

} // namespace Tarvane
