// What was put into an Ardour session, in a file beside it.
#pragma once

#include "apps/editor/EditorModel.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace Tarvane::Editor
{

/// The content of tarvane-link.json.
struct ArdourNotes
{
    std::string strWritten;                     ///< Mark of the session as it was last written
    std::map<std::string, std::int64_t> tracks; ///< ids there, by names here
    std::map<std::string, std::string> files;   ///< names there, by full paths
    std::set<std::string> regions;              ///< as KeyOf

    static std::string KeyOf(const Region& region);
    /// Tells a text from another one.
    static std::string Mark(const std::string& strText);

    /// Empty notes where there is no file. Throws CEditorError for a file that holds none: what it
    /// was to prevent could not be prevented then.
    static ArdourNotes Read(const std::filesystem::path& file);
    std::string Text() const;
};

} // namespace Tarvane::Editor
