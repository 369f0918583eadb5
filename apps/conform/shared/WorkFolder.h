#pragma once

#include <filesystem>

namespace Tarvane::Conform
{

/// A folder of its own under the temporary folder; removed with the object.
class CWorkFolder
{
public:
    /// Throws std::runtime_error, in words for the user, when it cannot be made.
    CWorkFolder();
    ~CWorkFolder();
    CWorkFolder(const CWorkFolder&) = delete;
    CWorkFolder& operator=(const CWorkFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace Tarvane::Conform
