#include "signal/TakeFile.h"

#include "signal/TakeFolder.h"

#include <TarvanePlatform/FileSync.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <sndfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

constexpr char kOriginator[] = "Tarvane Link";
constexpr char kDescription[] = "Take captured by Tarvane Link";

struct SoundCloser
{
    void operator()(SNDFILE* pFile) const { sf_close(pFile); }
};
using Sound = std::unique_ptr<SNDFILE, SoundCloser>;

template <std::size_t nSize> void PutText(char (&szField)[nSize], const char* szText)
{
    std::memcpy(szField, szText, std::min(nSize, std::strlen(szText)));
}

SF_BROADCAST_INFO BroadcastInfo(double dPosition)
{
    SF_BROADCAST_INFO info{};
    PutText(info.description, kDescription);
    PutText(info.originator, kOriginator);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char szDate[16];
    std::strftime(szDate, sizeof szDate, "%Y-%m-%d", &local);
    std::memcpy(info.origination_date, szDate, sizeof info.origination_date);
    std::strftime(szDate, sizeof szDate, "%H:%M:%S", &local);
    std::memcpy(info.origination_time, szDate, sizeof info.origination_time);
    // There is no time reference before the timeline's beginning.
    const auto nPosition = static_cast<std::uint64_t>(std::clamp(dPosition, 0.0, 0x1p63));
    info.time_reference_low = static_cast<std::uint32_t>(nPosition);
    info.time_reference_high = static_cast<std::uint32_t>(nPosition >> 32);
    info.version = 1;
    return info;
}

int WholeNumberBits(int nFileFormat)
{
    switch (nFileFormat & SF_FORMAT_SUBMASK)
    {
    case SF_FORMAT_PCM_16:
        return 16;
    case SF_FORMAT_PCM_24:
        return 24;
    case SF_FORMAT_PCM_32:
        return 32;
    default:
        return 0;
    }
}

sf_count_t WriteFrames(SNDFILE* pFile, SampleType type, const void* pSamples, sf_count_t nFrames)
{
    switch (type)
    {
    case SampleType::Integer:
        return sf_writef_int(pFile, static_cast<const int*>(pSamples), nFrames);
    case SampleType::Float:
        return sf_writef_float(pFile, static_cast<const float*>(pSamples), nFrames);
    case SampleType::Double:
        return sf_writef_double(pFile, static_cast<const double*>(pSamples), nFrames);
    }
    return 0;
}

std::string Reason()
{
    return std::string(" (") + std::strerror(errno) + ")";
}

void SyncFolder(const fs::path& folder)
{
    const int nFolder = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (nFolder >= 0)
    {
        TarvaneSyncFile(nFolder);
        ::close(nFolder);
    }
}

} // namespace

CTakeFile::CTakeFile(const fs::path& folder, const CTakeFormat& format, double dPosition)
    : m_strStem(TakeStem(format.strStem)), m_nChannels(format.nChannels), m_samples(format.samples)
{
    const int nFileFormat = format.nFileFormat != 0 ? format.nFileFormat : TakeFormat24Bit();
    m_strExtension = TakeExtension(nFileFormat);
    if (m_samples == SampleType::Float)
    {
        m_nBits = WholeNumberBits(nFileFormat);
    }
    const fs::path absolute = fs::absolute(folder);
    CheckTakePath(absolute, format);
    CheckTakeFolder(absolute);
    std::string strTemporary = (absolute / ".capture-XXXXXX").string();
    m_nFile = ::mkstemp(strTemporary.data());
    if (m_nFile < 0)
    {
        throw CTakeFolderError("cannot write into the capture folder " + folder.string() +
                               Reason() + " - name one that you may write.");
    }
    m_path = strTemporary;
    ::fchmod(m_nFile, 0644);
    ::fcntl(m_nFile, F_SETFD, FD_CLOEXEC);
    struct stat status
    {
    };
    ::fstat(m_nFile, &status);
    m_nInode = status.st_ino;

    SF_INFO info{};
    info.samplerate = static_cast<int>(format.nRate);
    info.channels = static_cast<int>(format.nChannels);
    info.format = nFileFormat;
    m_pFile = sf_open_fd(m_nFile, SFM_WRITE, &info, SF_FALSE);
    if (m_pFile == nullptr)
    {
        const std::string strReason = sf_strerror(nullptr);
        ::close(m_nFile);
        ::unlink(m_path.c_str());
        throw std::runtime_error("cannot write a capture: " + strReason);
    }
    const int nContainer = nFileFormat & SF_FORMAT_TYPEMASK;
    if (nContainer == SF_FORMAT_RF64)
    {
        sf_command(m_pFile, SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
    }
    if (nContainer == SF_FORMAT_RF64 || nContainer == SF_FORMAT_WAV ||
        nContainer == SF_FORMAT_WAVEX)
    {
        SF_BROADCAST_INFO broadcast = BroadcastInfo(dPosition);
        sf_command(m_pFile, SFC_SET_BROADCAST_INFO, &broadcast, sizeof broadcast);
    }
    sf_command(m_pFile, SFC_SET_UPDATE_HEADER_AUTO, nullptr, SF_TRUE);
}

CTakeFile::~CTakeFile()
{
    const bool fOpen = m_pFile != nullptr;
    Close();
    if (fOpen && m_nFrames == 0)
    {
        ::unlink(m_path.c_str());
    }
}

void CTakeFile::Close()
{
    if (m_pFile != nullptr && sf_close(m_pFile) != 0)
    {
        Fail("cannot finish the capture " + m_path.string());
    }
    m_pFile = nullptr;
    if (m_nFile >= 0)
    {
        ::close(m_nFile);
        m_nFile = -1;
    }
}

void CTakeFile::Fail(const std::string& strWhat)
{
    if (m_strFailure.empty())
    {
        m_strFailure = strWhat + Reason() + " - make room there, or name another folder.";
    }
}

// The library scales by the largest number of the width, which a reader that divides by the width's
// full scale does not undo; this does.
const void* CTakeFile::Converted(const void* pSamples, std::uint64_t nFrames)
{
    if (m_nBits == 0)
    {
        return pSamples;
    }
    const auto* pFloats = static_cast<const float*>(pSamples);
    const double dScale = std::ldexp(1.0, m_nBits - 1);
    const int nShift = 32 - m_nBits;
    m_converted.resize(nFrames * m_nChannels);
    for (std::size_t n = 0; n < m_converted.size(); ++n)
    {
        // What is no number becomes silence.
        const double dScaled = std::isnan(pFloats[n]) ? 0 : pFloats[n] * dScale;
        const auto nValue =
            static_cast<std::int64_t>(std::nearbyint(std::clamp(dScaled, -dScale, dScale - 1)));
        m_converted[n] = static_cast<std::int32_t>(nValue * (std::int64_t(1) << nShift));
    }
    return m_converted.data();
}

std::uint64_t CTakeFile::Write(const void* pSamples, std::uint64_t nFrames)
{
    if (!m_strFailure.empty())
    {
        return 0;
    }
    const SampleType type = m_nBits != 0 ? SampleType::Integer : m_samples;
    const void* pConverted = Converted(pSamples, nFrames);
    errno = 0;
    const sf_count_t nWritten =
        WriteFrames(m_pFile, type, pConverted, static_cast<sf_count_t>(nFrames));
    const auto nWhole = static_cast<std::uint64_t>(std::max<sf_count_t>(nWritten, 0));
    m_nFrames += std::min(nWhole, nFrames);
    if (nWhole != nFrames)
    {
        Fail("cannot write the capture into " + m_path.parent_path().string());
        // No part of a frame stays behind the last whole one.
        auto nKept = static_cast<sf_count_t>(m_nFrames);
        sf_command(m_pFile, SFC_FILE_TRUNCATE, &nKept, sizeof nKept);
        sf_command(m_pFile, SFC_UPDATE_HEADER_NOW, nullptr, 0);
    }
    return nWhole;
}

// What is no sound file, too, is left for its recovery to tell of.
bool CTakeFile::IsCounted() const
{
    try
    {
        return ExamineTakeFile(m_path).nFrames > 0;
    }
    catch (const std::runtime_error&)
    {
        return false;
    }
}

bool CTakeFile::Publish()
{
    if (sf_close(m_pFile) != 0)
    {
        Fail("cannot finish the capture " + m_path.string());
    }
    m_pFile = nullptr;
    if (TarvaneSyncFile(m_nFile) != 0)
    {
        Fail("cannot write the capture into " + m_path.parent_path().string());
    }
    Close();
    if (!IsCounted())
    {
        Fail("cannot finish the capture " + m_path.string());
        m_strFailure += " It is finished at the next start.";
        return false;
    }
    try
    {
        m_path = NameTake(m_path, m_strStem, m_strExtension);
    }
    catch (const std::runtime_error& error)
    {
        m_strFailure = m_strFailure.empty() ? error.what() : m_strFailure;
    }
    SyncFolder(m_path.parent_path());
    return true;
}

namespace
{

// Takes away what a header that counts the frames does not speak of, where the container lets us.
void CutBehindSamples(const fs::path& file, std::uint64_t nFrames)
{
    SF_INFO info{};
    const Sound pFile(sf_open(file.c_str(), SFM_RDWR, &info));
    auto nKept = static_cast<sf_count_t>(nFrames);
    if (pFile)
    {
        sf_command(pFile.get(), SFC_FILE_TRUNCATE, &nKept, sizeof nKept);
    }
}

// A new file beside a leftover, gone with the object unless it has got another name. Its name is
// always the same, so that it takes the place of one that a killed process has left.
class CCopy
{
public:
    explicit CCopy(const fs::path& leftover) : path(leftover.string() + "-mended")
    {
        ::unlink(path.c_str());
        nFile = ::open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0644);
    }
    ~CCopy()
    {
        if (nFile >= 0)
        {
            ::close(nFile);
            ::unlink(path.c_str());
        }
    }
    CCopy(const CCopy&) = delete;
    CCopy& operator=(const CCopy&) = delete;

    const fs::path path;
    int nFile = -1;
};

// As far as the file can be read. False when the copy does not take all of that.
bool CopyFrames(const fs::path& file, int nCopy, std::uint64_t* pFrames)
{
    SF_INFO info{};
    const Sound pFrom(sf_open(file.c_str(), SFM_READ, &info));
    SF_INFO copyInfo = info;
    copyInfo.frames = 0;
    Sound pTo(sf_open_fd(nCopy, SFM_WRITE, &copyInfo, SF_FALSE));
    constexpr sf_count_t kFrames = 4096;
    std::vector<int> block(static_cast<std::size_t>(kFrames * info.channels));
    bool fWhole = pFrom != nullptr && pTo != nullptr;
    while (fWhole)
    {
        const sf_count_t nRead = sf_readf_int(pFrom.get(), block.data(), kFrames);
        if (nRead <= 0)
        {
            break;
        }
        fWhole = sf_writef_int(pTo.get(), block.data(), nRead) == nRead;
        *pFrames += static_cast<std::uint64_t>(nRead);
    }
    return sf_close(pTo.release()) == 0 && fWhole;
}

// A header that was to count them in the end (FLAC) is had by writing the file anew.
std::uint64_t WriteAnew(const fs::path& file, const std::function<void(ino_t)>& fnReplacing)
{
    std::uint64_t nFrames = 0;
    errno = 0;
    const CCopy copy(file);
    struct stat status
    {
    };
    bool fMended = copy.nFile >= 0 && CopyFrames(file, copy.nFile, &nFrames) &&
                   ::fchmod(copy.nFile, 0644) == 0 && TarvaneSyncFile(copy.nFile) == 0 &&
                   ::fstat(copy.nFile, &status) == 0;
    if (fMended && nFrames > 0)
    {
        fnReplacing(status.st_ino);
        fMended = ::rename(copy.path.c_str(), file.c_str()) == 0;
    }
    if (!fMended)
    {
        throw std::runtime_error("cannot mend the capture " + file.string() + Reason() +
                                 " - make room there; it stays as it is.");
    }
    return nFrames;
}

} // namespace

CMendedFile ExamineTakeFile(const fs::path& file)
{
    SF_INFO info{};
    const Sound pFile(sf_open(file.c_str(), SFM_READ, &info));
    if (!pFile)
    {
        throw std::runtime_error(file.string() + " cannot be read (" + sf_strerror(nullptr) +
                                 ") - it stays there.");
    }
    const bool fCounted = info.frames > 0 && info.frames < SF_COUNT_MAX;
    return {file, fCounted ? static_cast<std::uint64_t>(info.frames) : 0};
}

CMendedFile MendTakeFile(const fs::path& leftover, const std::string& strStem,
                         const std::function<void(ino_t)>& fnReplacing)
{
    CMendedFile mended = ExamineTakeFile(leftover);
    if (mended.nFrames > 0)
    {
        CutBehindSamples(leftover, mended.nFrames);
        // Of an AIFF file that ends in more the library does not cut that off, but counts it too.
        mended.nFrames = ExamineTakeFile(leftover).nFrames;
    }
    else
    {
        mended.nFrames = WriteAnew(leftover, fnReplacing);
    }
    if (mended.nFrames == 0)
    {
        throw std::runtime_error(leftover.string() + " holds no sound - it stays there.");
    }
    SF_INFO info{};
    Sound(sf_open(leftover.c_str(), SFM_READ, &info));
    mended.path = NameTake(leftover, strStem, TakeExtension(info.format));
    SyncFolder(mended.path.parent_path());
    return mended;
}

} // namespace Tarvane
