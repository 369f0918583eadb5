// A folder for a program's results that can be written again and again and never harms what is not
// the program's own.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>

namespace Tarvane
{

/// Keeps a list of what it has written in the file ".tarvane-results" inside the folder. A name on
/// that list may be replaced; any other existing file is left alone and its name refused.
/// One object a folder at a time. Names are relative, UTF-8, and stay inside the folder.
class CResultFolder
{
public:
    /// Makes the folder where it is missing. Throws CUsageError when it cannot be made or written,
    /// or when its list cannot be read.
    explicit CResultFolder(const std::filesystem::path& path);

    /// Absolute.
    const std::filesystem::path& Path() const { return m_path; }

    /// Removes every file that earlier runs left, and folders inside that are empty then. Files of
    /// others, and files that the list does not name, stay.
    void RemoveEarlier();

    /// Takes a name for a result that is about to be written, and returns where to write it. An
    /// earlier result of that name is removed. Throws CUsageError when a file of that name is there
    /// that is not ours; nothing is changed then.
    std::filesystem::path Claim(const std::string& strName);

    /// Lists a file that has been written already, under a name that nobody else had.
    void Adopt(const std::filesystem::path& path);

    /// Claims the name and writes the text there: in full, or not at all. Throws
    /// std::filesystem::filesystem_error when the disk takes no more.
    void WriteText(const std::string& strName, std::string_view strText);

private:
    void ReadList();
    void WriteList() const;

    std::filesystem::path m_path;
    std::set<std::string> m_names;
};

/// Writes a file as a whole: under a temporary name beside it, to the disk, then renamed over what
/// is there. Throws std::filesystem::filesystem_error and leaves nothing behind when that fails.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes);

} // namespace Tarvane
