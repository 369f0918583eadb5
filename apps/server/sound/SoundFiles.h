// Sound files as the server reads them, whatever their format.
#pragma once

#include <cstdint>
#include <memory>
#include <sndfile.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tarvane::Server
{

/// A sound file that cannot be used. The text names the file and says what is wrong with it.
class CSoundFileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// One open sound file. Any one thread.
class CSoundFile
{
public:
    /// Opens for reading. strPath is a full path to a plain file; pipes and devices, which could
    /// keep the server waiting, are refused. Throws CSoundFileError.
    explicit CSoundFile(const std::string& strPath);

    std::int64_t Frames() const { return m_info.frames; }
    std::int32_t SampleRate() const { return m_info.samplerate; }
    std::int32_t Channels() const { return m_info.channels; }
    /// The library's SF_FORMAT_SUBMASK part.
    int SampleForm() const { return m_info.format & SF_FORMAT_SUBMASK; }

    /// Throws CSoundFileError unless frames can be read up to, and without, nEnd: a file can be
    /// shorter than its header says.
    void RequireFrames(std::int64_t nEnd);

    /// Throws CSoundFileError.
    void Seek(std::int64_t nFrame);
    /// Reads up to nFrames frames, all channels side by side, as numbers in which a sample of any
    /// format is exact (whole-number formats are scaled to -1..1). Returns the frames read: fewer
    /// at the end of the file only.
    std::int64_t Read(std::vector<double>& samples, std::int64_t nFrames);
    /// The same, exact for SF_FORMAT_FLOAT and sooner done.
    std::int64_t Read(std::vector<float>& samples, std::int64_t nFrames);

    /// The library's number of the format. Between files with one form and as many channels equal
    /// bytes are equal samples. Unequal bytes are unequal samples if these are whole numbers; zero,
    /// for instance, has two forms otherwise.
    std::int32_t Form() const { return m_info.format; }
    bool IsWholeNumbers() const;
    /// Of a frame as it lies in the file; 0 when its form is not one number after the other.
    std::int64_t FrameBytes() const { return SampleBytes() * Channels(); }
    /// Frames as they lie in the file. Returns the frames read: fewer at the end of the file, and
    /// none without FrameBytes.
    std::int64_t ReadBytes(std::vector<char>& bytes, std::int64_t nFrames);

private:
    struct Closer
    {
        void operator()(SNDFILE* pFile) const { sf_close(pFile); }
    };

    std::int64_t SampleBytes() const;

    std::string m_strPath;
    SF_INFO m_info{};
    std::unique_ptr<SNDFILE, Closer> m_pFile;
};

} // namespace Tarvane::Server
