// A folder of a test's own, gone with the test.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace TarvaneTest
{

class CTemporaryFolder
{
public:
    CTemporaryFolder()
    {
        std::string strTemplate =
            (std::filesystem::temp_directory_path() / "tarvane-test-XXXXXX").string();
        m_path = std::filesystem::canonical(::mkdtemp(strTemplate.data()));
    }
    ~CTemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    std::filesystem::path operator/(const std::string& strName) const { return m_path / strName; }

    /// Every file below, hidden ones too, as relative names in order.
    std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_path))
        {
            if (!entry.is_directory())
            {
                names.push_back(entry.path().lexically_relative(m_path).string());
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path m_path;
};

} // namespace TarvaneTest
