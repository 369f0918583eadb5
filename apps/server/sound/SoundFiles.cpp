#include "apps/server/sound/SoundFiles.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tarvane::Server
{

namespace
{

// An open descriptor of a plain file.
int OpenPlainFile(const std::string& strPath)
{
    if (strPath.empty() || strPath.front() != '/')
        throw CSoundFileError("\"" + strPath + "\" is not a full path");
    // Not blocking: the opening of a pipe would wait for a writer.
    const int nFile = open(strPath.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (nFile < 0)
    {
        const std::string strCause = errno == ENOENT
                                         ? "does not exist"
                                         : std::string("cannot be opened: ") + strerror(errno);
        throw CSoundFileError("the file " + strPath + " " + strCause);
    }
    struct stat status;
    if (fstat(nFile, &status) != 0 || !S_ISREG(status.st_mode))
    {
        close(nFile);
        throw CSoundFileError(strPath + " is not a file");
    }
    return nFile;
}

} // namespace

CSoundFile::CSoundFile(const std::string& strPath) : m_strPath(strPath)
{
    const int nFile = OpenPlainFile(strPath);
    // The library closes the descriptor with the file, and when it refuses the file.
    m_pFile.reset(sf_open_fd(nFile, SFM_READ, &m_info, SF_TRUE));
    if (m_pFile == nullptr)
        throw CSoundFileError("the file " + strPath +
                              " cannot be read as sound: " + sf_strerror(nullptr));
}

void CSoundFile::RequireFrames(std::int64_t nEnd)
{
    std::vector<double> last;
    const bool fLongEnough = nEnd <= Frames();
    if (fLongEnough && nEnd > 0)
        Seek(nEnd - 1);
    if (!fLongEnough || (nEnd > 0 && Read(last, 1) != 1))
        throw CSoundFileError("the file " + m_strPath + " is too short: it has " +
                              std::to_string(Frames()) + " frames, and the region ends at " +
                              std::to_string(nEnd));
}

void CSoundFile::Seek(std::int64_t nFrame)
{
    if (sf_seek(m_pFile.get(), nFrame, SEEK_SET) != nFrame)
        throw CSoundFileError("the file " + m_strPath + " cannot be read from frame " +
                              std::to_string(nFrame) + ": " + sf_strerror(m_pFile.get()));
}

std::int64_t CSoundFile::Read(std::vector<double>& samples, std::int64_t nFrames)
{
    samples.resize(static_cast<std::size_t>(nFrames) * static_cast<std::size_t>(Channels()));
    return sf_readf_double(m_pFile.get(), samples.data(), nFrames);
}

std::int64_t CSoundFile::Read(std::vector<float>& samples, std::int64_t nFrames)
{
    samples.resize(static_cast<std::size_t>(nFrames) * static_cast<std::size_t>(Channels()));
    return sf_readf_float(m_pFile.get(), samples.data(), nFrames);
}

bool CSoundFile::IsWholeNumbers() const
{
    return SampleForm() != SF_FORMAT_FLOAT && SampleForm() != SF_FORMAT_DOUBLE;
}

// 0 for forms that are not one number after the other.
std::int64_t CSoundFile::SampleBytes() const
{
    const int nContainer = m_info.format & SF_FORMAT_TYPEMASK;
    if (nContainer != SF_FORMAT_WAV && nContainer != SF_FORMAT_WAVEX &&
        nContainer != SF_FORMAT_RF64 && nContainer != SF_FORMAT_AIFF)
        return 0;
    switch (SampleForm())
    {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
        return 1;
    case SF_FORMAT_PCM_16:
        return 2;
    case SF_FORMAT_PCM_24:
        return 3;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_FLOAT:
        return 4;
    case SF_FORMAT_DOUBLE:
        return 8;
    default:
        return 0;
    }
}

std::int64_t CSoundFile::ReadBytes(std::vector<char>& bytes, std::int64_t nFrames)
{
    const std::int64_t nFrameBytes = FrameBytes();
    if (nFrameBytes == 0)
        return 0;
    bytes.resize(static_cast<std::size_t>(nFrames * nFrameBytes));
    return sf_read_raw(m_pFile.get(), bytes.data(), nFrames * nFrameBytes) / nFrameBytes;
}

} // namespace Tarvane::Server
