#include "apps/server/SoundFiles.h"

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

} // namespace Tarvane::Server
