#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A folder of a test's own, gone with all its files at the end.
class ScratchFolder
{
public:
    ScratchFolder()
    {
        std::string strTemplate = std::filesystem::temp_directory_path() / "file-layer-XXXXXX";
        m_strPath = mkdtemp(strTemplate.data());
    }
    ~ScratchFolder() { std::filesystem::remove_all(m_strPath); }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::string& Path() const { return m_strPath; }
    std::string Path(const std::string& strName) const { return m_strPath + "/" + strName; }

    std::string MakeFile(const std::string& strName, const std::string& strContent = "") const
    {
        std::ofstream(Path(strName), std::ios::binary) << strContent;
        return Path(strName);
    }

    std::string MakeFolder(const std::string& strName) const
    {
        std::filesystem::create_directories(Path(strName));
        return Path(strName);
    }

    std::string Content(const std::string& strName) const
    {
        std::ifstream stream(Path(strName), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    }

private:
    std::string m_strPath;
};
