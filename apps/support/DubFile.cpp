#include "apps/support/DubFile.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "apps/support/CommandLine.h"
#include "utils/UnicodeText.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

// Room for the terminator.
constexpr size_t kMaxPathBytes = sizeof(TNCaptureElement::szDubPath) - 1;
// Room for number and extension within the 255 bytes that file systems give a name.
constexpr size_t kMaxStemBytes = 230;
constexpr size_t kMaxNumber = 999999;

// A path travels to the server inside a quoted string of a script, byte for byte, and a script is
// UTF-8.
bool BreaksScript(unsigned char c)
{
    return c == '"' || c == '\\' || c < 0x20 || c == 0x7F;
}

std::string StemFor(const fs::path& source)
{
    std::string strStem = Utf8FromUtf16(Utf16FromUtf8(source.stem().string()));
    for (char& c : strStem)
    {
        c = BreaksScript(static_cast<unsigned char>(c)) ? '_' : c;
    }
    if (strStem.size() > kMaxStemBytes)
    {
        size_t nSize = kMaxStemBytes;
        // Not in the middle of a character of several bytes.
        while (nSize > 0 && (static_cast<unsigned char>(strStem[nSize]) & 0xC0) == 0x80)
        {
            --nSize;
        }
        strStem.resize(nSize);
    }
    return strStem;
}

std::string ExtensionOf(int nFormat)
{
    SF_FORMAT_INFO info{};
    info.format = nFormat & SF_FORMAT_TYPEMASK;
    const bool fKnown = sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info) == 0;
    return fKnown && info.extension != nullptr ? info.extension : "wav";
}

bool KeepsItsSamples(int nFormat)
{
    const int nForm = nFormat & SF_FORMAT_SUBMASK;
    return SampleTypeOf(nFormat) != SampleType::Float || nForm == SF_FORMAT_FLOAT;
}

SF_INFO DubInfoFor(const SF_INFO& source)
{
    SF_INFO info{};
    info.samplerate = source.samplerate;
    info.channels = source.channels;
    info.format = source.format;
    if (KeepsItsSamples(source.format) && sf_format_check(&info))
    {
        return info;
    }
    switch (SampleTypeOf(source.format))
    {
    case SampleType::Integer:
        info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_32;
        break;
    case SampleType::Float:
        info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
        break;
    case SampleType::Double:
        info.format = SF_FORMAT_WAV | SF_FORMAT_DOUBLE;
        break;
    }
    return info;
}

void CheckLength(const fs::path& folder, size_t nNameBytes)
{
    if (folder.string().size() + 1 + nNameBytes > kMaxPathBytes)
    {
        throw CUsageError("the path of a capture in " + folder.string() + " would be longer than " +
                          std::to_string(kMaxPathBytes) +
                          " bytes - name a capture folder with a shorter path.");
    }
}

void CheckCharacters(const fs::path& folder)
{
    if (!IsUtf8(folder.string()))
    {
        throw CUsageError("the path of the capture folder " + folder.string() +
                          " is not UTF-8, which is all that a script can carry - name another.");
    }
    // The link takes "/take.wav" for a name without a folder.
    if (folder == folder.root_path())
    {
        throw CUsageError("captures in the root folder cannot be sent to a server - name another "
                          "capture folder.");
    }
    for (const char c : folder.string())
    {
        if (BreaksScript(static_cast<unsigned char>(c)))
        {
            throw CUsageError("the capture folder " + folder.string() +
                              " has a double quote, a backslash or a control character in its path,"
                              " which a script cannot carry - name another.");
        }
    }
}

} // namespace

void CDubFile::CheckPath(const fs::path& folder, const CSoundReader& source)
{
    const fs::path absolute = fs::absolute(folder);
    CheckCharacters(absolute);
    const size_t nNumberBytes = std::to_string(kMaxNumber).size();
    const std::string strExtension = ExtensionOf(DubInfoFor(source.Info()).format);
    CheckLength(absolute,
                StemFor(source.Path()).size() + 1 + nNumberBytes + 1 + strExtension.size());
}

void CDubFile::CheckFolder(const fs::path& folder)
{
    const fs::path absolute = fs::absolute(folder);
    CheckCharacters(absolute);
    CheckLength(absolute, 0);
    std::error_code error;
    if (!fs::is_directory(absolute, error))
    {
        throw CUsageError("there is no capture folder " + folder.string() +
                          " - make it, or name another.");
    }
    if (::access(absolute.c_str(), W_OK | X_OK) != 0)
    {
        throw CUsageError("cannot write into the capture folder " + folder.string() + " (" +
                          std::strerror(errno) + ") - name one that you may write.");
    }
}

CDubFile::CDubFile(const fs::path& folder, const CSoundReader& source)
    : m_folder(fs::absolute(folder)), m_strStem(StemFor(source.Path()))
{
    SF_INFO info = DubInfoFor(source.Info());
    m_strExtension = ExtensionOf(info.format);
    CheckPath(m_folder, source);
    CheckFolder(m_folder);
    std::string strTemporary = (m_folder / ".capture-XXXXXX").string();
    m_nFile = ::mkstemp(strTemporary.data());
    if (m_nFile < 0)
    {
        throw CUsageError("cannot write into the capture folder " + folder.string() + " (" +
                          std::strerror(errno) + ") - name one that you may write.");
    }
    m_temporary = strTemporary;
    ::fchmod(m_nFile, 0644);
    m_pFile.reset(sf_open_fd(m_nFile, SFM_WRITE, &info, SF_FALSE));
    if (!m_pFile)
    {
        const std::string strReason = sf_strerror(nullptr);
        ::close(m_nFile);
        ::unlink(m_temporary.c_str());
        throw std::runtime_error("cannot write a capture: " + strReason);
    }
}

CDubFile::~CDubFile()
{
    m_pFile.reset();
    if (m_nFile >= 0)
    {
        ::close(m_nFile);
    }
    if (!m_temporary.empty())
    {
        ::unlink(m_temporary.c_str());
    }
}

void CDubFile::ThrowFull() const
{
    throw std::runtime_error("cannot write the capture into " + m_folder.string() + " (" +
                             std::strerror(errno) + ") - make room there, or name another folder.");
}

void CDubFile::Write(const CSampleBlock& block, size_t nFrames)
{
    const auto nCount = static_cast<sf_count_t>(nFrames);
    sf_count_t nWritten = 0;
    switch (block.Type())
    {
    case SampleType::Integer:
        nWritten = sf_writef_int(m_pFile.get(), static_cast<const int*>(block.Data()), nCount);
        break;
    case SampleType::Float:
        nWritten = sf_writef_float(m_pFile.get(), static_cast<const float*>(block.Data()), nCount);
        break;
    case SampleType::Double:
        nWritten =
            sf_writef_double(m_pFile.get(), static_cast<const double*>(block.Data()), nCount);
        break;
    }
    if (nWritten != nCount)
    {
        ThrowFull();
    }
}

fs::path CDubFile::FreeName() const
{
    for (size_t nNumber = 1; nNumber <= kMaxNumber; ++nNumber)
    {
        char szNumber[16];
        std::snprintf(szNumber, sizeof szNumber, "-%03zu.", nNumber);
        const fs::path path = m_folder / (m_strStem + szNumber + m_strExtension);
        // Creating it is what makes the name ours: two captures never get the same.
        const int nFile = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
        if (nFile >= 0)
        {
            ::close(nFile);
            return path;
        }
        if (errno != EEXIST)
        {
            ThrowFull();
        }
    }
    throw std::runtime_error("no name is free for a capture in " + m_folder.string() +
                             " - clear it up, or name another folder.");
}

fs::path CDubFile::Publish()
{
    if (sf_close(m_pFile.release()) != 0 || ::fsync(m_nFile) != 0)
    {
        ThrowFull();
    }
    const fs::path path = FreeName();
    if (::rename(m_temporary.c_str(), path.c_str()) != 0)
    {
        const int nError = errno;
        ::unlink(path.c_str());
        errno = nError;
        ThrowFull();
    }
    m_temporary.clear();
    const int nFolder = ::open(m_folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (nFolder >= 0)
    {
        ::fsync(nFolder);
        ::close(nFolder);
    }
    return path;
}

} // namespace Tarvane
