#include "signal/TakeJournal.h"

#include "signal/TakeFile.h"
#include "signal/TakeFolder.h"

#include <TarvanePlatform/FileSync.h>

#include <boost/crc.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <map>
#include <optional>
#include <random>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace Tarvane
{
namespace
{

constexpr std::string_view kPrefix = ".takes-";
constexpr std::string_view kSuffix = ".journal";
constexpr std::size_t kUuidSize = 36;
constexpr std::size_t kCrcSize = 8;
// A journal is a few lines a take. One beyond this is none of ours, and is not read to its end.
constexpr std::uintmax_t kMaxJournalBytes = 64 << 20;
constexpr const char* kIndexName = "capture-folders";

std::uint32_t CrcOf(std::string_view text)
{
    boost::crc_32_type crc;
    crc.process_bytes(text.data(), text.size());
    return crc.checksum();
}

std::string Line(const std::string& strJson)
{
    char szCrc[kCrcSize + 1];
    std::snprintf(szCrc, sizeof szCrc, "%08x", CrcOf(strJson));
    return szCrc + (" " + strJson) + "\n";
}

// The JSON of a line that is whole, else a discarded value.
Json Parse(std::string_view line)
{
    std::uint32_t nCrc = 0;
    if (line.size() <= kCrcSize || line[kCrcSize] != ' ' ||
        std::from_chars(line.data(), line.data() + kCrcSize, nCrc, 16).ptr !=
            line.data() + kCrcSize ||
        CrcOf(line.substr(kCrcSize + 1)) != nCrc)
    {
        return Json(Json::value_t::discarded);
    }
    return Json::parse(line.substr(kCrcSize + 1), nullptr, false);
}

// Paths are bytes, and JSON is UTF-8.
Json PathJson(const fs::path& path)
{
    const std::string strPath = path.string();
    Json bytes = Json::array();
    try
    {
        (void)Json(strPath).dump();
        return strPath;
    }
    catch (const Json::exception&)
    {
        for (const char c : strPath)
        {
            bytes.push_back(static_cast<unsigned char>(c));
        }
        return bytes;
    }
}

fs::path PathOf(const Json& object, const char* szKey)
{
    const auto found = object.find(szKey);
    if (found == object.end())
    {
        return {};
    }
    if (found->is_string())
    {
        return found->get<std::string>();
    }
    std::string strPath;
    for (const Json& byte : *found)
    {
        strPath += static_cast<char>(byte.is_number() ? byte.get<int>() : 0);
    }
    return strPath;
}

// Zero or empty for what is not there, or of another type.
template <typename Value> Value ValueOf(const Json& object, const char* szKey)
{
    const auto found = object.find(szKey);
    if (found == object.end())
    {
        return {};
    }
    if constexpr (std::is_same_v<Value, std::string>)
    {
        return found->is_string() ? found->get<std::string>() : std::string();
    }
    else
    {
        return found->is_number() ? found->get<Value>() : Value{};
    }
}

void ReadPlace(const Json& place, CJournalTake& take)
{
    take.file = PathOf(place, "file");
    take.guide = PathOf(place, "guide");
    take.dPosition = ValueOf<double>(place, "position");
    take.dRate = ValueOf<double>(place, "rate");
}

void ReadFrames(const Json& counts, CJournalTake& take)
{
    take.nFrames = ValueOf<std::uint64_t>(counts, "frames");
    take.nLostFrames = ValueOf<std::uint64_t>(counts, "lost");
    take.nFinishedTime = ValueOf<std::int64_t>(counts, "time");
}

void Read(const Json& line, CJournalTake& take)
{
    if (const auto begun = line.find("begun"); begun != line.end() && begun->is_object())
    {
        take.nInode = ValueOf<std::uint64_t>(*begun, "inode");
        take.strStem = ValueOf<std::string>(*begun, "stem");
        if (!take.fFinished)
        {
            ReadPlace(*begun, take);
        }
    }
    if (const auto finished = line.find("finished");
        finished != line.end() && finished->is_object())
    {
        take.fFinished = true;
        ReadPlace(*finished, take);
        ReadFrames(*finished, take);
    }
    if (const auto cut = line.find("cut"); cut != line.end() && cut->is_object())
    {
        ReadFrames(*cut, take);
    }
    if (line.contains("outcome"))
    {
        take.strOutcome = ValueOf<std::string>(line, "outcome");
        take.strWords = ValueOf<std::string>(line, "words");
    }
}

// Whoever asks whether it is held has it for an instant.
bool Lock(int nFile)
{
    constexpr std::chrono::milliseconds kInstant{5};
    constexpr int kInstants = 20;
    for (int n = 0; n < kInstants; ++n)
    {
        if (::flock(nFile, LOCK_EX | LOCK_NB) == 0)
        {
            return true;
        }
        std::this_thread::sleep_for(kInstant);
    }
    return false;
}

bool IsSettled(const std::string& strOutcome)
{
    return strOutcome == TakeOutcomeWord(TakeOutcome::Delivered) ||
           strOutcome == TakeOutcomeWord(TakeOutcome::Duplicate) ||
           strOutcome == TakeOutcomeWord(TakeOutcome::PlacedWithoutOffset) ||
           strOutcome == CTakeJournal::kForgotten;
}

// Empty when the file is none, or cannot be read to its end.
std::optional<std::string> BytesOf(int nFile)
{
    struct stat status
    {
    };
    if (::fstat(nFile, &status) != 0 || !S_ISREG(status.st_mode) ||
        static_cast<std::uintmax_t>(status.st_size) > kMaxJournalBytes)
    {
        return std::nullopt;
    }
    std::string strBytes(static_cast<std::size_t>(status.st_size), '\0');
    for (std::size_t nDone = 0; nDone < strBytes.size();)
    {
        const ssize_t nRead = ::pread(nFile, strBytes.data() + nDone, strBytes.size() - nDone,
                                      static_cast<off_t>(nDone));
        if (nRead <= 0)
        {
            return std::nullopt;
        }
        nDone += static_cast<std::size_t>(nRead);
    }
    return strBytes;
}

using Takes = std::map<std::uint64_t, CJournalTake>;

// Empty when the journal cannot be read, which says nothing of what is in it.
std::optional<Takes> ReadTakes(int nFile)
{
    const std::optional<std::string> bytes = BytesOf(nFile);
    if (!bytes)
    {
        return std::nullopt;
    }
    Takes takes;
    std::istringstream journal(*bytes);
    for (std::string strLine; std::getline(journal, strLine);)
    {
        const Json line = Parse(strLine);
        if (line.is_object() && line.contains("take"))
        {
            const auto nTake = ValueOf<std::uint64_t>(line, "take");
            CJournalTake& take = takes[nTake];
            take.nTake = nTake;
            Read(line, take);
        }
    }
    return takes;
}

// Without a place there is nothing to look for: only an outcome was readable.
bool IsOpen(const CJournalTake& take)
{
    return !IsSettled(take.strOutcome) && !take.file.empty();
}

std::int64_t SecondsSince1970()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(now).count();
}

bool IsLossTold(const CJournalTake& take)
{
    constexpr std::int64_t kSeconds = std::chrono::seconds(CTakeJournal::kLossTold).count();
    return take.nLostFrames > 0 && take.strOutcome != CTakeJournal::kForgotten &&
           take.nFinishedTime > SecondsSince1970() - kSeconds;
}

// Not blocking: the opening of a pipe would wait for a writer.
int OpenToRead(const fs::path& path)
{
    return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
}

// One write, so that lines of several writers never mix.
bool WriteLine(int nFile, const std::string& strLine)
{
    // What a crash or a full disk has cut off ends here.
    const off_t nEnd = ::lseek(nFile, 0, SEEK_END);
    char cLast = '\n';
    const bool fCut = nEnd > 0 && ::pread(nFile, &cLast, 1, nEnd - 1) == 1 && cLast != '\n';
    const std::string strWhole = fCut ? "\n" + strLine : strLine;
    errno = 0;
    return ::write(nFile, strWhole.data(), strWhole.size()) ==
               static_cast<ssize_t>(strWhole.size()) &&
           TarvaneSyncFile(nFile) == 0;
}

} // namespace

bool CTakeJournal::IsUuid(const std::string& strUuid)
{
    if (strUuid.size() != kUuidSize)
    {
        return false;
    }
    for (std::size_t n = 0; n < kUuidSize; ++n)
    {
        const bool fDash = n == 8 || n == 13 || n == 18 || n == 23;
        const char c = strUuid[n];
        const bool fDigit = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
        if (fDash ? c != '-' : !fDigit)
        {
            return false;
        }
    }
    return true;
}

std::string CTakeJournal::NewUuid()
{
    std::random_device random;
    char sz[kUuidSize + 1];
    // Of random numbers: version 4, the usual variant.
    std::snprintf(sz, sizeof sz, "%08x-%04x-4%03x-%04x-%08x%04x", random(), random() & 0xFFFF,
                  random() & 0xFFF, (random() & 0x3FFF) | 0x8000, random(), random() & 0xFFFF);
    return sz;
}

CTakeJournal::CTakeJournal(const fs::path& folder, const std::string& strUuid)
    : m_folder(folder), m_strUuid(strUuid),
      m_path(folder / (std::string(kPrefix) + strUuid + std::string(kSuffix)))
{
}

CTakeJournal::~CTakeJournal()
{
    GiveBack();
}

void CTakeJournal::GiveBack()
{
    if (m_nFile < 0)
    {
        return;
    }
    CatchUp();
    const std::optional<Takes> takes = ReadTakes(m_nFile);
    if (takes && std::none_of(takes->begin(), takes->end(),
                              [](const auto& entry)
                              { return IsOpen(entry.second) || IsLossTold(entry.second); }))
    {
        ::unlink(m_path.c_str());
    }
    ::close(m_nFile);
    m_nFile = -1;
}

bool CTakeJournal::Hold()
{
    if (m_nFile >= 0)
    {
        return true;
    }
    while (m_nFile < 0)
    {
        m_nFile = ::open(m_path.c_str(), O_RDWR | O_APPEND | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
        if (m_nFile < 0)
        {
            return errno == ENOENT;
        }
        struct stat held
        {
        }, named{};
        if (!Lock(m_nFile))
        {
            ::close(m_nFile);
            m_nFile = -1;
            return false;
        }
        // Its last holder may have removed it meanwhile.
        if (::fstat(m_nFile, &held) != 0 || ::stat(m_path.c_str(), &named) != 0 ||
            held.st_ino != named.st_ino)
        {
            ::close(m_nFile);
            m_nFile = -1;
        }
    }
    const std::optional<Takes> takes = ReadTakes(m_nFile);
    if (!takes)
    {
        ::close(m_nFile);
        m_nFile = -1;
        return false;
    }
    m_nLastTake = takes->empty() ? m_nLastTake : std::max(m_nLastTake, takes->rbegin()->first);
    // Of one that is there already as well: the index may have lost it.
    NoteJournalFolder(m_folder);
    return true;
}

bool CTakeJournal::Claim()
{
    // Another instance may have taken it just when it was made.
    return Make() || Hold();
}

bool CTakeJournal::IsHeld(const fs::path& journal)
{
    const int nFile = OpenToRead(journal);
    if (nFile < 0)
    {
        return false;
    }
    const bool fHeld = ::flock(nFile, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(nFile);
    return fHeld;
}

bool CTakeJournal::Make()
{
    if (m_nFile >= 0)
    {
        return true;
    }
    const int nMade =
        ::open(m_path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (nMade < 0 && errno != EEXIST)
    {
        m_strFailure =
            "cannot keep the journal " + m_path.string() + " (" + std::strerror(errno) + ")";
        return false;
    }
    if (nMade >= 0)
    {
        ::close(nMade);
    }
    if (!Hold() || m_nFile < 0)
    {
        m_strFailure = "the journal " + m_path.string() + " is another instance's";
        return false;
    }
    return true;
}

bool CTakeJournal::Append(const std::string& strJson)
{
    if (!Make())
    {
        return false;
    }
    m_strUnwritten += Line(strJson);
    return CatchUp();
}

bool CTakeJournal::CatchUp()
{
    if (m_strUnwritten.empty())
    {
        return true;
    }
    if (!WriteLine(m_nFile, m_strUnwritten))
    {
        m_strFailure =
            "cannot write the journal " + m_path.string() + " (" + std::strerror(errno) + ")";
        return false;
    }
    m_strUnwritten.clear();
    return true;
}

std::uint64_t CTakeJournal::Begun(const CTakeFile& file, const std::string& strStem,
                                  const CTake& take)
{
    if (!Make())
    {
        return 0;
    }
    CJournalTake begun;
    begun.nTake = ++m_nLastTake;
    begun.file = file.Path();
    begun.guide = take.guide;
    begun.nInode = file.Inode();
    begun.strStem = TakeStem(strStem);
    begun.dPosition = take.dPosition;
    begun.dRate = take.dRate;
    return AppendBegun(begun) ? begun.nTake : 0;
}

bool CTakeJournal::Replaced(CJournalTake take, ino_t nInode)
{
    take.nInode = nInode;
    return AppendBegun(take);
}

bool CTakeJournal::AppendBegun(const CJournalTake& take)
{
    const Json line{{"take", take.nTake},
                    {"begun",
                     {{"file", PathJson(take.file)},
                      {"inode", take.nInode},
                      {"stem", take.strStem},
                      {"guide", PathJson(take.guide)},
                      {"position", take.dPosition},
                      {"rate", take.dRate}}}};
    const std::string strBefore = m_strUnwritten;
    if (Append(line.dump()))
    {
        return true;
    }
    m_strUnwritten = strBefore;
    return false;
}

bool CTakeJournal::Finished(std::uint64_t nTake, const CTake& take)
{
    return Append(Json{{"take", nTake},
                       {"finished",
                        {{"file", PathJson(take.file)},
                         {"guide", PathJson(take.guide)},
                         {"position", take.dPosition},
                         {"rate", take.dRate},
                         {"frames", take.nFrames},
                         {"lost", take.nLostFrames},
                         {"time", SecondsSince1970()}}}}
                      .dump());
}

bool CTakeJournal::Cut(std::uint64_t nTake, const CTake& take)
{
    return Append(
        Json{{"take", nTake},
             {"cut",
              {{"frames", take.nFrames}, {"lost", take.nLostFrames}, {"time", SecondsSince1970()}}}}
            .dump());
}

std::uint64_t CTakeJournal::Moved(const CTake& take)
{
    return Make() && Finished(++m_nLastTake, take) ? m_nLastTake : 0;
}

bool CTakeJournal::Ended(std::uint64_t nTake, const std::string& strOutcome,
                         const std::string& strWords, double dExpectedPosition)
{
    return Append(Json{{"take", nTake},
                       {"outcome", strOutcome},
                       {"words", strWords},
                       {"expected", dExpectedPosition}}
                      .dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::vector<CJournalTake> CTakeJournal::Open() const
{
    return TakesThat(&IsOpen);
}

std::vector<CJournalTake> CTakeJournal::Losses() const
{
    return TakesThat(&IsLossTold);
}

std::vector<CJournalTake> CTakeJournal::TakesThat(bool (*fnAre)(const CJournalTake&)) const
{
    std::vector<CJournalTake> found;
    const int nFile = m_nFile >= 0 ? m_nFile : OpenToRead(m_path);
    if (const std::optional<Takes> takes = ReadTakes(nFile))
    {
        for (const auto& [nTake, take] : *takes)
        {
            if (fnAre(take))
            {
                found.push_back(take);
            }
        }
    }
    if (nFile != m_nFile)
    {
        ::close(nFile);
    }
    return found;
}

std::vector<fs::path> CTakeJournal::In(const fs::path& folder)
{
    std::vector<fs::path> journals;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
    {
        if (IsUuid(UuidOf(entry->path())))
        {
            journals.push_back(entry->path());
        }
    }
    std::sort(journals.begin(), journals.end());
    return journals;
}

std::string CTakeJournal::UuidOf(const fs::path& journal)
{
    const std::string strName = journal.filename().string();
    if (strName.size() != kPrefix.size() + kUuidSize + kSuffix.size() ||
        !strName.starts_with(kPrefix) || !strName.ends_with(kSuffix))
    {
        return {};
    }
    return strName.substr(kPrefix.size(), kUuidSize);
}

std::vector<fs::path> JournalFolders()
{
    std::vector<fs::path> folders;
    const fs::path file = TakeStateFolder() / kIndexName;
    std::error_code ignored;
    // The opening of a pipe would wait for a writer.
    std::ifstream index(fs::is_regular_file(file, ignored) ? file : fs::path(), std::ios::binary);
    for (std::string strLine; std::getline(index, strLine);)
    {
        const Json folder = Parse(strLine);
        if (!folder.is_object())
        {
            continue;
        }
        const fs::path path = PathOf(folder, "folder");
        if (std::find(folders.begin(), folders.end(), path) == folders.end())
        {
            folders.push_back(path);
        }
    }
    return folders;
}

void NoteJournalFolder(const fs::path& folder)
{
    const fs::path state = TakeStateFolder();
    const fs::path absolute = fs::absolute(folder).lexically_normal();
    const std::vector<fs::path> known = JournalFolders();
    if (state.empty() || std::find(known.begin(), known.end(), absolute) != known.end())
    {
        return;
    }
    std::error_code ignored;
    fs::create_directories(state, ignored);
    const int nIndex = ::open((state / kIndexName).c_str(),
                              O_CREAT | O_RDWR | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (nIndex >= 0)
    {
        WriteLine(nIndex, Line(Json{{"folder", PathJson(absolute)}}.dump()));
        ::close(nIndex);
    }
}

namespace
{

// A disk that is not there now, for instance, takes no take away for good.
bool IsGone(const fs::path& file)
{
    struct stat status
    {
    };
    if (::stat(file.c_str(), &status) == 0)
    {
        return false;
    }
    if (errno == ENOENT && ::stat(file.parent_path().c_str(), &status) == 0)
    {
        return true;
    }
    throw std::runtime_error("cannot look at the take " + file.string() + " (" +
                             std::strerror(errno) + ") - it waits until that can be done.");
}

// Of a take that had got its name when the process ended, so that only the line was missing. Empty
// when it has none.
fs::path NamedFile(const CJournalTake& take)
{
    std::error_code error;
    for (fs::directory_iterator entry(take.file.parent_path(), error), end; !error && entry != end;
         entry.increment(error))
    {
        const fs::path& path = entry->path();
        struct stat status
        {
        };
        if (path != take.file && ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
            status.st_ino == take.nInode &&
            path.filename().string().starts_with(take.strStem + "-"))
        {
            return path;
        }
    }
    return {};
}

} // namespace

bool RecoverTake(CJournalTake& take, CTakeJournal& journal)
{
    struct stat status
    {
    };
    const bool fGone = IsGone(take.file);
    if (take.fFinished)
    {
        return !fGone;
    }
    const bool fLeft = !fGone && ::stat(take.file.c_str(), &status) == 0;
    if (fLeft && status.st_size == 0)
    {
        ::unlink(take.file.c_str());
        return false;
    }
    if (!fLeft || status.st_nlink > 1)
    {
        take.nInode = fLeft ? status.st_ino : take.nInode;
        if (const fs::path named = NamedFile(take); !named.empty())
        {
            const CMendedFile sound = ExamineTakeFile(named);
            ::unlink(take.file.c_str());
            take.file = named;
            take.nFrames = sound.nFrames;
            take.fFinished = true;
            return sound.nFrames > 0;
        }
    }
    if (!fLeft)
    {
        return false;
    }
    const CMendedFile mended = MendTakeFile(take.file, take.strStem,
                                            [&](ino_t nInode)
                                            {
                                                if (!journal.Replaced(take, nInode))
                                                {
                                                    throw std::runtime_error(journal.Failure());
                                                }
                                            });
    take.file = mended.path;
    take.nFrames = mended.nFrames;
    take.fFinished = true;
    return true;
}

} // namespace Tarvane
