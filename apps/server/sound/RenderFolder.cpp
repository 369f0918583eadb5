#include "apps/server/sound/RenderFolder.h"

#include "apps/server/sound/RegionReader.h"

#include <TarvanePlatform/FileSync.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Tarvane::Server
{

namespace
{

constexpr int kMostNames = 100'000;

struct SoundCloser
{
    void operator()(SNDFILE* pFile) const { sf_close(pFile); }
};

[[noreturn]] void Fail(const std::string& strWhat, const std::filesystem::path& path,
                       const std::string& strWhy)
{
    throw CSoundFileError(strWhat + " " + path.string() + ": " + strWhy);
}

// A WAV form that holds every sample of the given one.
int WavForm(int nSampleForm)
{
    switch (nSampleForm)
    {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_PCM_16:
        return SF_FORMAT_PCM_16;
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_DOUBLE:
        return nSampleForm;
    default:
        return SF_FORMAT_FLOAT;
    }
}

bool IsWholeNumbers(int nWavForm)
{
    return nWavForm != SF_FORMAT_FLOAT && nWavForm != SF_FORMAT_DOUBLE;
}

constexpr const char* kUnfinished = ".being-written-";

// A new file of the folder, which no other program knows the name of but for its process; the
// caller owns the descriptor.
int NewFile(const std::filesystem::path& folder, std::filesystem::path& path)
{
    std::string strName =
        (folder / (kUnfinished + std::to_string(getpid()) + "-XXXXXX.wav")).string();
    const int nFile = mkstemps(strName.data(), 4);
    path = strName;
    if (nFile < 0)
        Fail("cannot make a sound file in", folder, std::strerror(errno));
    const mode_t nMask = umask(0);
    umask(nMask);
    fchmod(nFile, 0666 & ~nMask);
    return nFile;
}

// Where the first sample lies on the timeline, as editors read it from Broadcast WAV; they count
// from 0 on.
SF_BROADCAST_INFO TimeReference(const Region& region)
{
    SF_BROADCAST_INFO broadcast{};
    std::strncpy(broadcast.originator, "Tarvane Link", sizeof broadcast.originator);
    const auto nPosition =
        static_cast<std::uint64_t>(std::max<std::int64_t>(region.TimelineStart(), 0));
    broadcast.time_reference_low = static_cast<std::uint32_t>(nPosition);
    broadcast.time_reference_high = static_cast<std::uint32_t>(nPosition >> 32);
    broadcast.version = 1;
    return broadcast;
}

// The descriptor becomes the file's.
std::unique_ptr<SNDFILE, SoundCloser> CreateSound(int nFile, const std::filesystem::path& path,
                                                  const CRegionReader& reader, const Region& region)
{
    SF_INFO info{};
    info.samplerate = reader.SampleRate();
    info.channels = reader.Channels();
    info.format = SF_FORMAT_RF64 | WavForm(reader.SampleForm());
    std::unique_ptr<SNDFILE, SoundCloser> pFile(sf_open_fd(nFile, SFM_WRITE, &info, SF_TRUE));
    if (pFile == nullptr)
        Fail("cannot make the sound file", path, sf_strerror(nullptr));
    sf_command(pFile.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
    SF_BROADCAST_INFO broadcast = TimeReference(region);
    sf_command(pFile.get(), SFC_SET_BROADCAST_INFO, &broadcast, sizeof broadcast);
    return pFile;
}

// The library scales floats to whole numbers by 2^n - 1, and reads them back by 2^n; whole numbers
// it passes on as they are.
sf_count_t WriteFrames(SNDFILE* pFile, const std::vector<double>& samples, sf_count_t nFrames,
                       bool fWholeNumbers)
{
    if (!fWholeNumbers)
        return sf_writef_double(pFile, samples.data(), nFrames);
    std::vector<int> numbers;
    numbers.reserve(samples.size());
    for (double dSample : samples)
        numbers.push_back(static_cast<int>(std::lrint(dSample * 2147483648.0)));
    return sf_writef_int(pFile, numbers.data(), nFrames);
}

void CopyAudio(CRegionReader& reader, const Region& region, int nFile,
               const std::filesystem::path& path)
{
    auto pFile = CreateSound(nFile, path, reader, region);
    const bool fWholeNumbers = IsWholeNumbers(WavForm(reader.SampleForm()));
    while (!reader.AtEnd())
    {
        const std::vector<double>& samples = reader.Next(reader.PieceFrames());
        const auto nFrames = static_cast<sf_count_t>(samples.size()) / reader.Channels();
        if (nFrames == 0)
            Fail("the file is too short by now:", region.strPath, "the region ends after it");
        if (WriteFrames(pFile.get(), samples, nFrames, fWholeNumbers) != nFrames)
            Fail("cannot write", path, sf_strerror(pFile.get()));
    }
    const int nError = sf_close(pFile.release());
    if (nError != SF_ERR_NO_ERROR)
        Fail("cannot finish", path, sf_error_number(nError));
}

void Sync(const std::filesystem::path& path)
{
    const int nFile = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool fSynced = nFile >= 0 && TarvaneSyncFile(nFile) == 0;
    const int nError = errno;
    if (nFile >= 0)
        close(nFile);
    if (!fSynced)
        Fail("cannot sync", path, std::strerror(nError));
}

// The process that is writing, or was, the file of this name; 0 for a file of another kind.
std::int64_t WriterOf(const std::string& strName)
{
    if (strName.rfind(kUnfinished, 0) != 0)
        return 0;
    return std::atoll(strName.c_str() + std::strlen(kUnfinished));
}

bool HasEnded(std::int64_t nProcess)
{
    return kill(static_cast<pid_t>(nProcess), 0) != 0 && errno == ESRCH;
}

// Gives the file the first free name of "stem.wav", "stem-2.wav", ... A link, unlike a renaming,
// never replaces a file that somebody else has made meanwhile.
std::filesystem::path GiveName(const std::filesystem::path& part, const std::string& strStem)
{
    for (int nName = 1; nName <= kMostNames; nName++)
    {
        const std::string strNumber = nName == 1 ? "" : "-" + std::to_string(nName);
        const std::filesystem::path path = part.parent_path() / (strStem + strNumber + ".wav");
        if (link(part.c_str(), path.c_str()) == 0)
            return path;
        if (errno != EEXIST)
            Fail("cannot name the sound file", path, std::strerror(errno));
    }
    Fail("there are too many files like", part.parent_path() / strStem, "empty the folder");
}

// Clients read a path as a line and put it between quotes in their scripts, as it is.
bool IsTroubleInScripts(unsigned char c)
{
    return c < 0x20 || c == 0x7f || c == '"' || c == '\\';
}

// The name of the region's file and its id, short enough for any folder.
std::string Stem(const Region& region)
{
    std::string strStem = std::filesystem::path(region.strPath).stem().string();
    std::replace_if(strStem.begin(), strStem.end(), IsTroubleInScripts, '_');
    std::size_t nEnd = std::min<std::size_t>(strStem.size(), 200);
    while (nEnd > 0 && nEnd < strStem.size() && (strStem[nEnd] & 0xc0) == 0x80)
        nEnd--;
    return strStem.substr(0, nEnd) + "-region-" + std::to_string(region.nId);
}

} // namespace

CRenderFolder::CRenderFolder(std::filesystem::path folder) : m_folder(std::move(folder)) {}

std::string CRenderFolder::Write(const Region& region)
{
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    if (error)
        Fail("cannot make the folder", m_folder, error.message());

    CRegionReader reader(region);
    std::filesystem::path part;
    const int nFile = NewFile(m_folder, part);
    try
    {
        CopyAudio(reader, region, nFile, part);
        Sync(part);
        const std::filesystem::path path = GiveName(part, Stem(region));
        unlink(part.c_str());
        Sync(m_folder);
        return path.string();
    }
    catch (const CSoundFileError&)
    {
        unlink(part.c_str());
        throw;
    }
}

void CRenderFolder::RemoveUnfinished(std::int64_t nProcess) const
{
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder, error))
    {
        const std::int64_t nWriter = WriterOf(entry.path().filename().string());
        if (nWriter > 0 && (nWriter == nProcess || nProcess == 0) && HasEnded(nWriter))
            unlink(entry.path().c_str());
    }
}

} // namespace Tarvane::Server
