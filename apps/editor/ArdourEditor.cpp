#include "apps/editor/ArdourEditor.h"

#include "apps/editor/ArdourNotes.h"
#include "apps/editor/ArdourSession.h"
#include "apps/editor/OpenFiles.h"
#include "apps/support/file/AtomicFile.h"
#include "apps/support/process/ChildProcess.h"
#include "apps/support/sound/SoundFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <set>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace Tarvane::Editor
{

namespace
{

constexpr const char* szNotes = "tarvane-link.json";
constexpr const char* szKept = ".before-tarvane-link";
constexpr std::size_t kLargestSession = std::size_t(1) << 30;
constexpr std::size_t kLongestName =
    200; // bytes, so that any folder has room for a number behind it

// Keeps our own programs away from a folder, as long as it lives.
class CFolderLock
{
public:
    explicit CFolderLock(const fs::path& folder)
        : m_nFolder(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        if (m_nFolder < 0)
            throw CEditorError("cannot open the folder " + folder.string() + ": " +
                               std::strerror(errno) + ".");
        if (flock(m_nFolder, LOCK_EX | LOCK_NB) != 0)
        {
            close(m_nFolder);
            throw CEditorError("another program adds to " + folder.string() +
                               " just now; try again when it is done.");
        }
    }
    ~CFolderLock() { close(m_nFolder); }
    CFolderLock(const CFolderLock&) = delete;
    CFolderLock& operator=(const CFolderLock&) = delete;

private:
    int m_nFolder;
};

// Files and folders that go again unless they are kept.
class CNewPaths
{
public:
    CNewPaths() = default;
    ~CNewPaths()
    {
        std::error_code ignored;
        for (auto path = m_paths.rbegin(); path != m_paths.rend(); ++path)
            fs::remove(*path, ignored);
    }
    CNewPaths(const CNewPaths&) = delete;
    CNewPaths& operator=(const CNewPaths&) = delete;

    void Add(const fs::path& path) { m_paths.push_back(path); }
    void MakeFolder(const fs::path& folder)
    {
        if (fs::create_directory(folder))
            Add(folder);
    }
    void Keep() { m_paths.clear(); }

private:
    std::vector<fs::path> m_paths;
};

// As names there may be: control characters are none of XML, and of these two a host's ports are
// made.
std::string Legal(std::string strName)
{
    for (char& c : strName)
    {
        if (static_cast<unsigned char>(c) < 0x20 || c == ':' || c == '/')
            c = '_';
    }
    for (const char* szNone : {"\xef\xbf\xbe", "\xef\xbf\xbf"}) // U+FFFE and U+FFFF
    {
        for (std::size_t n; (n = strName.find(szNone)) != std::string::npos;)
            strName.replace(n, 3, "_");
    }
    return strName;
}

std::string Numbered(const std::string& strName, int n)
{
    return n == 1 ? strName : strName + " " + std::to_string(n);
}

bool IsArdour(std::int64_t nProcess)
{
    std::string strName = fs::path(ProgramOf(nProcess)).filename().string();
    std::transform(strName.begin(), strName.end(), strName.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    // The second is its program without a window, which says that it has a session by the files
    // alone.
    return strName.starts_with("ardour") || strName == "luasession";
}

std::set<fs::path> AudioFiles(const fs::path& folder)
{
    std::set<fs::path> files;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder / "interchange", error), end;
         !error && entry != end; entry.increment(error))
    {
        std::error_code dangling;
        const fs::path file = fs::canonical(entry->path(), dangling);
        if (!dangling && fs::is_regular_file(file, dangling))
            files.insert(file);
    }
    return files;
}

// An Ardour holds the sound files of its session open. By those of a session that has none nothing
// can be told.
void RequireClosed(const fs::path& folder)
{
    const std::set<fs::path> files = AudioFiles(folder);
    for (std::int64_t nProcess : RunningProcesses())
    {
        if (!IsArdour(nProcess))
            continue;
        const std::string strProgram =
            ProgramOf(nProcess) + ", process " + std::to_string(nProcess);
        const std::set<fs::path> open = OpenFiles(nProcess);
        if (std::any_of(files.begin(), files.end(),
                        [&open](const fs::path& file) { return open.count(file) != 0; }))
            throw CEditorError("Ardour has the session " + folder.string() + " open (" +
                               strProgram +
                               ") and would write over what is added; close it there.");
        if (files.empty() && fs::path(ProgramOf(nProcess)).filename() != "luasession")
            throw CEditorError("Ardour is running (" + strProgram + "), and whether it has the " +
                               "session " + folder.string() +
                               " open cannot be seen while no audio is in it; close it.");
    }
}

struct SoundShape
{
    std::int32_t nChannels;
    std::int32_t nRate;
    std::int64_t nFrames;
};

bool IsLinkTo(const fs::path& link, const fs::path& file)
{
    std::error_code none;
    return fs::read_symlink(link, none) == file && !none;
}

// One call of Take on a session.
class CAddition
{
public:
    CAddition(const fs::path& folder, const fs::path& file, std::string strText, bool fCopyFiles)
        : m_folder(folder), m_file(file), m_notes(ArdourNotes::Read(folder / szNotes)),
          m_strOld(strText), m_session(std::move(strText)), m_fCopyFiles(fCopyFiles)
    {
    }

    CNewPaths& NewPaths() { return m_newPaths; }

    void AddAll(const Model& model)
    {
        std::map<std::string, int> seen;
        for (const Track& track : model.tracks)
        {
            const std::string strName =
                Numbered(Legal(track.strName), ++seen[Legal(track.strName)]);
            AddTrack(strName, track);
        }
    }

    void Write(bool fNew)
    {
        const std::string strText = m_session.Text();
        if (m_fChanged && !fNew && m_notes.strWritten != ArdourNotes::Mark(m_strOld))
            KeepUnderSecondName(m_file, szKept);
        if (m_fChanged || fNew)
        {
            ReplaceFile(m_file, strText);
            m_newPaths.Keep();
            m_notes.strWritten = ArdourNotes::Mark(strText);
        }
        if (m_fChanged || fNew || m_fNoted)
            ReplaceFile(m_folder / szNotes, m_notes.Text());
    }

private:
    void AddTrack(const std::string& strName, const Track& track)
    {
        std::int64_t nTrack = TrackFor(strName, track);
        for (const Region& region : track.regions)
        {
            const std::string strKey = ArdourNotes::KeyOf(region);
            if (m_notes.regions.count(strKey) != 0)
                continue;
            const std::vector<std::int32_t> channels = ChannelsOf(region);
            std::int64_t nPlace = nTrack;
            if (channels.size() > m_session.TrackById(nTrack)->nChannels)
            {
                const std::string strWider =
                    strName + " (" + std::to_string(channels.size()) + " channels)";
                nPlace = TrackNamed(strWider, channels.size());
            }
            AddRegion(nPlace, region, channels);
            m_notes.regions.insert(strKey);
            m_fNoted = true;
        }
    }

    // With room for the widest of its regions; a mono take sounds on a stereo track as it does on a
    // mono one.
    std::int64_t TrackFor(const std::string& strName, const Track& track)
    {
        std::size_t nChannels = track.regions.empty() ? 2 : 1;
        for (const Region& region : track.regions)
            nChannels = std::max(nChannels, ChannelsOf(region).size());
        return TrackNamed(strName, nChannels);
    }

    std::int64_t TrackNamed(const std::string& strName, std::size_t nChannels)
    {
        const auto noted = m_notes.tracks.find(strName);
        if (noted != m_notes.tracks.end() && m_session.TrackById(noted->second) != nullptr)
            return noted->second;
        std::int64_t nTrack = 0;
        if (const auto* pTrack = m_session.TrackByName(strName))
            nTrack = pTrack->nId;
        else
        {
            int n = 1;
            while (m_session.IsTaken(Numbered(strName, n)))
                n++;
            nTrack = m_session.AddTrack(Numbered(strName, n), nChannels);
            m_fChanged = true;
        }
        m_notes.tracks[strName] = nTrack;
        m_fNoted = true;
        return nTrack;
    }

    const SoundShape& ShapeOf(const Region& region)
    {
        const auto known = m_shapes.find(region.strFile);
        if (known != m_shapes.end())
            return known->second;
        const SF_INFO info = CSoundReader(region.strFile).Info();
        return m_shapes[region.strFile] = {info.channels, info.samplerate, info.frames};
    }

    std::vector<std::int32_t> ChannelsOf(const Region& region)
    {
        const SoundShape& shape = ShapeOf(region);
        if (shape.nRate != region.nRate || shape.nRate != m_session.Rate())
            throw CEditorError(
                "the file " + region.strFile + " has " + std::to_string(shape.nRate) +
                " samples per second, and the session " + std::to_string(m_session.Rate()) +
                ": it would not lie, nor sound, where it is.");
        if (region.nStart + region.nLength > shape.nFrames)
            throw CEditorError("the region " + region.strName + " goes on behind the end of " +
                               region.strFile + ".");
        if (!region.channels.empty() && region.channels.back() >= shape.nChannels)
            throw CEditorError("the file " + region.strFile + " has no channel " +
                               std::to_string(region.channels.back()) + ".");
        if (!region.channels.empty())
            return region.channels;
        std::vector<std::int32_t> all;
        for (std::int32_t n = 0; n < shape.nChannels; n++)
            all.push_back(n);
        return all;
    }

    void AddRegion(std::int64_t nTrack, const Region& region,
                   const std::vector<std::int32_t>& channels)
    {
        CArdourSession::Stretch stretch{
            Legal(region.strName), region.nPosition, region.nStart, region.nLength, {},
            region.fMuted};
        const std::string strFile = FileFor(region.strFile);
        for (std::int32_t nChannel : channels)
            stretch.sources.push_back(m_session.AddSource(strFile, nChannel));
        m_fChanged = m_session.AddRegion(nTrack, stretch) || m_fChanged;
    }

    // The name of the file in the session's folder, into which it is put where it is not there.
    std::string FileFor(const std::string& strFile)
    {
        const auto noted = m_notes.files.find(strFile);
        const fs::path folder = m_folder / "interchange" / m_session.Name() / "audiofiles";
        if (noted != m_notes.files.end())
        {
            if (!fs::exists(folder / noted->second))
                Put(strFile, folder / noted->second);
            return noted->second;
        }
        const fs::path path(strFile);
        std::string strStem = Legal(path.stem().string());
        std::size_t nEnd = std::min(strStem.size(), kLongestName);
        while (nEnd > 0 && nEnd < strStem.size() && (strStem[nEnd] & 0xc0) == 0x80)
            nEnd--;
        strStem.resize(nEnd);
        std::string strName;
        for (int n = 1;; n++)
        {
            strName = Numbered(strStem, n) + Legal(path.extension().string());
            if (IsLinkTo(folder / strName, strFile))
                return m_notes.files[strFile] = strName;
            if (!fs::exists(fs::symlink_status(folder / strName)))
                break;
        }
        Put(strFile, folder / strName);
        return m_notes.files[strFile] = strName;
    }

    void Put(const std::string& strFile, const fs::path& place)
    {
        fs::path folder = m_folder;
        for (const fs::path& part : place.parent_path().lexically_relative(m_folder))
            m_newPaths.MakeFolder(folder /= part);
        std::error_code ignored;
        if (fs::is_symlink(place, ignored)) // whose file has gone
            fs::remove(place);
        if (!m_fCopyFiles)
        {
            fs::create_symlink(fs::absolute(strFile), place);
            m_newPaths.Add(place);
            return;
        }
        const fs::path part = place.string() + ".part";
        m_newPaths.Add(part);
        fs::copy_file(strFile, part, fs::copy_options::overwrite_existing);
        fs::rename(part, place);
        m_newPaths.Add(place);
    }

    const fs::path m_folder;
    const fs::path m_file;
    ArdourNotes m_notes;
    const std::string m_strOld;
    CArdourSession m_session;
    const bool m_fCopyFiles;
    bool m_fChanged = false; // the session
    bool m_fNoted = false;   // the notes
    std::map<std::string, SoundShape> m_shapes;
    CNewPaths m_newPaths;
};

// All its tracks, with the regions of that rate.
Model OfRate(const Model& model, std::int32_t nRate)
{
    Model part = model;
    for (Track& track : part.tracks)
        std::erase_if(track.regions,
                      [nRate](const Region& region) { return region.nRate != nRate; });
    return part;
}

std::size_t MostChannels(const Model& model)
{
    std::size_t nMost = 2;
    std::set<std::string> seen;
    for (const Track& track : model.tracks)
    {
        for (const Region& region : track.regions)
        {
            if (!region.channels.empty())
                nMost = std::max(nMost, region.channels.size());
            else if (seen.insert(region.strFile).second)
                nMost = std::max(
                    nMost, static_cast<std::size_t>(CSoundReader(region.strFile).Info().channels));
        }
    }
    return nMost;
}

} // namespace

CArdourEditor::CArdourEditor(const fs::path& folder) : CArdourEditor(folder, Settings{}) {}

CArdourEditor::CArdourEditor(const fs::path& folder, const Settings& settings)
    // Without the empty name that a / at the end stands for.
    : m_folder((fs::absolute(folder) / "").lexically_normal().parent_path()), m_settings(settings)
{
}

const Abilities& CArdourEditor::Table() const
{
    static constexpr Abilities table{.szName = "Ardour",
                                     .fKnowsWhatItHas = true,
                                     .fMutes = true,
                                     .fTakesSomeChannels = true,
                                     .fTakesSeveralRates = true,
                                     .takesRate = CArdourSession::CanHold,
                                     // Its times have 61 bits, at 35280 ticks a sample and fewer.
                                     .nLargestPosition = std::int64_t(1) << 45};
    return table;
}

fs::path CArdourEditor::File() const
{
    return FileIn(m_folder);
}

fs::path CArdourEditor::FileIn(const fs::path& folder) const
{
    std::vector<fs::path> sessions;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
    {
        if (entry->path().extension() == ".ardour")
            sessions.push_back(entry->path());
    }
    const fs::path named = folder / (folder.filename().string() + ".ardour");
    if (std::count(sessions.begin(), sessions.end(), named) != 0)
        return named;
    if (sessions.size() > 1)
        throw CEditorError("the folder " + folder.string() + " holds " +
                           std::to_string(sessions.size()) + " sessions of Ardour, and none is " +
                           "called " + named.filename().string() + ".");
    return sessions.empty() ? fs::path() : sessions.front();
}

std::int32_t CArdourEditor::Rate(const Model& model) const
{
    const fs::path file = File();
    if (!file.empty() && fs::is_regular_file(fs::symlink_status(file)))
        return CArdourSession(ReadFile(file, kLargestSession)).Rate();
    if (m_settings.nRate != 0)
        return m_settings.nRate;
    for (const Track& track : model.tracks)
    {
        if (!track.regions.empty())
            return track.regions.front().nRate;
    }
    return 0;
}

void CArdourEditor::Take(const Model& model)
{
    RequireAble(Table(), model);
    RequireText(model);
    try
    {
        const std::int32_t nRate = Rate(model);
        if (nRate == 0)
            return;
        if (!CArdourSession::CanHold(nRate))
            throw CEditorError("Ardour cannot place audio of " + std::to_string(nRate) +
                               " samples per second exactly.");
        std::set<std::int32_t> others;
        for (const Track& track : model.tracks)
        {
            for (const Region& region : track.regions)
                others.insert(region.nRate);
        }
        others.erase(nRate);
        for (std::int32_t nOther : others)
            TakeInto(m_folder.string() + "-" + std::to_string(nOther), nOther,
                     OfRate(model, nOther));
        if (others.empty() || OfRate(model, nRate).HasRegions())
            TakeInto(m_folder, nRate, OfRate(model, nRate));
    }
    catch (const CEditorError&)
    {
        throw;
    }
    catch (const std::exception& error)
    {
        throw CEditorError(error.what());
    }
}

void CArdourEditor::TakeInto(const fs::path& folder, std::int32_t nRate, const Model& model) const
{
    fs::path file = FileIn(folder);
    const bool fNew = file.empty();
    CNewPaths newFolder;
    if (fNew)
    {
        newFolder.MakeFolder(folder);
        if (!fs::is_empty(folder))
            throw CEditorError("the folder " + folder.string() + " holds other files and no " +
                               "session of Ardour; name a new folder, or that of a session.");
        file = folder / (folder.filename().string() + ".ardour");
    }
    else if (!fs::is_regular_file(fs::symlink_status(file)))
        throw CEditorError(file.string() + " is not a file.");

    const CFolderLock lock(folder);
    if (!fNew)
        RequireClosed(folder);
    const std::string strName = Legal(folder.filename().string());
    CAddition addition(folder, file,
                       fNew ? CArdourSession::NewText(strName, nRate, MostChannels(model))
                            : ReadFile(file, kLargestSession),
                       m_settings.fCopyFiles);
    addition.AddAll(model);
    addition.Write(fNew);
    newFolder.Keep();
}

} // namespace Tarvane::Editor
