#include "signal/TakeFolder.h"

#include "TarvaneLinkAU/TarvaneLinkProperties.h"
#include "utils/UnicodeText.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sndfile.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Tarvane
{
namespace
{

// Room for the terminator.
constexpr std::size_t kMaxPathBytes = sizeof(TNCaptureElement::szDubPath) - 1;
// Room for number and extension within the 255 bytes that file systems give a name.
constexpr std::size_t kMaxStemBytes = 230;
constexpr std::size_t kMaxNumber = 999999;

// A path travels to the server inside a quoted string of a script, byte for byte, and a script is
// UTF-8.
bool BreaksScript(unsigned char c)
{
    return c == '"' || c == '\\' || c < 0x20 || c == 0x7F;
}

void CheckLength(const fs::path& folder, std::size_t nNameBytes)
{
    if (folder.string().size() + 1 + nNameBytes > kMaxPathBytes)
    {
        throw CTakeFolderError("the path of a capture in " + folder.string() +
                               " would be longer than " + std::to_string(kMaxPathBytes) +
                               " bytes - name a capture folder with a shorter path.");
    }
}

void CheckCharacters(const fs::path& folder)
{
    if (!IsUtf8(folder.string()))
    {
        throw CTakeFolderError("the path of the capture folder " + folder.string() +
                               " is not UTF-8, which is all that a script can carry - name "
                               "another.");
    }
    // The link takes "/take.wav" for a name without a folder.
    if (folder == folder.root_path())
    {
        throw CTakeFolderError("captures in the root folder cannot be sent to a server - name "
                               "another capture folder.");
    }
    for (const char c : folder.string())
    {
        if (BreaksScript(static_cast<unsigned char>(c)))
        {
            throw CTakeFolderError("the capture folder " + folder.string() +
                                   " has a double quote, a backslash or a control character in its "
                                   "path, which a script cannot carry - name another.");
        }
    }
}

fs::path FromEnvironment(const char* szName)
{
    const char* szValue = std::getenv(szName);
    // As the conventions for these variables have it, a relative path means nothing.
    return szValue != nullptr && *szValue == '/' ? fs::path(szValue) : fs::path();
}

// Of $szVariable, or of the folder in the home folder.
fs::path UserFolder(const char* szVariable, const char* szInHome)
{
    const fs::path folder = FromEnvironment(szVariable);
    if (!folder.empty())
    {
        return folder / "tarvane-link";
    }
    const fs::path home = FromEnvironment("HOME");
    return home.empty() ? fs::path() : home / szInHome / "tarvane-link";
}

// Never a name that exists: two captures never get the same. Whoever looks sees the whole file
// under it, or nothing, but where the file system has no links: there an empty one keeps the place.
bool GiveName(const fs::path& file, const fs::path& path)
{
    if (::link(file.c_str(), path.c_str()) == 0)
    {
        ::unlink(file.c_str());
        return true;
    }
    const int nPlace = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
    if (nPlace < 0)
    {
        return false;
    }
    ::close(nPlace);
    if (::rename(file.c_str(), path.c_str()) == 0)
    {
        return true;
    }
    const int nError = errno;
    ::unlink(path.c_str());
    errno = nError;
    return false;
}

} // namespace

fs::path TakeStateFolder()
{
    return UserFolder("XDG_STATE_HOME", ".local/state");
}

fs::path DefaultCaptureFolder()
{
    const fs::path folder = FromEnvironment("TARVANE_LINK_CAPTURES");
    if (!folder.empty())
    {
        return folder;
    }
    const fs::path data = UserFolder("XDG_DATA_HOME", ".local/share");
    return data.empty() ? fs::path() : data / "captures";
}

std::string TakeStem(const std::string& strStem)
{
    std::string strClean = Utf8FromUtf16(Utf16FromUtf8(strStem));
    for (char& c : strClean)
    {
        c = BreaksScript(static_cast<unsigned char>(c)) || c == '/' ? '_' : c;
    }
    if (strClean.size() > kMaxStemBytes)
    {
        std::size_t nSize = kMaxStemBytes;
        // Not in the middle of a character of several bytes.
        while (nSize > 0 && (static_cast<unsigned char>(strClean[nSize]) & 0xC0) == 0x80)
        {
            --nSize;
        }
        strClean.resize(nSize);
    }
    return strClean;
}

std::string TakeExtension(int nFileFormat)
{
    const int nContainer = nFileFormat & SF_FORMAT_TYPEMASK;
    if (nContainer == SF_FORMAT_RF64)
    {
        // It becomes one beyond 4 GB alone.
        return "wav";
    }
    SF_FORMAT_INFO info{};
    info.format = nContainer;
    const bool fKnown = sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info) == 0;
    return fKnown && info.extension != nullptr ? info.extension : "wav";
}

void CheckTakePath(const fs::path& folder, const CTakeFormat& format)
{
    const fs::path absolute = fs::absolute(folder);
    CheckCharacters(absolute);
    const std::size_t nNumberBytes = std::to_string(kMaxNumber).size();
    CheckLength(absolute, TakeStem(format.strStem).size() + 1 + nNumberBytes + 1 +
                              TakeExtension(format.nFileFormat).size());
}

void CheckTakeFolder(const fs::path& folder)
{
    const fs::path absolute = fs::absolute(folder);
    CheckCharacters(absolute);
    CheckLength(absolute, 0);
    std::error_code error;
    if (!fs::is_directory(absolute, error))
    {
        throw CTakeFolderError("there is no capture folder " + folder.string() +
                               " - make it, or name another.");
    }
    if (::access(absolute.c_str(), W_OK | X_OK) != 0)
    {
        throw CTakeFolderError("cannot write into the capture folder " + folder.string() + " (" +
                               std::strerror(errno) + ") - name one that you may write.");
    }
}

fs::path NameTake(const fs::path& file, const std::string& strStem, const std::string& strExtension)
{
    const fs::path folder = file.parent_path();
    for (std::size_t nNumber = 1; nNumber <= kMaxNumber; ++nNumber)
    {
        char szNumber[16];
        std::snprintf(szNumber, sizeof szNumber, "-%03zu.", nNumber);
        const fs::path path = folder / (strStem + szNumber + strExtension);
        if (GiveName(file, path))
        {
            return path;
        }
        if (errno != EEXIST)
        {
            throw std::runtime_error("cannot give the capture " + file.string() + " its name (" +
                                     std::strerror(errno) + ") - it stays there.");
        }
    }
    throw std::runtime_error("no name is free for a capture in " + folder.string() +
                             " - clear it up, or name another folder.");
}

} // namespace Tarvane
