#include "apps/editor/ArdourNotes.h"

#include "apps/editor/Editor.h"
#include "apps/support/file/AtomicFile.h"

#include <nlohmann/json.hpp>
#include <system_error>

namespace Tarvane::Editor
{

namespace
{

constexpr const char* szForm = "tarvane-link in Ardour";
constexpr int kNotesVersion = 1;
constexpr std::size_t kLargest = 1 << 30;

} // namespace

std::string ArdourNotes::KeyOf(const Region& region)
{
    std::string strKey = std::to_string(region.nId) + " " + std::to_string(region.nPosition) + " " +
                         std::to_string(region.nStart) + " " + std::to_string(region.nLength);
    for (std::int32_t nChannel : region.channels)
        strKey += "," + std::to_string(nChannel);
    return strKey + " " + region.strFile;
}

std::string ArdourNotes::Mark(const std::string& strText)
{
    // FNV-1a of 64 bits.
    std::uint64_t nMark = 0xcbf29ce484222325;
    for (unsigned char c : strText)
        nMark = (nMark ^ c) * 0x100000001b3;
    return std::to_string(strText.size()) + "-" + std::to_string(nMark);
}

ArdourNotes ArdourNotes::Read(const std::filesystem::path& file)
{
    if (!std::filesystem::exists(std::filesystem::symlink_status(file)))
        return {};
    try
    {
        const nlohmann::json json = nlohmann::json::parse(ReadFile(file, kLargest));
        if (json.at("form") != szForm || json.at("version") != kNotesVersion)
            throw CEditorError(file.string() + " was written by another program.");
        ArdourNotes notes;
        json.at("written").get_to(notes.strWritten);
        json.at("tracks").get_to(notes.tracks);
        json.at("files").get_to(notes.files);
        json.at("regions").get_to(notes.regions);
        return notes;
    }
    catch (const nlohmann::json::exception& error)
    {
        throw CEditorError(file.string() + " is damaged (" + error.what() +
                           "), and with it what tells which takes the session has had. Move it " +
                           "away to have all of them added that the session does not hold.");
    }
    catch (const std::system_error& error)
    {
        throw CEditorError(error.what());
    }
}

std::string ArdourNotes::Text() const
{
    const nlohmann::json json{{"form", szForm},        {"version", kNotesVersion},
                              {"written", strWritten}, {"tracks", tracks},
                              {"files", files},        {"regions", regions}};
    return json.dump(1) + "\n";
}

} // namespace Tarvane::Editor
