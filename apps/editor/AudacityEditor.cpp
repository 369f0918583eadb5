#include "apps/editor/AudacityEditor.h"

#include "apps/editor/SoundStretch.h"
#include "utils/UnicodeText.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <sstream>
#include <system_error>

namespace fs = std::filesystem;

namespace Tarvane::Editor
{

namespace
{

// Bytes, so that a name leaves room for the rest of a command even if each is written as two.
constexpr std::size_t kLongestThere = 400;

class CScratchFolder
{
public:
    CScratchFolder()
    {
        std::string strName = (fs::temp_directory_path() / "tarvane-link-XXXXXX").string();
        if (mkdtemp(strName.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(),
                                    "cannot make the folder " + strName);
        m_path = strName;
    }
    ~CScratchFolder()
    {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    CScratchFolder(const CScratchFolder&) = delete;
    CScratchFolder& operator=(const CScratchFolder&) = delete;

    const fs::path& Path() const { return m_path; }

private:
    fs::path m_path;
};

// As a name can be there: one line, not too long.
std::string OneLine(std::string strName, std::size_t nLongest)
{
    for (char& c : strName)
    {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            c = '_';
    }
    std::size_t nEnd = std::min(strName.size(), nLongest);
    while (nEnd > 0 && nEnd < strName.size() && (strName[nEnd] & 0xc0) == 0x80)
        nEnd--;
    return strName.substr(0, nEnd);
}

std::string ImportCommand(const fs::path& file)
{
    return "Import2: Filename=" + CAudacityPipe::Quoted(file.string());
}

// So many digits that neighbouring samples stay apart.
std::string PlaceText(std::int64_t nSamples, std::int32_t nRate)
{
    char text[64];
    const auto result = std::to_chars(
        text, text + sizeof text, static_cast<double>(nSamples) / nRate, std::chars_format::fixed);
    return {text, result.ptr};
}

// Of all tracks, in their order. Each has a line of its own, which begins with the name; quotes are
// written as \" there, and nothing else is.
std::vector<std::string> TrackNames(CAudacityPipe& pipe)
{
    static const std::string strBefore = "  { \"name\":\"";
    static const std::string strBehind = "\", \"focused\":";
    std::vector<std::string> names;
    const std::string strInfo = pipe.Ask("GetInfo: Type=Tracks Format=JSON");
    if (!strInfo.starts_with("\n["))
        throw CEditorError("Audacity does not say which tracks it has.");
    std::istringstream lines(strInfo);
    for (std::string strLine; std::getline(lines, strLine);)
    {
        const std::size_t nEnd = strLine.rfind(strBehind);
        if (!strLine.starts_with(strBefore) || nEnd == std::string::npos)
            continue;
        std::string strName = strLine.substr(strBefore.size(), nEnd - strBefore.size());
        for (std::size_t n = 0; (n = strName.find("\\\"", n)) != std::string::npos; n++)
            strName.erase(n, 1);
        names.push_back(strName);
    }
    return names;
}

void SelectTracks(CAudacityPipe& pipe, std::size_t nFirst, std::size_t nCount)
{
    pipe.Ask("SelectTracks: Track=" + std::to_string(nFirst) +
             " TrackCount=" + std::to_string(nCount) + " Mode=Set");
}

std::vector<fs::path> ProjectsThere(const CAudacityPipe& pipe)
{
    std::vector<fs::path> projects;
    for (const fs::path& file : pipe.OpenFilesThere())
    {
        if (file.extension() == ".aup3" || file.extension() == ".aup3unsaved")
            projects.push_back(file);
    }
    return projects;
}

fs::path PipesFolder()
{
    const char* szFolder = std::getenv("TARVANE_AUDACITY_PIPES");
    return szFolder == nullptr ? CAudacityEditor::Settings{}.pipes : fs::path(szFolder);
}

} // namespace

CAudacityEditor::CAudacityEditor(const fs::path& project)
    : CAudacityEditor(project, {.pipes = PipesFolder()})
{
}

CAudacityEditor::CAudacityEditor(const fs::path& project, const Settings& settings)
    : m_project(fs::weakly_canonical(fs::absolute(project))), m_settings(settings)
{
    if (m_project.extension() != ".aup3" || !IsUtf8(m_project.string()))
        throw CUsageError("\"" + project.string() + "\" is no project of Audacity; name a file " +
                          "that ends in .aup3.");
}

const Abilities& CAudacityEditor::Table() const
{
    static constexpr Abilities table{.szName = "Audacity",
                                     .fMutes = true,
                                     .fTakesSomeChannels = true,
                                     .fTakesSeveralRates = true,
                                     // Seconds as doubles.
                                     .nLargestPosition = std::int64_t(1) << 45,
                                     // Its command asks in a window what to do with more.
                                     .nLargestTime = 1000000};
    return table;
}

void CAudacityEditor::Take(const Model& model)
{
    RequireAble(Table(), model);
    RequireText(model);
    if (!model.HasRegions())
        return;
    const auto patience = m_settings.patience;
    const Deadline start = std::chrono::steady_clock::now();
    try
    {
        const CScratchFolder scratch;
        std::vector<Sound> sounds;
        for (const Track& track : model.tracks)
        {
            for (const Region& region : track.regions)
            {
                const fs::path folder = scratch.Path() / std::to_string(sounds.size());
                fs::create_directory(folder);
                sounds.push_back(SoundFor(region, folder));
            }
        }

        CAudacityPipe pipe(m_settings.pipes, start + m_settings.untilThere, start + patience);
        RequireProject(pipe);
        TakeBack(pipe);
        m_begun = {TrackNames(pipe).size(), {}};
        try
        {
            auto sound = sounds.begin();
            for (const Track& track : model.tracks)
            {
                for (const Region& region : track.regions)
                    Put(pipe, OneLine(track.strName, kLongestThere), region, *sound++);
            }
            pipe.Ask("SaveProject2: Filename=" + CAudacityPipe::Quoted(m_project.string()));
        }
        catch (const CEditorError&)
        {
            pipe.Until(std::chrono::steady_clock::now() + patience / 4);
            if (pipe.IsAnswering())
                TakeBack(pipe);
            throw;
        }
        m_begun = {};
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

void CAudacityEditor::RequireProject(CAudacityPipe& pipe) const
{
    const auto isOpenAlone = [this, &pipe]
    { return ProjectsThere(pipe) == std::vector<fs::path>{m_project}; };
    if (isOpenAlone())
        return;
    const std::vector<fs::path> projects = ProjectsThere(pipe);
    if (projects.empty())
        throw CEditorError("which project Audacity has open cannot be seen; it runs as another "
                           "user, or shut off from other programs.");
    if (projects.size() > 1)
        throw CEditorError("Audacity has several projects open, and a take could go to the wrong "
                           "one; leave none but " +
                           m_project.string() + ".");
    if (projects.front().extension() != ".aup3unsaved" || !TrackNames(pipe).empty())
        throw CEditorError("Audacity has another project open; close it there, or save it as " +
                           m_project.string() + ".");
    if (!fs::is_directory(m_project.parent_path()))
        throw CEditorError("there is no folder " + m_project.parent_path().string() + ".");
    // It would ask about what it finds there.
    if (fs::exists(fs::symlink_status(m_project)) && !fs::is_regular_file(m_project))
        throw CEditorError(m_project.string() + " is not a file.");
    pipe.Ask((fs::exists(m_project) ? "OpenProject2: Filename=" : "SaveProject2: Filename=") +
             CAudacityPipe::Quoted(m_project.string()));
    if (!isOpenAlone())
        throw CEditorError("Audacity did not open the project " + m_project.string() + ".");
}

CAudacityEditor::Sound CAudacityEditor::SoundFor(const Region& region,
                                                 const fs::path& scratch) const
{
    const FileShape shape = ShapeOf(region);
    const auto nChannels = static_cast<std::size_t>(ChannelsTaken(region, shape));
    Sound sound{region.strFile, nChannels > 2 ? nChannels : 1};
    const fs::path plain = OneLine(region.strFile, region.strFile.size());
    if (!IsWholeFile(region, shape) || plain != sound.file || sound.file.stem() != region.strName ||
        ImportCommand(sound.file).size() > CAudacityPipe::kLongestCommand)
    {
        // A clip is called as the file is that it comes from.
        std::string strName = OneLine(region.strName, kLongestThere / 2);
        std::replace(strName.begin(), strName.end(), '/', '_');
        sound.file = scratch / (strName + ".wav");
        WriteStretch(region, sound.file);
    }
    return sound;
}

void CAudacityEditor::Put(CAudacityPipe& pipe, const std::string& strTrack, const Region& region,
                          const Sound& sound)
{
    const std::size_t nFirst = m_begun.nBefore + m_begun.names.size();
    const std::string strImported = sound.file.stem().string();
    for (std::size_t n = 1; n <= sound.nTracks; n++)
        m_begun.names.push_back(
            {strTrack, sound.nTracks == 1 ? strImported : strImported + " " + std::to_string(n)});
    pipe.Ask(ImportCommand(sound.file));
    const std::size_t nNow = TrackNames(pipe).size();
    if (nNow != nFirst + sound.nTracks)
        throw CEditorError("Audacity made " + std::to_string(nNow) + " tracks of " +
                           std::to_string(nFirst) + " when it imported " + sound.file.string() +
                           ".");
    SelectTracks(pipe, nFirst, sound.nTracks);
    pipe.Ask("SetTrackStatus: Name=" + CAudacityPipe::Quoted(strTrack));
    if (region.fMuted)
        pipe.Ask("SetTrackAudio: Mute=1");
    pipe.Ask("SetClip: Start=" + PlaceText(region.nPosition, region.nRate));
}

void CAudacityEditor::TakeBack(CAudacityPipe& pipe)
{
    if (m_begun.names.empty())
        return;
    const std::vector<std::string> names = TrackNames(pipe);
    // What is there and is not called so is its user's.
    bool fOurs = names.size() <= m_begun.nBefore + m_begun.names.size();
    for (std::size_t n = m_begun.nBefore; fOurs && n < names.size(); n++)
    {
        const auto& may = m_begun.names[n - m_begun.nBefore];
        fOurs = std::count(may.begin(), may.end(), names[n]) != 0;
    }
    if (fOurs && names.size() > m_begun.nBefore)
    {
        SelectTracks(pipe, m_begun.nBefore, names.size() - m_begun.nBefore);
        pipe.Ask("RemoveTracks:");
    }
    m_begun = {};
}

} // namespace Tarvane::Editor
