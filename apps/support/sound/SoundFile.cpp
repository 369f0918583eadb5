#include "apps/support/sound/SoundFile.h"

#include "apps/support/program/CommandLine.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Tarvane
{

SampleType SampleTypeOf(int nFormat)
{
    switch (nFormat & SF_FORMAT_SUBMASK)
    {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_PCM_16:
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
    case SF_FORMAT_ALAC_16:
    case SF_FORMAT_ALAC_20:
    case SF_FORMAT_ALAC_24:
    case SF_FORMAT_ALAC_32:
        return SampleType::Integer;
    case SF_FORMAT_DOUBLE:
        return SampleType::Double;
    default:
        return SampleType::Float;
    }
}

CSoundReader::CSoundReader(const fs::path& path) : m_path(fs::absolute(path))
{
    std::error_code error;
    const fs::file_status status = fs::status(m_path, error);
    if (!fs::exists(status))
    {
        throw CUsageError("there is no file " + path.string() + " - name a sound file.");
    }
    if (!fs::is_regular_file(status))
    {
        throw CUsageError(path.string() + " is not a file - name a sound file.");
    }
    if (::access(m_path.c_str(), R_OK) != 0)
    {
        throw CUsageError("cannot read " + path.string() + ": " + std::strerror(errno) + ".");
    }
    m_pFile.reset(sf_open(m_path.c_str(), SFM_READ, &m_info));
    if (!m_pFile)
    {
        throw CUsageError(path.string() + " is not a sound file that can be read (" +
                          sf_strerror(nullptr) + ") - name a WAV, AIFF, FLAC or similar file.");
    }
    if (m_info.frames <= 0)
    {
        throw CUsageError(path.string() +
                          " holds no sound - name a file with at least one sample.");
    }
}

size_t CSoundReader::Read(CSampleBlock& block)
{
    const auto nFrames = static_cast<sf_count_t>(block.Frames());
    sf_count_t nRead = 0;
    switch (block.Type())
    {
    case SampleType::Integer:
        nRead = sf_readf_int(m_pFile.get(), static_cast<int*>(block.Data()), nFrames);
        break;
    case SampleType::Float:
        nRead = sf_readf_float(m_pFile.get(), static_cast<float*>(block.Data()), nFrames);
        break;
    case SampleType::Double:
        nRead = sf_readf_double(m_pFile.get(), static_cast<double*>(block.Data()), nFrames);
        break;
    }
    return nRead > 0 ? static_cast<size_t>(nRead) : 0;
}

} // namespace Tarvane
